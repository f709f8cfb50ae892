// Images of any shape and content for benchmarks.
#ifndef ZPA_BENCHMARKS_SUPPORT_SCENE_H
#define ZPA_BENCHMARKS_SUPPORT_SCENE_H

#include <Basics/CoreTypes.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <random>
#include <type_traits>
#include <vector>

#include "Source/Internal/Dispatch.h"

namespace ZPA::Benchmarks {

// The name of an element type in a row: "16u".
template <typename T> inline constexpr char const* kTypeName = nullptr;
template <> inline constexpr char const* kTypeName<signed char> = "8s";
template <> inline constexpr char const* kTypeName<unsigned char> = "8u";
template <> inline constexpr char const* kTypeName<short> = "16s";
template <> inline constexpr char const* kTypeName<unsigned short> = "16u";
template <> inline constexpr char const* kTypeName<int> = "32s";
template <> inline constexpr char const* kTypeName<unsigned int> = "32u";
template <> inline constexpr char const* kTypeName<float> = "32f";
template <> inline constexpr char const* kTypeName<double> = "64f";

// Every block begins 16 bytes into a page, as large ones from new[] do: how a block happens to lie must not
// decide between contenders.
template <typename T> struct BlockAllocator {
    using value_type = T;
    static constexpr std::align_val_t kPage{4096};
    static constexpr std::size_t kHeader = 16;

    BlockAllocator() = default;
    template <typename Other> BlockAllocator(BlockAllocator<Other> const&) {}
    T* allocate(std::size_t count) {
        return reinterpret_cast<T*>(
            static_cast<unsigned char*>(::operator new(count * sizeof(T) + kHeader, kPage)) + kHeader);
    }
    void deallocate(T* block, std::size_t) {
        ::operator delete(reinterpret_cast<unsigned char*>(block) - kHeader, kPage);
    }
    bool operator==(BlockAllocator const&) const { return true; }
    bool operator!=(BlockAllocator const&) const { return false; }
};
template <typename T> using Block = std::vector<T, BlockAllocator<T>>;

// An image that owns its pixels, zero to begin with. A copy is a second image of the same content.
template <typename T> class Image {
public:
    // The stride counts elements; 0: rows without padding.
    Image(int width, int height, int stride = 0)
        : width_(width),
          height_(height),
          stride_(stride ? stride : width),
          elements_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height)) {}

    int Width() const { return width_; }
    int Height() const { return height_; }
    int Stride() const { return stride_; }
    T* Row(int y) { return elements_.data() + static_cast<std::ptrdiff_t>(y) * stride_; }
    T const* Row(int y) const { return elements_.data() + static_cast<std::ptrdiff_t>(y) * stride_; }
    Block<T>& Elements() { return elements_; }

    ImageAttributes Attributes() {
        return {TypeCodeOf<T>, Row(0), width_, height_, stride_, 8 * static_cast<int>(sizeof(T)), 0};
    }

private:
    int width_;
    int height_;
    int stride_;
    Block<T> elements_;
};

// The same content in every run: evenly spread from `low` to `high`, integers with both ends.
template <typename T>
Image<T> RandomImage(int width, int height, int stride = 0,
                     double low = std::is_integral_v<T> ? static_cast<double>(std::numeric_limits<T>::min())
                                                        : 0,
                     double high = std::is_integral_v<T> ? static_cast<double>(std::numeric_limits<T>::max())
                                                         : 65535,
                     unsigned seed = 1) {
    Image<T> image(width, height, stride);
    std::mt19937 random(seed);
    double const step = (high - low + (std::is_integral_v<T> ? 1 : 0)) / 4294967296.0;
    for (T& element : image.Elements()) {
        double const value = low + static_cast<double>(random()) * step;
        element = static_cast<T>(std::is_integral_v<T> ? std::floor(value) : value);
    }
    return image;
}

// Over the pixels, not the padding. Images of different sizes, and not-a-number beside a number, are
// infinitely far apart.
template <typename T> double LargestDifference(Image<T> const& a, Image<T> const& b) {
    double largest = 0;
    bool comparable = a.Width() == b.Width() && a.Height() == b.Height();
    for (int y = 0; comparable && y < a.Height(); ++y)
        for (int x = 0; x < a.Width(); ++x) {
            auto const one = static_cast<double>(a.Row(y)[x]), other = static_cast<double>(b.Row(y)[x]);
            if (std::isnan(one) != std::isnan(other)) comparable = false;
            if (one != other) largest = std::max(largest, std::abs(one - other));
        }
    return comparable ? largest : std::numeric_limits<double>::infinity();
}

}  // namespace ZPA::Benchmarks

#endif
