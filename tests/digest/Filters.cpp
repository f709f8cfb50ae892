// Filters and reductions.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/BlockAverage.h>
#include <Basics/FlatTopFilter.h>
#include <Basics/HomoFilter.h>
#include <Basics/LinearFilters.h>

#include "digest/Cases.h"

namespace ZPA::Testing {
namespace {

constexpr Shape kPacked{131, 47, 131};

void FlatTop(Digest& digest) {
    auto mask = Patches<unsigned char>(kPacked, 30);
    auto const run = [&](auto type, auto plain, auto masked) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kPacked, 31);
        for (auto const& [width, height] : {std::pair{3, 3}, {15, 9}, {131, 47}, {31, 1}}) {
            TestImage<T> result(kPacked);
            digest.Add(int{plain(image.Pixels(), result.Pixels(), 131, 47, width, height)});
            AddImage(digest, result);
            digest.Add(int{masked(image.Pixels(), result.Pixels(), reinterpret_cast<char*>(mask.Pixels()),
                                  131, 47, width, height)});
            AddImage(digest, result);
        }
    };
    run(Type<unsigned short>{}, rect_flat_top_filtering_ushort, rectFlatTopFilteringWithMask_ushort);
    run(Type<unsigned short>{}, rectFlatTopFilter, rectFlatTopFilteringWithMask_ushort);
    run(Type<short>{}, rect_flat_top_filtering_short, rectFlatTopFilteringWithMask_short);
    run(Type<double>{}, rect_flat_top_filtering_double, rectFlatTopFilteringWithMask_double);
}

void Blocks(Digest& digest) {
    auto const run = [&](auto type, auto plain, auto coded) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kPacked, 32);
        for (std::size_t i = 0; i < image.Size(); i += 3) image.Pixels()[i] = T{77};
        for (int const factor : {1, 2, 3, 4, 7, 20}) {
            TestImage<T> result({131 / factor, 47 / factor, 131 / factor});
            digest.Add(
                int{plain(image.Pixels(), result.Pixels(), 131, 47, 131 / factor, 47 / factor, factor)});
            AddImage(digest, result);
            digest.Add(int{
                coded(image.Pixels(), result.Pixels(), 131, 47, 131 / factor, 47 / factor, factor, T{77})});
            AddImage(digest, result);
        }
    };
    run(Type<unsigned short>{}, blockAverageDownSample_ushort, blockAverageDownSampleCodedMask_ushort);
    run(Type<unsigned short>{}, blockAverage, blockAverageDownSampleCodedMask_ushort);
    run(Type<short>{}, blockAverageDownSample_short, blockAverageDownSampleCodedMask_short);
    run(Type<double>{}, blockAverageDownSample_double, blockAverageDownSampleCodedMask_double);
}

void Samples(Digest& digest) {
    auto image = Sample<unsigned short>(kSmall, 33);
    ImageAttributes const input = image.Attributes();
    for (int const factor : {1, 2, 3}) {
        AddResult<unsigned short>(
            digest, {kSmall.width / factor, kSmall.height / factor, kSmall.width / factor},
            [&](ImageAttributes* output) { return subsample(&input, output, factor, factor / 2, 0); });
    }
}

void Transposed(Digest& digest) {
    ForAllTypes([&](auto type) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kSmall, 33);
        AddResult<T>(digest, {kSmall.height, kSmall.width, 61},
                     [&](ImageAttributes* output) { return TransposeImage(image.Attributes(), output); });
    });
}

void Gaussian(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short, double>([&](auto type) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kSmall, 34);
        for (auto const& sigmas : {std::pair{1.0, 1.0}, {3.0, 2.0}, {0.3, 8.0}, {20.0, 5.0}})
            for (unsigned char order = 0; order < 3; ++order) {
                AddResult<double>(digest, kSmall, [&](ImageAttributes* output) {
                    return AnisotropicGaussian(image.Attributes(), output, sigmas.first, sigmas.second, 0,
                                               order, order);
                });
            }
    });
}

// Sines and cosines of the angle differ in their last bits.
void Oriented(Digest& digest) {
    auto image = Sample<unsigned short>(kSmall, 35);
    for (double const angle : {15.0, 45.0, 90.0, -70.0, 200.0}) {
        TestImage<double> result(kSmall);
        digest.Add(int{AnisotropicGaussian(image.Attributes(), result.Into(), 6, 2, angle, 1, 0)});
        AddImageRounded(digest, result);
    }
}

