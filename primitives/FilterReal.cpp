// Filters with kernels of real numbers.
#include <algorithm>
#include <memory>
#include <new>

#include "primitives/Filter.h"
#include "primitives/FilterCheck.h"
#include "primitives/WeighRows.h"

namespace ZPA {
namespace {

// Multiply-adds done in the time that moving a byte takes.
constexpr int kMultiplyAddsPerByte = 4;

// In work memory: the turned kernel.
template <typename T> std::uint64_t WorkElements(Size kernelSize) {
    return static_cast<std::uint64_t>(kernelSize.width) * static_cast<std::uint64_t>(kernelSize.height);
}

template <typename T> Status Filter(Filtering<T, T> const& filtering, T* work) noexcept {
    std::reverse_copy(filtering.kernel, filtering.kernel + filtering.Taps(), work);
    Window<T> const window{work, filtering.kernelSize};
    constexpr auto kBytes = static_cast<std::ptrdiff_t>(sizeof(T));
    ForEachBand(filtering.size.height, filtering.Taps() * filtering.size.width / kMultiplyAddsPerByte,
                [&](int, int first, int end) noexcept {
                    WeighRows(window, filtering.ReadRow(first), filtering.source.step / kBytes,
                              filtering.destination[first], filtering.destination.step / kBytes,
                              {filtering.size.width, end - first});
                });
    return kDone;
}

}  // namespace

Status ippiFilter_32f_C1R(float const* source, std::ptrdiff_t sourceStep, float* destination,
                          std::ptrdiff_t destinationStep, Size size, float const* kernel, Size kernelSize,
                          int anchorX, int anchorY) noexcept {
    Filtering<float, float> const filtering{{source, sourceStep}, {destination, destinationStep}, size,
                                            kernel, kernelSize, anchorX, anchorY};
    Status const status = filtering.Check();
    if (status != kDone) return status;
    std::unique_ptr<float[]> const work(
        new (std::nothrow) float[static_cast<std::size_t>(WorkElements<float>(kernelSize))]);
    return work ? Filter(filtering, work.get()) : kNoMemory;
}

Status ippiFilter_64f_C1R(double const* source, std::ptrdiff_t sourceStep, double* destination,
                          std::ptrdiff_t destinationStep, Size size, double const* kernel, Size kernelSize,
                          int anchorX, int anchorY, std::uint8_t* work) noexcept {
    Filtering<double, double> const filtering{{source, sourceStep}, {destination, destinationStep}, size,
                                              kernel, kernelSize, anchorX, anchorY};
    Status const status = work ? filtering.Check() : kNullPointer;
    return status == kDone ? Filter(filtering, reinterpret_cast<double*>(work)) : status;
}

Status ippiFilterGetBufSize_64f_C1R(Size kernelSize, int width, std::uint64_t* bytes) noexcept {
    if (!bytes) return kNullPointer;
    if (kernelSize.width < 1 || kernelSize.height < 1 || width < 1) return kBadSize;
    *bytes = WorkElements<double>(kernelSize) * sizeof(double);
    return kDone;
}

}  // namespace ZPA
