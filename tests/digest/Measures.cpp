// Statistics, counts and histograms.
#include <Basics/Histogram.h>
#include <Basics/ImageBuffer.h>
#include <Basics/Statistics.h>

#include "digest/Cases.h"
#include "support/Regions.h"

namespace ZPA::Testing {
namespace {

// Runs a check for each way to choose pixels, with the arguments that operations on images share.
template <typename Check> void ForChoices(Check const& check) {
    auto mask = Patches<unsigned char>(kSmall, 20);
    ImageAttributes const selected = mask.Attributes();
    for (Choice const& choice : Choices(kSmall))
        check(choice.Roi(), choice.masked ? &selected : nullptr, choice.Origin());
}

void Statistics(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short, double>([&](auto type) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kSmall, 21);
        ForChoices([&](auto roi, auto mask, auto origin) {
            double found[4] = {};
            digest.Add(int{CalculateImageStats(image.Attributes(), roi, mask, origin, &found[0], &found[1],
                                               &found[2], &found[3])});
            digest.Add(found, 4);
        });
    });
    ForTypes<unsigned char, unsigned short, float, double>([&](auto type) {
        using T = typename decltype(type)::type;
        auto line = Line<T>(5003, 22);
        BufferAttributes const buffer(TypeCodeOf<T>, line.data(), static_cast<int>(line.size()));
        int const start = 11, end = 4999;
        double found[4] = {};
        digest.Add(
            int{CalculateBufferStats(buffer, &start, &end, &found[0], &found[1], &found[2], &found[3])});
        digest.Add(found, 4);
    });
}

void Counts(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short>([&](auto type) {
        auto image = Patches<typename decltype(type)::type>(kSmall, 23);
        ForChoices([&](auto roi, auto mask, auto origin) {
            int counts[2] = {};
            digest.Add(int{ImageCountOfN(image.Attributes(), roi, mask, origin, 2, &counts[0], &counts[1])});
            digest.Add(counts, 2);
            for (auto const operation : {RowCountOfN, ColumnCountOfN}) {
                std::vector<ULong32> with(200), without(200);
                BufferAttributes yes(eUInt32, with.data(), 200), no(eUInt32, without.data(), 200);
                digest.Add(int{operation(image.Attributes(), roi, mask, origin, 2, &yes, &no)});
                digest.Add(with);
                digest.Add(without);
            }
        });
    });
}

void Normalised(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short, float, double>([&](auto type) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kSmall, 24);
        ForChoices([&](auto roi, auto mask, auto origin) {
            TestImage<T> same(kSmall);
            TestImage<double> real(kSmall);
            for (ImageAttributes output : {same.Attributes(), real.Attributes()})
                digest.Add(int{NormalizeImage(image.Attributes(), roi, mask, origin, &output)});
            AddImage(digest, same);
            AddImage(digest, real);
        });
        auto line = Line<T>(1003, 25);
        std::vector<T> result(line.size());
        BufferAttributes const buffer(TypeCodeOf<T>, line.data(), 1003);
        BufferAttributes output(TypeCodeOf<T>, result.data(), 1003);
        digest.Add(int{NormalizeBuffer(buffer, nullptr, nullptr, &output)});
        digest.Add(result);
    });
}

void Histograms(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short, float, double>([&](auto type) {
        using T = typename decltype(type)::type;
        auto image = Sample<T>(kSmall, 26);
        ForChoices([&](auto roi, auto mask, auto origin) {
            int const low = 3, high = 30000;
            std::vector<ULong32> counts(70000);
            BufferAttributes whole(eUInt32, counts.data(), static_cast<int>(counts.size()));
            digest.Add(
                int{GetIntegerHistogram(image.Attributes(), roi, mask, origin, nullptr, nullptr, &whole)});
            digest.Add(counts);
            digest.Add(int{GetIntegerHistogram(image.Attributes(), roi, mask, origin, &low, &high, &whole)});
            digest.Add(counts);
            BufferAttributes bins(eUInt32, counts.data(), 100);
            digest.Add(
                int{GetRealHistogram(image.Attributes(), roi, mask, origin, 100, -100.5, 40000.25, &bins)});
            digest.Add(counts.data(), 100);
        });
    });
    auto large = Sample<unsigned short>(kLarge, 27);
    std::vector<ULong32> counts(65536);
    BufferAttributes output(eUInt32, counts.data(), 65536);
    digest.Add(
        int{GetIntegerHistogram(large.Attributes(), nullptr, nullptr, nullptr, nullptr, nullptr, &output)});
    digest.Add(counts);
}

void ObjectHistograms(Digest& digest) {
    ForAllTypes([&](auto type) {
        using T = typename decltype(type)::type;
        auto pixels = Sample<T>(kSmall, 29);
        ZPA_Image<T> const image(pixels.Attributes(12), false, false);
        auto const histogram = image.GetHistogram();
        digest.Add(histogram.GetPointer() != nullptr);
        if (histogram.GetPointer())
            digest.Add(histogram->GetBufferPtr(), static_cast<std::size_t>(histogram->GetSize()));
    });
}

// The kernel is made of exponentials.
void Smoothed(Digest& digest) {
    for (int const padding : {0, 1, 2, 3}) {
        auto line = Line<float>(301, 28);
        digest.Add(int{smoothHistogram(line.data(), 301, 2.5F, padding)});
        digest.AddRounded(line);
    }
}

}  // namespace

std::vector<Case> MeasureCases() {
    return {{"CalculateImageStats, CalculateBufferStats", Statistics},
            {"ImageCountOfN, RowCountOfN, ColumnCountOfN", Counts},
            {"NormalizeImage, NormalizeBuffer", Normalised},
            {"GetIntegerHistogram, GetRealHistogram", Histograms},
            {"ZPA_Image::GetHistogram", ObjectHistograms},
            {"smoothHistogram", Smoothed}};
}

}  // namespace ZPA::Testing
