// Filter2D: the region, the checks in their order, and which primitive serves which type.
#include <Basics/LinearFilters.h>

#include <memory>
#include <vector>

#include "primitives/Filter.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"
#include "Source/Internal/OutputImage.h"
#include "Source/Internal/Region.h"

namespace ZPA {
namespace {

// In 64 bits: a hostile kernel or origin must not overflow. Once checked, all of them fit an int.
struct Area {
    std::int64_t x, y, width, height;
};

// A kernel as the primitives take it.
template <typename T> class PackedKernel {
public:
    explicit PackedKernel(ImageAttributes const& kernel)
        : elements(static_cast<T const*>(kernel.buffer)), size{kernel.width, kernel.height} {
        if (kernel.width < 1 || kernel.height < 2 || kernel.stride == kernel.width) return;
        ImageView<T const> const view(kernel);
        for (std::ptrdiff_t y = 0; y < view.Height(); ++y)
            copy_.insert(copy_.end(), view.Row(y), view.Row(y) + view.Width());
        elements = copy_.data();
    }
    PackedKernel(PackedKernel const&) = delete;
    PackedKernel& operator=(PackedKernel const&) = delete;

    T const* elements;
    Size size;

private:
    std::vector<T> copy_;
};

template <typename T>
using IntegerFilter = Status (*)(T const*, std::ptrdiff_t, T*, std::ptrdiff_t, Size, std::int32_t const*,
                                 Size, int, int, int) noexcept;
template <typename T> constexpr IntegerFilter<T> kIntegerFilter = nullptr;
template <> constexpr IntegerFilter<std::uint8_t> kIntegerFilter<std::uint8_t> = ippiFilter_8u_C1R;
template <> constexpr IntegerFilter<std::int16_t> kIntegerFilter<std::int16_t> = ippiFilter_16s_C1R;
template <> constexpr IntegerFilter<std::uint16_t> kIntegerFilter<std::uint16_t> = ippiFilter_16u_C1R;

// From the region in the source to its place in the destination; both begin at these pixels.
template <typename T> struct Pass {
    T const* from;
    std::ptrdiff_t fromStep;
    T* to;
    std::ptrdiff_t toStep;
    Size size;
};

template <typename T>
SOLVANE_RETURNCODE FilterIntegers(Pass<T> const& pass, ImageAttributes const& kernel, int const* divisor) {
    Status status = kNoPrimitive;
    if constexpr (kIntegerFilter<T> != nullptr) {
        PackedKernel<std::int32_t> const packed(kernel);
        status = kIntegerFilter<T>(pass.from, pass.fromStep, pass.to, pass.toStep, pass.size, packed.elements,
                                   packed.size, kernel.width / 2, kernel.height / 2, divisor ? *divisor : 1);
    }
    if (status == kNoPrimitive)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"ippiFilterInt() is unsupported for this data type.");
    if (status != kDone)
        return Fail(SOLVANE_OPERATION_FAILED, L"ippiFilterInt() failed. The error code was %d", int{status});
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ReportReal(Status status) {
    if (status == kDone) return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, L"ippiFilterReal() failed. The error code was %d", int{status});
}

SOLVANE_RETURNCODE FilterReals(Pass<float> const& pass, ImageAttributes const& kernel, int const*) {
    PackedKernel<float> const packed(kernel);
    return ReportReal(ippiFilter_32f_C1R(pass.from, pass.fromStep, pass.to, pass.toStep, pass.size,
                                         packed.elements, packed.size, kernel.width / 2, kernel.height / 2));
}

SOLVANE_RETURNCODE FilterReals(Pass<double> const& pass, ImageAttributes const& kernel, int const*) {
    PackedKernel<double> const packed(kernel);
    std::uint64_t bytes = 0;
    Status const status = ippiFilterGetBufSize_64f_C1R(packed.size, pass.size.width, &bytes);
    if (status != kDone) return ReportReal(status);
    std::unique_ptr<std::uint8_t[]> const work(AllocateElements<std::uint8_t>(bytes));
    if (!work) return FailMemory(L"Filter2D", bytes);
    return ReportReal(ippiFilter_64f_C1R(pass.from, pass.fromStep, pass.to, pass.toStep, pass.size,
                                         packed.elements, packed.size, kernel.width / 2, kernel.height / 2,
                                         work.get()));
}

// What would be read or written beyond what the arguments describe.
template <typename T>
SOLVANE_RETURNCODE RefuseShapes(ImageAttributes const& source, ImageAttributes const& destination,
                                ImageAttributes const& kernel) {
    if (RowsUnreadable(source)) return Fail(SOLVANE_SIZE_MISMATCH, L"The source image's rows overlap.");
    if (destination.buffer && SizeOfTypeCode(destination.type) < int{sizeof(T)})
        return Fail(SOLVANE_SIZE_MISMATCH,
                    L"The destination image's elements are narrower than the source's.");
    if (std::is_floating_point_v<T> && SizeOfTypeCode(kernel.type) < int{sizeof(T)})
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The kernel was not a real kernel.");
    if (RowsOverlap(kernel)) return Fail(SOLVANE_SIZE_MISMATCH, L"The kernel's rows overlap.");
    return SOLVANE_OK;
}

template <typename T>
SOLVANE_RETURNCODE Filter(ImageAttributes const& source, Area const& region, ImageAttributes* destination,
                          APOINT const& origin, ImageAttributes const& kernel, int const* divisor) {
    OutputImage<T> output(destination, destination->width, destination->height, source.bitsperpixel,
                          source.pixelspacing, origin.x != 0 || origin.y != 0);
    constexpr auto kBytes = static_cast<std::ptrdiff_t>(sizeof(T));
    ImageView<T const> const from(source);
    ImageView<T> const to(*destination);
    Pass<T> const pass{from.Row(static_cast<std::ptrdiff_t>(region.y)) + region.x,
                       from.Stride() * kBytes,
                       to.Row(origin.y) + origin.x,
                       to.Stride() * kBytes,
                       {static_cast<int>(region.width), static_cast<int>(region.height)}};
    if constexpr (std::is_floating_point_v<T>)
        return output.Finish(FilterReals(pass, kernel, divisor));
    else
        return output.Finish(FilterIntegers(pass, kernel, divisor));
}

template <typename T>
SOLVANE_RETURNCODE CheckAndFilter(ImageAttributes const& source, Rectangle const* roi,
                                  ImageAttributes* destination, APOINT const* destinationOrigin,
                                  ImageAttributes const& kernel, int const* divisor) {
    if (!source.buffer) return Fail(SOLVANE_NULL_POINTER, L"The source buffer pointer was NULL.");
    if (!destination || destination->buffer == source.buffer)
        return Fail(SOLVANE_NULL_POINTER,
                    L"The destination image pointer was NULL or pointed to the source.");
    if (!kernel.buffer) return Fail(SOLVANE_NULL_POINTER, L"The kernel buffer pointer was NULL.");
    if (!std::is_floating_point_v<T> && kernel.type != eInt32)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The kernel was not an integer kernel.");

    std::int64_t const kw = kernel.width, kh = kernel.height, left = kw / 2, top = kh / 2;
    Area const region = roi ? Area{roi->x, roi->y, roi->width, roi->height}
                            : Area{left, top, source.width - kw + 1, source.height - kh + 1};
    if (region.width < 1 || region.height < 1)
        return Fail(SOLVANE_OUT_OF_RANGE, L"The supplied ROI was empty.");
    if (region.x < left || region.y < top || region.x + region.width > source.width - (kw - left - 1) ||
        region.y + region.height > source.height - (kh - top - 1))
        return Fail(SOLVANE_OUT_OF_RANGE, L"The ROI was out of bounds in the source image.");

    APOINT const origin = destinationOrigin ? *destinationOrigin : APOINT();
    if (!destination->buffer) {
        int const width = static_cast<int>(origin.x + region.width);
        int const height = static_cast<int>(origin.y + region.height);
        *destination = ImageAttributes(source.type, nullptr, width, height, width, source.bitsperpixel,
                                       source.pixelspacing);
    }
    if (LeavesImage(origin.x, origin.y, region.width, region.height, *destination))
        return Fail(SOLVANE_OUT_OF_RANGE, L"The ROI was out of bounds in the destination image.");
    if (destination->stride < destination->width)
        return Fail(SOLVANE_OUT_OF_RANGE, L"The destination stride was less than the destination width.");

    SOLVANE_RETURNCODE const code = RefuseShapes<T>(source, *destination, kernel);
    return code == SOLVANE_OK ? Filter<T>(source, region, destination, origin, kernel, divisor) : code;
}

}  // namespace

SOLVANE_RETURNCODE Filter2D(ImageAttributes source, Rectangle const* roi, ImageAttributes* destination,
                            APOINT const* destinationOrigin, ImageAttributes kernel, int const* divisor) {
    return Guarded(L"ZPA::Filter2D", [&] {
        auto const core = [&](auto element) {
            return CheckAndFilter<typename decltype(element)::type>(source, roi, destination,
                                                                    destinationOrigin, kernel, divisor);
        };
        return Dispatch<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                        float, double>(
            source.type, core, [] { return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Unsupported image datatype."); });
    });
}

}  // namespace ZPA
