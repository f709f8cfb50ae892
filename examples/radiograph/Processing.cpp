// The steps, in their order.
#include "radiograph/Processing.h"

#include <Basics/FlatTopFilter.h>

#include <algorithm>
#include <numeric>

#include "radiograph/Input.h"
#include "radiograph/Library.h"
#include "radiograph/Phantom.h"
#include "radiograph/Progress.h"
#include "radiograph/Text.h"

namespace Radiograph {
namespace {

// Runs `make`, and keeps what it made as the next step.
template <typename Make>
ImagePtr Do(std::vector<Step>& steps, std::string title, std::string name, std::string caption,
            Make const& make) {
    Progress progress(title);
    ImagePtr const result = make();
    steps.push_back({std::move(title), std::move(name), std::move(caption), result, progress.Done()});
    return result;
}

// An odd window of about a quarter of the image: wider than ribs and vessels, narrower than the chest.
int Window(int side) { return std::max(3, side / 4 | 1); }

ImagePtr Background(Image const& input) {
    int const width = input.GetWidth();
    int const height = input.GetHeight();
    ImagePtr const background = NewImage(width, height);
    int const across = Window(width);
    int const down = Window(height);
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

}  // namespace

std::vector<Step> Process(std::string const& file) {
    std::vector<Step> steps;
    bool const phantom = file.empty();

    auto const input =
        Do(steps, "Input", "input",
           phantom ? "A phantom of a chest, as a detector with logarithmic amplification would record it."
                   : "The radiograph as it was read.",
           [&] { return phantom ? MakePhantom(2048) : ReadRadiograph(file); });

    auto const window = Dimensions(Window(input->GetWidth()), Window(input->GetHeight()));
    auto const background =
        Do(steps, "Background", "background",
           "The mean of every pixel’s surroundings, " + window + " pixels, cut off at the edges.",
           [&] { return Background(*input); });

    Do(steps, "Flattened", "flattened",
       "Input − background + the background’s mean, kept within 16 bits: what is large and "
       "slow has gone, what is small and sharp stands out.",
       [&] { return Flattened(*input, *background); });

    return steps;
}

}  // namespace Radiograph