void Contrast(Digest& digest) {
    ForTypes<unsigned char, unsigned short, double>([&](auto type) {
        auto image = Sample<typename decltype(type)::type>(kSmall, 36);
        for (double const sigma : {1.0, 4.0}) {
            AddResult<double>(digest, kSmall, [&](ImageAttributes* output) {
                return HomoFilter(image.Attributes(), sigma, output);
            });
        }
    });
}

template <typename K> TestImage<K> Kernel(Shape shape, bool separable) {
    auto const numbers = Fractions<double>(400, 37);
    TestImage<K> kernel(shape);
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x) {
            auto const i = static_cast<std::size_t>(separable ? x : y * shape.width + x);
            double const row = separable ? numbers[300 + static_cast<std::size_t>(y)] : 1;
            kernel.At(x, y) = static_cast<K>(
                std::is_integral_v<K> ? std::floor(row * 9) * std::floor(numbers[i] * 9) : row * numbers[i]);
        }
    return kernel;
}

template <typename T, typename K>
void Filter(Digest& digest, TestImage<T> image, Shape shape, bool separable, int divisor) {
    auto kernel = Kernel<K>(shape, separable);
    AddResult<T>(digest, image.shape, [&](ImageAttributes* output) {
        return Filter2D(image.Attributes(), nullptr, output, nullptr, kernel.Attributes(), &divisor);
    });
}

template <typename T, typename K> void Filters(Digest& digest, TestImage<T> const& image) {
    for (Shape const shape : {Shape{3, 3, 3}, Shape{4, 2, 5}, Shape{7, 7, 7}, Shape{15, 15, 15}})
        for (bool const separable : {false, true})
            for (int const divisor : {1, -7}) Filter<T, K>(digest, image, shape, separable, divisor);
    auto source = image;
    auto kernel = Kernel<K>({5, 3, 5}, false);
    Rectangle const roi(20, 9, 77, 30);
    APOINT const origin{3, 11};
    AddResult<T>(digest, image.shape, [&](ImageAttributes* output) {
        return Filter2D(source.Attributes(), &roi, output, &origin, kernel.Attributes(), nullptr);
    });
}

void IntegerFilters(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short>([&](auto type) {
        using T = typename decltype(type)::type;
        Filters<T, int>(digest, Sample<T>(kSmall, 38));
    });
    Filter<unsigned short, int>(digest, Sample<unsigned short>(kLarge, 38), {3, 3, 3}, false, 7);
    Filter<unsigned short, int>(digest, Sample<unsigned short>(kLarge, 38), {5, 5, 5}, true, 7);
}

void RealFilters(Digest& digest) {
    Filters<float, float>(digest, Sample<float>(kSmall, 38));
    Filters<double, double>(digest, Sample<double>(kSmall, 38));
}

void BufferFilters(Digest& digest) {
    ForAllTypes([&](auto type) {
        using T = typename decltype(type)::type;
        auto line = Line<T>(501, 39);
        auto weights = Fractions<float>(17, 40);
        std::vector<T> result(line.size());
        BufferAttributes const input(TypeCodeOf<T>, line.data(), 501);
        BufferAttributes const filter(eSingle, weights.data(), 17);
        BufferAttributes output(TypeCodeOf<T>, result.data(), 501);
        digest.Add(int{FilterBufferSimple(input, filter, &output)});
        digest.Add(result);
    });
}

// "gaussian" is made of exponentials.
void Kernels(Digest& digest) {
    for (char const* const kind : {"average", "gaussian", "laplacian", "sobel", "disk"}) {
        TestImage<double> kernel({3, 3, 3});
        digest.Add(int{fspecial(kernel.Attributes(), kind, 0.6)});
        std::vector<double> const values(kernel.Pixels(), kernel.Pixels() + 9);
        digest.AddRounded(values);
    }
}

}  // namespace

std::vector<Case> FilterCases() {
    return {{"rectFlatTopFilter and its forms", FlatTop},
            {"blockAverage and its forms", Blocks},
            {"subsample", Samples},
            {"TransposeImage", Transposed},
            {"AnisotropicGaussian", Gaussian},
            {"AnisotropicGaussian, turned", Oriented},
            {"HomoFilter", Contrast},
            {"Filter2D, integers", IntegerFilters},
            {"Filter2D, real", RealFilters, true},
            {"FilterBufferSimple", BufferFilters},
            {"fspecial", Kernels}};
}

}  // namespace ZPA::Testing
