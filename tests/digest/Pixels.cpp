// Copies, arithmetic and logic.
#include <Basics/Arithmetic.h>
#include <Basics/LogicalPixelOp.h>
#include <Basics/PixelOperations.h>
#include <Basics/Statistics.h>

#include "digest/Cases.h"

namespace ZPA::Testing {
namespace {

void Copy(Digest& digest) {
    ForAllSamples(1, [&](auto& source) {
        ForAllTypes([&](auto to) {
            AddResult<typename decltype(to)::type>(digest, kSmall, [&](ImageAttributes* output) {
                return CopyPixels(source.Attributes(), output);
            });
        });
    });
    auto large = Sample<unsigned short>(kLarge, 2);
    AddResult(digest, large, [&](ImageAttributes* output) { return CopyPixels(large.Attributes(), output); });
}

void Set(Digest& digest) {
    ForAllSamples(4, [&](auto& image) {
        ForChoices(3, [&](auto roi, auto mask, auto origin) {
            digest.Add(int{SetPixels(roi, mask, origin, 2, 77.75, image.Attributes())});
            AddImage(digest, image);
        });
    });
}

void Compare(Digest& digest) {
    auto mask = Patches<unsigned char>(kSmall, 5);
    ForSamples<unsigned char, short, unsigned short, float, double>(6, [&](auto& first) {
        // Equal where the mask is set, and behind the first columns.
        auto second = first, third = first;
        digest.Add(int{ApplyMask(second.Attributes(), mask.Attributes())});
        AddImage(digest, second);
        for (int y = 0; y < kSmall.height; ++y) third.At(y % 9, y) = 0;
        for (auto* const other : {&first, &second, &third}) {
            digest.Add(int{compare(first.Attributes(), other->Attributes())});
            ForChoices(5, [&](auto roi, auto selected, auto origin) {
                for (int const decimation : {1, 3}) {
                    bool same = false;
                    digest.Add(int{DecimateAndCompare(first.Attributes(), other->Attributes(), roi, selected,
                                                      origin, decimation, 2, 100.0, &same)});
                    digest.Add(same);
                }
            });
        }
    });
}

void Difference(Digest& digest) {
    ForAllSamples(7, [&](auto& line) {
        auto result = line;
        BufferAttributes output = BufferOf(result);
        digest.Add(int{DiffBuffer(BufferOf(line), &output)});
        AddImage(digest, result);
    });
    auto pixels = Sample<short>(kSmall, 8);
    ClipImage(pixels.Pixels(), static_cast<int>(pixels.Size()), -2000, 30000);
    AddImage(digest, pixels);
}

using WithImage = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes, ImageAttributes*);
template <typename T> void Binary(Digest& digest, Shape shape, std::vector<WithImage> const& operations) {
    auto first = Sample<T>(shape, 9);
    auto second = Sample<T>(shape, 10);
    for (std::size_t i = 0; i < second.Size(); ++i)
        if (second.Pixels()[i] == T{}) second.Pixels()[i] = T{1};  // integers divide by it
    for (auto const operation : operations) {
        AddResult(digest, first, [&](ImageAttributes* output) {
            return operation(first.Attributes(), second.Attributes(), output);
        });
        auto inPlace = first;
        digest.Add(int{operation(inPlace.Attributes(), second.Attributes(), nullptr)});
        AddImage(digest, inPlace);
    }
}

void PixelByPixel(Digest& digest) {
    ForAllTypes([&](auto type) {
        Binary<typename decltype(type)::type>(digest, kSmall, {Add, Sub, MulP, DivP});
    });
    Binary<unsigned char>(digest, kLarge, {Add});  // whose rows may lie in the upper half of 32-bit memory
    Binary<unsigned short>(digest, kLarge, {Add});
    Binary<float>(digest, kLarge, {Add});
    ForSamples<unsigned char, short, unsigned short, float>(11, [&](auto& image) {
        for (bool const inPlace : {false, true})
            AddResult(digest, image, [&](ImageAttributes* output) {
                return ipp_add(image.Attributes(), image.Attributes(), output, inPlace);
            });
        AddImage(digest, image);
    });
}

void Constants(Digest& digest) {
    ForAllSamples(13, [&](auto& image) {
        auto constant = image.At(0, 0);
        constant = 37;
        for (auto const operation : {AddC, SubC, MulC, DivC})
            AddResult(digest, image, [&](ImageAttributes* output) {
                return operation(image.Attributes(), &constant, output);
            });
        AddResult(digest, image, [&](ImageAttributes* output) { return Abs(image.Attributes(), output); });
    });
}

void Product(Digest& digest) {
    ForTypes<float, double>([&](auto type) {
        for (Shape const shape : {Shape{45, 45, 51}, Shape{301, 301, 310}}) {
            auto first = Sample<typename decltype(type)::type>(shape, 14);
            auto second = Sample<typename decltype(type)::type>(shape, 15);
            for (auto const operation : {Mul, MulP, ipp_mul})
                AddResult(digest, first, [&](ImageAttributes* output) {
                    return operation(first.Attributes(), second.Attributes(), output);
                });
        }
    });
    Binary<int>(digest, {45, 45, 51}, {Mul});
}

template <typename Check> void ForIntegers(unsigned seed, Check const& check) {
    ForTypes<unsigned char, short, unsigned short, int, unsigned int>([&](auto type) {
        auto image = Patches<typename decltype(type)::type>(kSmall, seed);
        check(image);
    });
}

void Logic(Digest& digest) {
    unsigned char table[] = {7, 0, 255, 128};
    ForIntegers(16, [&](auto& first) {
        ForIntegers(17, [&](auto& second) {
            ForIntegers(17, [&](auto const& like) {
                AddResult(digest, like, [&](ImageAttributes* output) {
                    return LogicalPixelOp(first.Attributes(), second.Attributes(), table, output);
                });
            });
        });
    });
}

void Inversions(Digest& digest) {
    ForChoices(18, [&](auto roi, auto mask, auto origin) {
        ForSamples<unsigned char, short, unsigned short>(19, [&](auto& image) {
            for (auto const operation : {InvertGray, InvertMaskImage})
                AddResult(digest, image, [&](ImageAttributes* output) {
                    return operation(image.Attributes(), roi, mask, origin, output);
                });
        });
    });
}

}  // namespace

std::vector<Case> PixelCases() {
    return {{"CopyPixels", Copy},
            {"SetPixels", Set},
            {"ApplyMask, compare, DecimateAndCompare", Compare},
            {"DiffBuffer, ClipImage", Difference},
            {"Add, Sub, MulP, DivP, ipp_add", PixelByPixel},
            {"AddC, SubC, MulC, DivC, Abs", Constants},
            {"Mul, ipp_mul, MulP of matrices", Product, true},
            {"LogicalPixelOp", Logic},
            {"InvertGray, InvertMaskImage", Inversions}};
}

}  // namespace ZPA::Testing
