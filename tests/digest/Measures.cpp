// Statistics, counts and histograms.
#include <Basics/Histogram.h>
#include <Basics/Statistics.h>

#include "digest/Cases.h"

namespace ZPA::Testing {
namespace {

void Statistics(Digest& digest) {
    double found[4] = {};
    ForSamples<unsigned char, short, unsigned short, double>(21, [&](auto& image) {
        ForChoices(20, [&](auto roi, auto mask, auto origin) {
            digest.Add(int{CalculateImageStats(image.Attributes(), roi, mask, origin, &found[0], &found[1],
                                               &found[2], &found[3])});
            digest.Add(found, 4);
        });
    });
    ForSamples<unsigned char, unsigned short, float, double>(22, [&](auto& line) {
        int const start = 11, end = 4999;
        digest.Add(int{
            CalculateBufferStats(BufferOf(line), &start, &end, &found[0], &found[1], &found[2], &found[3])});
        digest.Add(found, 4);
    });
}

void Counts(Digest& digest) {
    ForTypes<unsigned char, short, unsigned short>([&](auto type) {
        auto image = Patches<typename decltype(type)::type>(kSmall, 23);
        ForChoices(20, [&](auto roi, auto mask, auto origin) {
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
    ForSamples<unsigned char, short, unsigned short, float, double>(24, [&](auto& image) {
        ForChoices(20, [&](auto roi, auto mask, auto origin) {
            auto const normalise = [&](ImageAttributes* output) {
                return NormalizeImage(image.Attributes(), roi, mask, origin, output);
            };
            AddResult(digest, image, normalise);
            AddResult<double>(digest, kSmall, normalise);
        });
        BufferAttributes line = BufferOf(image);
        digest.Add(int{NormalizeBuffer(line, nullptr, nullptr, &line)});
        AddImage(digest, image);
    });
}

void Histograms(Digest& digest) {
    std::vector<ULong32> counts(70000);
    BufferAttributes whole(eUInt32, counts.data(), 70000), bins(eUInt32, counts.data(), 100);
    auto const add = [&](SOLVANE_RETURNCODE code) {
        digest.Add(int{code});
        digest.Add(counts);
    };
    ForSamples<unsigned char, short, unsigned short, float, double>(26, [&](auto& image) {
        ForChoices(20, [&](auto roi, auto mask, auto origin) {
            int const low = 3, high = 30000;
            ImageAttributes const input = image.Attributes();
            add(GetIntegerHistogram(input, roi, mask, origin, nullptr, nullptr, &whole));
            add(GetIntegerHistogram(input, roi, mask, origin, &low, &high, &whole));
            add(GetRealHistogram(input, roi, mask, origin, 100, -100.5, 40000.25, &bins));
        });
    });
    auto large = Sample<unsigned short>(kLarge, 27);
    add(GetIntegerHistogram(large.Attributes(), nullptr, nullptr, nullptr, nullptr, nullptr, &whole));
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
            {"smoothHistogram", Smoothed}};
}

}  // namespace ZPA::Testing
