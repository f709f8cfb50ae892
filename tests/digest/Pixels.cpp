// Copies, arithmetic and logic.
#include <Basics/Arithmetic.h>
#include <Basics/LogicalPixelOp.h>
#include <Basics/PixelOperations.h>
#include <Basics/Statistics.h>

#include "digest/Cases.h"
#include "support/Regions.h"

namespace ZPA::Testing {
namespace {

void Copy(Digest& digest) {
    ForAllTypes([&](auto from) {
        auto source = Sample<typename decltype(from)::type>(kSmall, 1);
        ForAllTypes([&](auto to) {
            AddResult<typename decltype(to)::type>(digest, kSmall, [&](ImageAttributes* output) {
                return CopyPixels(source.Attributes(), output);
            });
        });
    });
    auto large = Sample<unsigned short>(kLarge, 2);
    AddResult<unsigned short>(
        digest, kLarge, [&](ImageAttributes* output) { return CopyPixels(large.Attributes(), output); });
}

void Set(Digest& digest) {
    auto mask = Patches<unsigned char>(kSmall, 3);
    ImageAttributes const selected = mask.Attributes();
    ForAllTypes([&](auto type) {
        auto image = Sample<typename decltype(type)::type>(kSmall, 4);
        for (Choice const& choice : Choices(kSmall)) {
            digest.Add(int{SetPixels(choice.Roi(), choice.masked ? &selected : nullptr, choice.Origin(), 2,
                                     77.75, image.Attributes())});
            AddImage(digest, image);
        }
    });
}

void Compare(Digest& digest) {
    auto mask = Patches<unsigned char>(kSmall, 5);
    ImageAttributes const selected = mask.Attributes();
    ForTypes<unsigned char, short, unsigned short, float, double>([&](auto type) {
        using T = typename decltype(type)::type;
        auto first = Sample<T>(kSmall, 6);
        auto second = first;
        digest.Add(int{compare(first.Attributes(), second.Attributes())});
        digest.Add(int{ApplyMask(second.Attributes(), mask.Attributes())});
        AddImage(digest, second);
        digest.Add(int{compare(first.Attributes(), second.Attributes())});
        // Equal where the mask is set, and behind the first columns.
        auto third = first;
        for (int y = 0; y < kSmall.height; ++y) third.At(y % 9, y) = T{};
        for (auto* const other : {&second, &third})
            for (Choice const& choice : Choices(kSmall))
                for (int const decimation : {1, 3}) {
                    bool same = false;
                    digest.Add(int{DecimateAndCompare(first.Attributes(), other->Attributes(), choice.Roi(),
                                                      choice.Mask(selected), choice.Origin(), decimation, 2,
                                                      100.0, &same)});
                    digest.Add(same);
                }
    });
}

void Difference(Digest& digest) {
    ForAllTypes([&](auto type) {
        using T = typename decltype(type)::type;
        auto line = Line<T>(1001, 7);
        std::vector<T> result(line.size());
        BufferAttributes const source(TypeCodeOf<T>, line.data(), static_cast<int>(line.size()));
        BufferAttributes output(TypeCodeOf<T>, result.data(), static_cast<int>(result.size()));
        digest.Add(int{DiffBuffer(source, &output)});
        digest.Add(result);
    });
    auto pixels = Line<short>(1001, 8);
    ClipImage(pixels.data(), static_cast<int>(pixels.size()), -2000, 30000);
    digest.Add(pixels);
}

template <typename T>
void Binary(Digest& digest, Shape shape,
            std::vector<SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes, ImageAttributes*)> const&
                operations) {
    auto first = Sample<T>(shape, 9);
    auto second = Sample<T>(shape, 10);
    for (std::size_t i = 0; i < second.Size(); ++i)
        if (second.Pixels()[i] == T{}) second.Pixels()[i] = T{1};  // integers divide by it
    for (auto const operation : operations) {
        AddResult<T>(digest, shape, [&](ImageAttributes* output) {
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
    Binary<unsigned short>(digest, kLarge, {Add});
    Binary<float>(digest, kLarge, {Add});
    ForTypes<unsigned char, short, unsigned short, float>([&](auto type) {
        using T = typename decltype(type)::type;
        auto first = Sample<T>(kSmall, 11);
        auto second = Sample<T>(kSmall, 12);
        for (bool const inPlace : {false, true}) {
            TestImage<T> result = second;
            ImageAttributes output = result.Attributes();
            digest.Add(int{ipp_add(first.Attributes(), second.Attributes(), &output, inPlace)});
            AddImage(digest, result);
            AddImage(digest, second);
        }
    });
}

void Constants(Digest& digest) {
    ForAllTypes([&](auto type) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kSmall, 13);
        T constant = static_cast<T>(37);
        for (auto const operation : {AddC, SubC, MulC, DivC}) {
            AddResult<T>(digest, kSmall, [&](ImageAttributes* output) {
                return operation(image.Attributes(), &constant, output);
            });
        }
        AddResult<T>(digest, kSmall,
                     [&](ImageAttributes* output) { return Abs(image.Attributes(), output); });
    });
}

void Product(Digest& digest) {
    ForTypes<float, double>([&](auto type) {
        using T = typename decltype(type)::type;
        for (Shape const shape : {Shape{45, 45, 51}, Shape{301, 301, 310}}) {
            auto first = Sample<T>(shape, 14);
            auto second = Sample<T>(shape, 15);
            for (auto const operation : {Mul, MulP, ipp_mul}) {
                AddResult<T>(digest, shape, [&](ImageAttributes* output) {
                    return operation(first.Attributes(), second.Attributes(), output);
                });
            }
        }
    });
    Binary<int>(digest, {45, 45, 51}, {Mul});
}

template <typename Check> void ForIntegers(Check const& check) {
    ForTypes<unsigned char, short, unsigned short, int, unsigned int>(check);
}

void Logic(Digest& digest) {
    for (int function = 0; function < 16; ++function) {
        unsigned char table[4];
        for (int i = 0; i < 4; ++i) table[i] = static_cast<unsigned char>((function >> i & 1) * 200);
        ForTypes<unsigned char, unsigned short>([&](auto type) {
            using T = typename decltype(type)::type;
            auto first = Patches<T>(kSmall, 16);
            auto second = Patches<T>(kSmall, 17);
            AddResult<T>(digest, kSmall, [&](ImageAttributes* output) {
                return LogicalPixelOp(first.Attributes(), second.Attributes(), table, output);
            });
        });
    }
    unsigned char table[] = {7, 0, 255, 128};
    ForIntegers([&](auto one) {
        auto first = Patches<typename decltype(one)::type>(kSmall, 16);
        ForIntegers([&](auto two) {
            auto second = Patches<typename decltype(two)::type>(kSmall, 17);
            ForIntegers([&](auto result) {
                AddResult<typename decltype(result)::type>(digest, kSmall, [&](ImageAttributes* output) {
                    return LogicalPixelOp(first.Attributes(), second.Attributes(), table, output);
                });
            });
        });
    });
}

void Inversions(Digest& digest) {
    auto mask = Patches<unsigned char>(kSmall, 18);
    ImageAttributes const selected = mask.Attributes();
    for (Choice const& choice : Choices(kSmall)) {
        ImageAttributes const* const where = choice.masked ? &selected : nullptr;
        ForTypes<unsigned char, short, unsigned short>([&](auto type) {
            using T = typename decltype(type)::type;
            for (auto const operation : {InvertGray, InvertMaskImage}) {
                auto image = Sample<T>(kSmall, 19);
                AddResult<T>(digest, kSmall, [&](ImageAttributes* output) {
                    return operation(image.Attributes(), choice.Roi(), where, choice.Origin(), output);
                });
            }
        });
    }
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
