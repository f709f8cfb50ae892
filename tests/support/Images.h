// Images of any shape and content for tests, with guards around them.
#ifndef ZPA_TESTS_SUPPORT_IMAGES_H
#define ZPA_TESTS_SUPPORT_IMAGES_H

#include <Basics/CoreTypes.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "Source/Internal/Dispatch.h"

namespace ZPA::Testing {

struct Shape {
    int width, height, stride;
};
inline std::ostream& operator<<(std::ostream& out, Shape const& shape) {
    return out << shape.width << " x " << shape.height << ", stride " << shape.stride;
}

// Nothing, one, both sides of a vector, padded rows, more than any vector.
inline constexpr Shape kShapes[] = {{1, 1, 1},   {1, 7, 3},   {7, 1, 7},    {15, 3, 15},
                                    {16, 2, 16}, {17, 4, 20}, {63, 5, 63},  {64, 3, 65},
                                    {65, 5, 80}, {99, 9, 99}, {131, 6, 200}};

// An image with a run of guard elements before and behind it; its padding is filled as its pixels are.
template <typename T> struct TestImage {
    static constexpr std::size_t kGuard = 64;
    static constexpr unsigned char kGuardByte = 0xA5;

    Shape shape;
    std::vector<T> memory;

    explicit TestImage(Shape itsShape)
        : shape(itsShape),
          memory(2 * kGuard +
                 static_cast<std::size_t>(itsShape.stride) * static_cast<std::size_t>(itsShape.height)) {
        std::memset(memory.data(), kGuardByte, memory.size() * sizeof(T));
    }

    T* Pixels() { return memory.data() + kGuard; }
    T const* Pixels() const { return memory.data() + kGuard; }
    std::size_t Size() const { return memory.size() - 2 * kGuard; }
    // The elements of the block, padding included.
    T* begin() { return Pixels(); }
    T* end() { return Pixels() + Size(); }
    T& At(int x, int y) { return Pixels()[static_cast<std::ptrdiff_t>(y) * shape.stride + x]; }
    T const& At(int x, int y) const { return Pixels()[static_cast<std::ptrdiff_t>(y) * shape.stride + x]; }

    // Each pixel is value(x, y); the padding stays.
    template <typename Value> void Fill(Value const& value) {
        for (int y = 0; y < shape.height; ++y)
            for (int x = 0; x < shape.width; ++x) At(x, y) = static_cast<T>(value(x, y));
    }

    ImageAttributes Attributes(int bitsperpixel = 8 * static_cast<int>(sizeof(T)), int pixelspacing = 0) {
        return {TypeCodeOf<T>, Pixels(), shape.width, shape.height, shape.stride, bitsperpixel, pixelspacing};
    }
    // What to give to a call that writes into this image.
    struct Output {
        ImageAttributes image;
        operator ImageAttributes*() { return &image; }
    };
    Output Into() { return {Attributes()}; }
    // Bit for bit, guards and padding included: not-a-number equals itself, and -0.0 is not 0.0.
    bool operator==(TestImage const& other) const {
        return memory.size() == other.memory.size() &&
               std::memcmp(memory.data(), other.memory.data(), memory.size() * sizeof(T)) == 0;
    }
};

template <typename T> T RandomElement(std::mt19937& random) {
    if constexpr (std::is_floating_point_v<T>) {
        std::uniform_real_distribution<double> any(-300.0, 70000.0);
        return static_cast<T>(any(random));
    } else {
        return static_cast<T>(random());
    }
}

// All elements of the block at random, padding included.
template <typename T> TestImage<T> RandomImage(Shape shape, unsigned seed) {
    std::mt19937 random(seed);
    TestImage<T> image(shape);
    for (T& element : image) element = RandomElement<T>(random);
    return image;
}

// Half of it zero, the rest any other value.
inline TestImage<unsigned char> RandomMask(Shape shape, unsigned seed) {
    auto mask = RandomImage<unsigned char>(shape, seed);
    for (unsigned char& element : mask)
        if (element & 1) element = 0;
    return mask;
}

// All elements of the block alike, padding included.
template <typename T> TestImage<T> Uniform(Shape shape, T value) {
    TestImage<T> image(shape);
    std::fill_n(image.Pixels(), image.Size(), value);
    return image;
}

// Calls visit(T()) for each T.
template <typename... T, typename Visit> void ForEachType(Visit const& visit) { (visit(T()), ...); }

// All that an image tells of itself but where its pixels are.
inline std::string Description(ImageAttributes const& image) {
    std::string text = "type " + std::to_string(image.type);
    for (int const each : {image.width, image.height, image.stride, image.bitsperpixel, image.pixelspacing})
        text += ", " + std::to_string(each);
    return text;
}

// 16 bits a pixel, whatever the type.
inline ImageAttributes Over(void* pixels, eTypeCode type, int width = 4, int height = 3, int stride = 4) {
    return {type, pixels, width, height, stride, 16, 0};
}

// A description without pixels: getting past the checks would crash.
inline ImageAttributes Described(eTypeCode type, int width, int height, int stride) {
    return {type, nullptr, width, height, stride, 0, 0};
}

}  // namespace ZPA::Testing

#endif
