// Calls of statistics, counts, inversions and histograms.
#include <Basics/Histogram.h>
#include <Basics/Statistics.h>

#include "operations/Operations.h"

namespace ZPA::Fuzz {
namespace {

// The cost is in proportion to sigma, which is why it has an end here.
void CallSmooth(Scene& scene) {
    int const count = scene.input.Number(0, 300);
    auto* const histogram = scene.Elements<float>(count);
    double sigma = scene.input.Real();
    if (sigma > 1000 && sigma < 1e300) sigma = 1000;
    scene.Answer(smoothHistogram(histogram, count, static_cast<float>(sigma), scene.input.Number(-1, 3)));
}

}  // namespace

std::vector<Operation> const& Measurements() {
    static std::vector<Operation> const operations = {
        {"CalculateImageStats", Call<CalculateImageStats>, kPlain},
        {"CalculateBufferStats", Call<CalculateBufferStats>, kPlain},
        {"ImageCountOfN", Call<ImageCountOfN>, kPlain},
        {"RowCountOfN", Call<RowCountOfN>, kPlain},
        {"ColumnCountOfN", Call<ColumnCountOfN>, kPlain},
        {"NormalizeImage", Call<NormalizeImage>, kPlain},
        {"NormalizeBuffer", Call<NormalizeBuffer>, kPlain},
        {"InvertGray", Call<InvertGray>, kPlain},
        {"InvertMaskImage", Call<InvertMaskImage>, kPlain},
        {"GetIntegerHistogram", Call<GetIntegerHistogram>, kPlain},
        {"GetRealHistogram", Call<GetRealHistogram>, kPlain},
        {"smoothHistogram", CallSmooth, kPlain},
    };
    return operations;
}

}  // namespace ZPA::Fuzz
