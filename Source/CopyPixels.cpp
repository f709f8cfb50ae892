// CopyPixels: any of six element types into any other.
#include <Basics/PixelOperations.h>

#include <cstring>

#include "primitives/Copy.h"
#include "primitives/Rows.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/OutputImage.h"

namespace ZPA {
namespace {

template <typename T>
using CopyPrimitive = Status (*)(T const*, std::ptrdiff_t, T*, std::ptrdiff_t, Size) noexcept;

// A primitive's status as an operation's code.
SOLVANE_RETURNCODE Report(Status status, wchar_t const* primitive) {
    if (status == kNoPrimitive)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"%s is unsupported for this data type.", primitive);
    if (status != kDone)
        return Fail(SOLVANE_OPERATION_FAILED, L"%s() failed. The error code was %d", primitive, int{status});
    return SOLVANE_OK;
}

template <typename T>
SOLVANE_RETURNCODE CopyBy(CopyPrimitive<T> primitive, wchar_t const* name, ImageView<T const> const& source,
                          ImageView<T> const& destination) {
    constexpr auto kSize = static_cast<std::ptrdiff_t>(sizeof(T));
    Size const size{static_cast<int>(source.Width()), static_cast<int>(source.Height())};
    return Report(primitive(source.Row(0), source.Stride() * kSize, destination.Row(0),
                            destination.Stride() * kSize, size),
                  name);
}

template <typename From, typename To>
SOLVANE_RETURNCODE Copy(ImageView<From const> const& source, ImageView<To> const& destination) {
    ForEachRowPair(source, destination, ConvertRow<From, To>);
    return SOLVANE_OK;
}
template <>
SOLVANE_RETURNCODE Copy(ImageView<std::uint8_t const> const& source, ImageView<std::uint8_t> const& to) {
    return CopyBy(ippiCopy_8u_C1R, L"ippiCopy_8u_C1R", source, to);
}
template <>
SOLVANE_RETURNCODE Copy(ImageView<std::int16_t const> const& source, ImageView<std::int16_t> const& to) {
    return CopyBy(ippiCopy_16s_C1R, L"ippiCopy_16s_C1R", source, to);
}
template <>
SOLVANE_RETURNCODE Copy(ImageView<std::uint16_t const> const& source, ImageView<std::uint16_t> const& to) {
    return CopyBy(ippiCopy_16u_C1R, L"ippiCopy_16u_C1R", source, to);
}
template <>
SOLVANE_RETURNCODE Copy(ImageView<std::int32_t const> const& source, ImageView<std::int32_t> const& to) {
    return CopyBy(ippiCopy_32s_C1R, L"ippiCopy_32s_C1R", source, to);
}
template <> SOLVANE_RETURNCODE Copy(ImageView<float const> const& source, ImageView<float> const& to) {
    return CopyBy(ippiCopy_32f_C1R, L"ippiCopy_32f_C1R", source, to);
}
template <>
SOLVANE_RETURNCODE Copy(ImageView<double const> const& source, ImageView<double> const& destination) {
    ForEachRowPair(source, destination, [](double const* from, double* to, std::ptrdiff_t count) {
        std::memmove(to, from, static_cast<std::size_t>(count) * sizeof *to);
    });
    return SOLVANE_OK;
}

template <typename From, typename To>
SOLVANE_RETURNCODE CheckAndCopy(ImageAttributes const& source, ImageAttributes* destination) {
    if (!source.buffer) return Fail(SOLVANE_NULL_POINTER, L"The source buffer pointer was NULL.");
    if (destination->buffer == source.buffer)
        return Fail(SOLVANE_NULL_POINTER, L"The destination image pointer pointed to the source.");
    if (destination->buffer && (destination->width != source.width || destination->height != source.height))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The destination was not the same size as the source.");
    if (RowsUnreadable(source)) return Fail(SOLVANE_SIZE_MISMATCH, L"The source image's rows overlap.");
    if (destination->buffer && RowsOverlap(*destination))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The destination image's rows overlap.");

    constexpr int kBits = 8 * static_cast<int>(sizeof(To));
    OutputImage<To> output(destination, source.width, source.height, kBits, source.pixelspacing);
    return output.Finish(Copy<From, To>(ImageView<From const>(source), ImageView<To>(*destination)));
}

SOLVANE_RETURNCODE RefuseSource() {
    return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The source image type is not supported.");
}
SOLVANE_RETURNCODE RefuseDestination() {
    return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The destination image type is not supported.");
}

template <typename Core, typename Otherwise>
SOLVANE_RETURNCODE DispatchPixels(eTypeCode type, Core const& core, Otherwise const& otherwise) {
    return Dispatch<std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, float, double>(type, core,
                                                                                            otherwise);
}

}  // namespace

SOLVANE_RETURNCODE CopyPixels(ImageAttributes source, ImageAttributes* destination) {
    return Guarded(L"ZPA::CopyPixels", [&] {
        if (!destination) return Fail(SOLVANE_NULL_POINTER, L"The destination image pointer was NULL.");
        if (!destination->buffer && destination->type == eUnknown) destination->type = source.type;
        auto const fromType = [&](auto from) {
            auto const toType = [&](auto to) {
                return CheckAndCopy<typename decltype(from)::type, typename decltype(to)::type>(source,
                                                                                                destination);
            };
            return DispatchPixels(destination->type, toType, RefuseDestination);
        };
        return DispatchPixels(source.type, fromType, RefuseSource);
    });
}

}  // namespace ZPA
