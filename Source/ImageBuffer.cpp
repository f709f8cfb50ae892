// Images and buffers as objects: shapes, memory, and who frees it.
#include <Basics/ImageBuffer.h>

#include <cmath>
#include <cstring>
#include <stdexcept>

#include "primitives/CountTables.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"
#include "Source/Internal/Trace.h"

namespace ZPA {
namespace {

constexpr auto kBadDimensions = "ZPA_Image<T>::Initialize()  : Invalid buffer dimensions";

bool IsGoodShape(int width, int height, int stride, int bitsperpixel) {
    return width > 0 && height > 0 && stride > 0 && (stride >= width || bitsperpixel <= 8);
}

std::int64_t Product(int height, int stride) { return std::int64_t{height} * stride; }

// Elements from new[], traced; `count` is what the trace tells. Throws `failure` when there is no memory.
template <typename T>
T* Allocate(ISolvane_Object const* object, std::uint64_t elements, long count, char const* failure) {
    T* const block = count < 0 ? nullptr : AllocateElements<T>(elements);
    if (!block) {
        (void)Fail(SOLVANE_OUT_OF_MEMORY, L"Memory allocation failed for %d bytes.",
                   LoggedBytes(BlockBytes(elements, sizeof(T))));
        throw std::runtime_error(failure);
    }
    TraceSafely(eLogMemory, L"allocating(object=%08p, pointer=%08p, size=%ld)", object, block, count);
    return block;
}

template <typename T> void Free(ISolvane_Object const* object, T* block, std::int64_t count) {
    TraceSafely(eLogMemory, L"de-allocating(object=%08p,pointer=%08p,size=%ld)", object, block,
                static_cast<long>(count));
    delete[] block;
}

// The bin of a pixel's absolute value, or `bins` and above where there is none.
template <typename T> std::uint64_t BinOf(T pixel, std::uint64_t bins) {
    if constexpr (std::is_floating_point_v<T>) {
        T const size = std::fabs(pixel);
        return size < static_cast<T>(bins) ? static_cast<std::uint64_t>(size) : bins;
    } else {
        // In 64 bits without a sign, where the most negative pixel has an absolute value too.
        auto const value = static_cast<std::uint64_t>(pixel);
        return pixel < T{} ? 0 - value : value;
    }
}

// Fills `counts`, all of them zero.
template <typename T> void Count(ImageView<T const> const& pixels, ULong32* counts, std::uint32_t bins) {
    if (pixels.Width() < 1) return;  // and any number of rows
    if constexpr (std::is_same_v<T, std::uint8_t> || std::is_same_v<T, std::uint16_t>) {
        // Each pixel is its bin; the library's counts of 32 bits have one form or another, of the same size.
        CountTables<T> tables;
        if (tables.Prepare(0, bins)) {
            for (std::ptrdiff_t y = 0; y < pixels.Height(); ++y) tables.Count(pixels.Row(y), pixels.Width());
            tables.AddTo(reinterpret_cast<std::uint32_t*>(counts));
            return;
        }
    }
    // Also without memory for tables.
    for (std::ptrdiff_t y = 0; y < pixels.Height(); ++y) {
        T const* const row = pixels.Row(y);
        for (std::ptrdiff_t x = 0; x < pixels.Width(); ++x) {
            std::uint64_t const bin = BinOf(row[x], bins);
            if (bin < bins) ++counts[bin];
        }
    }
}

}  // namespace

template <typename T> ZPA_Image<T>::ZPA_Image() : owner_(false), allocated_(-1), room_(0) { SetType(); }

template <typename T>
ZPA_Image<T>::ZPA_Image(T* buffer, int width, int height, int stride, int bitsperpixel, int pixelspacing,
                        bool owner, bool clear)
    : ZPA_Image() {
    Initialize(buffer, width, height, stride, bitsperpixel, pixelspacing, owner, clear);
}

template <typename T>
ZPA_Image<T>::ZPA_Image(ImageAttributes attributes, bool owner, bool clear)
    : ZPA_Image(static_cast<T*>(attributes.buffer), attributes.width, attributes.height, attributes.stride,
                attributes.bitsperpixel, attributes.pixelspacing, owner, clear) {}

template <typename T> ZPA_Image<T>::~ZPA_Image() { Clean(); }

template <typename T>
void ZPA_Image<T>::SetImage(T* buffer, int width, int height, int stride, int bitsperpixel, int pixelspacing,
                            bool owner, bool clear) {
    Trace(
        eLogImage,
        L"SetImage called. buffer=%08p,width=%d,height=%d,stride=%d,bitsperpixel=%d,pixelspacing=%d,owner=%d",
        buffer, width, height, stride, bitsperpixel, pixelspacing, owner);
    T* const present = GetBufferPtr();
    if (!buffer && present && owner_ &&
        Product(height, stride) == Product(attributes_.height, attributes_.stride)) {
        if (!IsGoodShape(width, height, stride, bitsperpixel)) throw std::runtime_error(kBadDimensions);
        // Rows wider than the stride need more memory than the product tells.
        std::uint64_t const elements = ElementsSpanned(width, height, stride);
        if (elements <= room_) {
            attributes_ =
                ImageAttributes(attributes_.type, present, width, height, stride, bitsperpixel, pixelspacing);
            if (clear) std::memset(present, 0, static_cast<std::size_t>(elements) * sizeof(T));
            return;
        }
    }
    if (buffer && buffer == present)
        return ChangeImageAttributes(width, height, stride, bitsperpixel, pixelspacing);
    Clean();
    Initialize(buffer, width, height, stride, bitsperpixel, pixelspacing, owner, clear);
}

template <typename T> void ZPA_Image<T>::SetImage(ImageAttributes attributes, bool owner, bool clear) {
    SetImage(static_cast<T*>(attributes.buffer), attributes.width, attributes.height, attributes.stride,
             attributes.bitsperpixel, attributes.pixelspacing, owner, clear);
}

template <typename T> T* ZPA_Image<T>::GetBufferPtr() const { return static_cast<T*>(attributes_.buffer); }
template <typename T> int ZPA_Image<T>::GetWidth() const { return attributes_.width; }
template <typename T> int ZPA_Image<T>::GetHeight() const { return attributes_.height; }
template <typename T> int ZPA_Image<T>::GetStride() const { return attributes_.stride; }
template <typename T> int ZPA_Image<T>::GetBitsPerPixel() const { return attributes_.bitsperpixel; }
template <typename T> int ZPA_Image<T>::GetPixelSpacing() const { return attributes_.pixelspacing; }
template <typename T> bool ZPA_Image<T>::IsOwner() const { return owner_; }
template <typename T> void ZPA_Image<T>::Disown() { owner_ = false; }
template <typename T> ZPA_Image<T>::operator ImageAttributes() const { return attributes_; }

template <typename T>
void ZPA_Image<T>::ChangeImageAttributes(int width, int height, int stride, int bitsperpixel,
                                         int pixelspacing) {
    std::uint64_t const elements = ElementsSpanned(width, height, stride);
    bool const trusted = allocated_ == -1;
    if (!attributes_.buffer || (!trusted && (Product(height, stride) > allocated_ || elements > room_)))
        throw std::runtime_error("ZPA::ZPA_Image.ChangeImageAttributes() : Invalid buffer attributes.");
    if (trusted) room_ = elements;
    attributes_ = ImageAttributes(attributes_.type, attributes_.buffer, width, height, stride, bitsperpixel,
                                  pixelspacing);
}

template <typename T> ZPA_Ptr<IZPA_Buffer<ULong32>> ZPA_Image<T>::GetHistogram() const {
    ZPA_Ptr<IZPA_Buffer<ULong32>> histogram;
    try {
        histogram = ZPA_Ptr<IZPA_Buffer<ULong32>>(new ZPA_Buffer<ULong32>);
        std::uint32_t const bins = std::uint32_t{1} << (attributes_.bitsperpixel & 31);
        histogram->SetBuffer(nullptr, static_cast<int>(bins), true);
        if (attributes_.buffer) Count(ImageView<T const>(attributes_), histogram->GetBufferPtr(), bins);
    } catch (...) {
        (void)Fail(SOLVANE_UNEXPECTED, L"GetHistogram(); Unexpected exception.");
    }
    return histogram;
}

template <typename T> void ZPA_Image<T>::SetType() { attributes_.type = TypeCodeOf<T>; }

template <typename T>
void ZPA_Image<T>::Initialize(T* buffer, int width, int height, int stride, int bitsperpixel,
                              int pixelspacing, bool owner, bool clear) {
    if (stride == 0) stride = width;
    if (!IsGoodShape(width, height, stride, bitsperpixel)) throw std::runtime_error(kBadDimensions);
    attributes_ =
        ImageAttributes(attributes_.type, buffer, width, height, stride, bitsperpixel, pixelspacing);
    allocated_ = -1;
    room_ = ElementsSpanned(width, height, stride);
    if (buffer) {
        owner_ = owner;
        return;
    }

    std::int64_t const count = Product(height, stride);
    // What cannot be counted in 32 bits is not allocated.
    T* const block = Allocate<T>(this, room_, count > INT32_MAX ? -1 : static_cast<long>(count),
                                 "ZPA_Image<T>::Initialize memory allocation failure");
    if (clear) std::memset(block, 0, static_cast<std::size_t>(room_) * sizeof(T));
    attributes_.buffer = block;
    allocated_ = static_cast<std::int32_t>(count);
    owner_ = true;
}

template <typename T> void ZPA_Image<T>::Clean() {
    if (!owner_ || !attributes_.buffer) return;
    Free(this, GetBufferPtr(), Product(attributes_.height, attributes_.stride));
    attributes_.buffer = nullptr;
}

template <typename T> ZPA_Buffer<T>::ZPA_Buffer() : owner_(false), allocated_(-1) { SetType(); }

template <typename T> ZPA_Buffer<T>::ZPA_Buffer(T* buffer, int size, bool owner) : ZPA_Buffer() {
    Initialize(buffer, size, owner);
}

template <typename T>
ZPA_Buffer<T>::ZPA_Buffer(BufferAttributes attributes, bool owner)
    : ZPA_Buffer(static_cast<T*>(attributes.buffer), attributes.size, owner) {}

template <typename T> ZPA_Buffer<T>::~ZPA_Buffer() { Clean(); }

template <typename T> void ZPA_Buffer<T>::SetBuffer(T* buffer, int size, bool owner) {
    Trace(eLogImage, L"SetBuffer called. buffer=%08p,size=%d,owner=%d", buffer, size, owner);
    T* const present = GetBufferPtr();
    if (!buffer && present && owner_ && size == attributes_.size) {
        std::memset(present, 0, static_cast<std::size_t>(size) * sizeof(T));
        return;
    }
    if (buffer != present) Clean();
    Initialize(buffer, size, owner);
}

template <typename T> void ZPA_Buffer<T>::SetBuffer(BufferAttributes attributes, bool owner) {
    SetBuffer(static_cast<T*>(attributes.buffer), attributes.size, owner);
}

template <typename T> T* ZPA_Buffer<T>::GetBufferPtr() const { return static_cast<T*>(attributes_.buffer); }
template <typename T> int ZPA_Buffer<T>::GetSize() const { return attributes_.size; }
template <typename T> bool ZPA_Buffer<T>::IsOwner() const { return owner_; }
template <typename T> void ZPA_Buffer<T>::Disown() { owner_ = false; }
template <typename T> ZPA_Buffer<T>::operator BufferAttributes() const { return attributes_; }
template <typename T> void ZPA_Buffer<T>::SetType() { attributes_.type = TypeCodeOf<T>; }

template <typename T> void ZPA_Buffer<T>::Initialize(T* buffer, int size, bool owner) {
    if (size < 1) throw std::runtime_error("ZPA_Image<T>::Initialize()  : Invalid buffer size.");
    attributes_ = BufferAttributes(attributes_.type, buffer, size);
    allocated_ = -1;
    if (buffer) {
        owner_ = owner;
        return;
    }

    auto const elements = static_cast<std::size_t>(size);
    attributes_.buffer =
        Allocate<T>(this, elements, size, "ZPA_Buffer<T>::Initialize memory allocation failure");
    std::memset(attributes_.buffer, 0, elements * sizeof(T));
    allocated_ = size;
    owner_ = true;
}

template <typename T> void ZPA_Buffer<T>::Clean() {
    if (!owner_ || !attributes_.buffer) return;
    Free(this, GetBufferPtr(), attributes_.size);
    attributes_.buffer = nullptr;
}

#define ZPA_DEFINED_HERE(T)        \
    template class IZPA_Buffer<T>; \
    template class ZPA_Buffer<T>;
ZPA_FOR_BUFFER_ELEMENTS_(ZPA_DEFINED_HERE)
#undef ZPA_DEFINED_HERE
#define ZPA_DEFINED_HERE(T)       \
    template class IZPA_Image<T>; \
    template class ZPA_Image<T>;
ZPA_FOR_IMAGE_ELEMENTS_(ZPA_DEFINED_HERE)
#undef ZPA_DEFINED_HERE

}  // namespace ZPA
