// The steps, in their order.
#include "radiograph/Processing.h"

#include <Basics/AnisotropicGaussian.h>
#include <Basics/BlockAverage.h>
#include <Basics/FlatTopFilter.h>
#include <Basics/HomoFilter.h>

#include <algorithm>
#include <numeric>

#include "radiograph/Edges.h"
#include "radiograph/Histogram.h"
#include "radiograph/Input.h"
#include "radiograph/Library.h"
#include "radiograph/Phantom.h"
#include "radiograph/Progress.h"
#include "radiograph/Text.h"

namespace Radiograph {
namespace {

constexpr std::size_t kRegionsShown = 12;

// Runs `make`, and keeps what it made as the next step.
template <typename Make>
ImagePtr Do(std::vector<Step>& steps, std::string title, std::string name, std::string caption,
            Make const& make) {
    Progress progress(title);
    ImagePtr const result = make();
    steps.push_back({std::move(title), std::move(name), std::move(caption), result, progress.Done(), {}});
    return result;
}

// An odd window of about a quarter of the image: wider than ribs and vessels, narrower than the chest.
int Window(int side) { return std::max(3, side / 4 | 1); }

ImagePtr Background(Image const& input, int across, int down) {
    int const width = input.GetWidth();
    int const height = input.GetHeight();
    ImagePtr const background = NewImage(width, height);
    // In double precision, since the 16-bit pixels of so wide a window pass 32 bits.
    Check(ZPA::rectFlatTopFilteringTemplate(input.GetBufferPtr(), background->GetBufferPtr(), width, height,
                                            across, down),
          "cannot find the background in a window of " + std::to_string(across) + " by " +
              std::to_string(down));
    return background;
}

ImagePtr Flattened(Image const& input, Image const& background) {
    ImagePtr const flattened = NewImage(input.GetWidth(), input.GetHeight());
    Pixels const from(input);
    Pixels const below(background);
    auto const sum = std::accumulate(below.begin(), below.end(), 0ULL);
    auto const mean = static_cast<int>(sum / below.size());
    std::transform(from.begin(), from.end(), below.begin(), Pixels(*flattened).begin(),
                   [mean](int pixel, int base) {
                       return static_cast<Pixel>(std::clamp(pixel - base + mean, 0, 0xFFFF));
                   });
    return flattened;
}

// The local contrast, in deviations of the whole, from -4 on black to 4 on white.
ImagePtr Normalised(Image const& input, double sigma) {
    ZPA::ZPA_Image<double> contrast(nullptr, input.GetWidth(), input.GetHeight(), 0, 64, 1, true, false);
    ZPA::ImageAttributes output = contrast;
    Check(ZPA::HomoFilter(input, sigma, &output), "cannot normalise the local contrast");
    ImagePtr const normalised = NewImage(input.GetWidth(), input.GetHeight());
    Pixels const to(*normalised);
    std::transform(contrast.GetBufferPtr(), contrast.GetBufferPtr() + to.size(), to.begin(),
                   [](double value) {
                       // Where the image is flat there is no contrast, and the value not a number.
                       double const shown = value == value ? value : 0;
                       return static_cast<Pixel>(std::clamp((shown + 4) / 8, 0.0, 1.0) * 0xFFFF);
                   });
    return normalised;
}

ImagePtr Smoothed(Image const& input, double sigma) {
    ImagePtr const smoothed = NewImage(input.GetWidth(), input.GetHeight());
    ZPA::ImageAttributes output = *smoothed;
    Check(ZPA::AnisotropicGaussian(input, &output, sigma, sigma, 0, 0, 0), "cannot smooth the radiograph");
    return smoothed;
}

ImagePtr Preview(Image const& input, int factor) {
    int const width = input.GetWidth() / factor;
    int const height = input.GetHeight() / factor;
    ImagePtr const preview = NewImage(width, height);
    Check(ZPA::blockAverageDownSample_ushort(input.GetBufferPtr(), preview->GetBufferPtr(), input.GetWidth(),
                                             input.GetHeight(), width, height, factor),
          "cannot reduce the radiograph by " + std::to_string(factor));
    return preview;
}

}  // namespace

Findings Process(std::string const& file) {
    Findings found;
    std::vector<Step>& steps = found.steps;
    bool const phantom = file.empty();

    found.input =
        Do(steps, "Input", "input",
           phantom ? "A phantom of a chest, as a detector with logarithmic amplification would record it."
                   : "The radiograph as it was read.",
           [&] { return phantom ? MakePhantom(2048) : ReadRadiograph(file); });
    Image const& input = *found.input;
    int const side = std::min(input.GetWidth(), input.GetHeight());

    int const across = Window(input.GetWidth());
    int const down = Window(input.GetHeight());
    auto const background = Do(steps, "Background", "background",
                               "The mean of every pixel’s surroundings, " + Dimensions(across, down) +
                                   " pixels, cut off at the edges.",
                               [&] { return Background(input, across, down); });
    steps.back().parameters = {{"WindowWidth", across}, {"WindowHeight", down}};

    found.flattened = Do(steps, "Flattened", "flattened",
                         "Input − background + the background’s mean, kept within 16 bits: what is large and "
                         "slow has gone, what is small and sharp stands out.",
                         [&] { return Flattened(input, *background); });

    Do(steps, "Normalised", "normalised",
       "Every pixel’s distance from its surroundings’ mean in units of their deviation: faint structures "
       "show as clearly as strong ones.",
       [&] { return Normalised(input, std::max(1.0, side / 64.0)); });

    Do(steps, "Edges", "edges", "How steeply grey values change, by Sobel’s kernels after slight smoothing.",
       [&] { return Edges(input, std::max(0.5, side / 1000.0)); });

    MaskPtr mask;
    int const radius = std::clamp(side / 256, 1, 6);
    Do(steps, "Mask", "mask",
       "Where more of the beam arrived than Otsu’s threshold of the flattened image parts off, after "
       "smoothing: opened and closed with a disk of radius " +
           std::to_string(radius) + ", and without holes.",
       [&] {
           ImagePtr const smoothed = Smoothed(*found.flattened, std::max(0.5, side / 512.0));
           found.threshold = OtsuThreshold(CountByValue(*smoothed));
           mask = Above(*smoothed, found.threshold);
           CleanUp(*mask, radius);
           return Widened(*mask);
       });
    steps.back().parameters = {{"Threshold", found.threshold}, {"Radius", radius}};
    steps.back().look = Look::kMask;

    Do(steps, "Regions", "regions",
       "The parts of the mask that hang together, the largest in colour: their numbers are those of the "
       "table.",
       [&] {
           Labels const labels = LabelRegions(*mask);
           found.regionCount = labels.count;
           found.regions = MeasureRegions(input, labels, kRegionsShown);
           return labels.image;
       });
    steps.back().look = Look::kRegions;

    int const factor = std::clamp(side / 256, 1, 8);
    Do(steps, "Preview", "preview",
       "The means of blocks of " + Dimensions(factor, factor) + " pixels: small, and with less noise.",
       [&] { return Preview(input, factor); });

    return found;
}

}  // namespace Radiograph
