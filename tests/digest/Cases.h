// The operations whose results must be the same everywhere, and their inputs.
#ifndef ZPA_TESTS_DIGEST_CASES_H
#define ZPA_TESTS_DIGEST_CASES_H

#include <string>
#include <vector>

#include "digest/Digest.h"
#include "support/Regions.h"

namespace ZPA::Testing {

struct Case {
    std::string name;
    void (*run)(Digest& digest);
    // Whether it is the same only among machines with fused multiply-add, which others round otherwise.
    bool fused = false;
};
inline std::ostream& operator<<(std::ostream& out, Case const& each) { return out << each.name; }

std::vector<Case> PixelCases();
std::vector<Case> MeasureCases();
std::vector<Case> FilterCases();
std::vector<Case> RegionCases();
std::vector<Case> NumericCases();
std::vector<Case> FileCases();
std::vector<Case> ObjectCases();

// Padded rows, no multiple of any vector.
inline constexpr Shape kSmall{131, 47, 137};
// Enough work for several threads.
inline constexpr Shape kLarge{2111, 1103, 2112};

// Without the library's distributions, which differ.
template <typename T> T Element(std::mt19937& random) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(std::ldexp(static_cast<double>(random()), -16) - 300);
    else
        return static_cast<T>(random());
}

template <typename T> TestImage<T> Sample(Shape shape, unsigned seed) {
    std::mt19937 random(seed);
    TestImage<T> image(shape);
    for (std::size_t i = 0; i < image.Size(); ++i) image.Pixels()[i] = Element<T>(random);
    return image;
}

template <typename T> std::vector<T> Line(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<T> values(count);
    for (T& value : values) value = Element<T>(random);
    return values;
}

// In [-1, 1).
template <typename T> std::vector<T> Fractions(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<T> values(count);
    for (T& value : values) value = static_cast<T>(std::ldexp(static_cast<double>(random() >> 8), -23) - 1);
    return values;
}

// About half of it set, in patches that hang together.
template <typename T> TestImage<T> Patches(Shape shape, unsigned seed) {
    std::mt19937 random(seed);
    TestImage<T> image(shape);
    std::fill_n(image.Pixels(), image.Size(), T{});
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x) {
            unsigned const any = static_cast<unsigned>(random());
            bool const left = x && image.At(x - 1, y);
            bool const above = y && image.At(x, y - 1);
            image.At(x, y) =
                static_cast<T>(any % 16 < (left ? 6U : 1U) + (above ? 6U : 1U) ? 1 + any % 3 : 0);
        }
    return image;
}

template <typename T> void AddImage(Digest& digest, TestImage<T> const& image) { digest.Add(image.memory); }
// The code of a call that writes an image of this shape, and the image.
template <typename T, typename Call> void AddResult(Digest& digest, Shape shape, Call const& call) {
    TestImage<T> result(shape);
    digest.Add(int{call(result.Into())});
    AddImage(digest, result);
}
template <typename T, typename Call>
void AddResult(Digest& digest, TestImage<T> const& like, Call const& call) {
    AddResult<T>(digest, like.shape, call);
}
template <typename T> void AddImageRounded(Digest& digest, TestImage<T> const& image) {
    std::vector<T> pixels;
    for (int y = 0; y < image.shape.height; ++y)
        pixels.insert(pixels.end(), &image.At(0, y), &image.At(0, y) + image.shape.width);
    digest.AddRounded(pixels);
}

// Calls check(Type<T>{}) for each T.
template <typename T> struct Type { using type = T; };
template <typename... T, typename Check> void ForTypes(Check const& check) { (check(Type<T>{}), ...); }
template <typename Check> void ForAllTypes(Check const& check) {
    ForTypes<signed char, unsigned char, short, unsigned short, int, unsigned int, float, double>(check);
}

// Calls check(image) with an image of each T.
template <typename... T, typename Check> void ForSamples(unsigned seed, Check const& check) {
    auto const with = [&](auto image) { check(image); };
    (with(Sample<T>(kSmall, seed)), ...);
}
template <typename Check> void ForAllSamples(unsigned seed, Check const& check) {
    ForAllTypes([&](auto type) { ForSamples<typename decltype(type)::type>(seed, check); });
}

// All elements of an image, padding included.
template <typename T> BufferAttributes BufferOf(TestImage<T>& image) {
    return {TypeCodeOf<T>, image.Pixels(), static_cast<int>(image.Size())};
}

// Calls check(roi, mask, origin) for each way to choose pixels.
template <typename Check> void ForChoices(unsigned seed, Check const& check) {
    auto mask = Patches<unsigned char>(kSmall, seed);
    ImageAttributes const selected = mask.Attributes();
    for (Choice const& choice : Choices(kSmall)) check(choice.Roi(), choice.Mask(selected), choice.Origin());
}

}  // namespace ZPA::Testing

#endif
