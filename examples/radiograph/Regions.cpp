// Morphology, labels and measures are the library's; areas and places are counted here in one pass.
#include "radiograph/Regions.h"

#include <Basics/Morphology.h>
#include <Basics/PixelOperations.h>
#include <Basics/Regions.h>
#include <Basics/Statistics.h>
#include <Basics/StructuringElement.h>

#include <algorithm>

#include "radiograph/Library.h"

namespace Radiograph {
namespace {

constexpr int kAllNeighbours = 8;

MaskPtr NewMask(int width, int height) {
    return MaskPtr(new Mask(nullptr, width, height, width, 8, 1, true, true));
}

MaskPtr Disk(int radius) {
    int const padding = radius < 3 ? 1 : 0;  // the patterns of the small ones have a frame of one pixel
    int width = 0;
    int height = 0;
    Check(ZPA::strel_GetBufferSize("disk", radius, 0, padding, &height, &width), "cannot size a disk");
    MaskPtr const disk = NewMask(width, height);
    Check(ZPA::strel(*disk, nullptr, "disk", radius, 0, padding), "cannot make a disk");
    return disk;
}

// A run of pixels of one label, `left` to before `right`.
void AddRun(Region& region, int y, int left, int right, int& longest) {
    ZPA::Rectangle& bounds = region.bounds;
    if (region.area == 0) bounds = {left, y, 0, 0};
    int const end = std::max(bounds.x + bounds.width, right);
    bounds.x = std::min(bounds.x, left);
    bounds.width = end - bounds.x;
    bounds.height = y + 1 - bounds.y;
    region.area += right - left;
    if (right - left <= longest) return;
    longest = right - left;
    region.middle = {left + longest / 2, y};
}

std::vector<Region> PlaceRegions(Labels const& labels) {
    std::vector<Region> regions(static_cast<std::size_t>(labels.count));
    std::vector<int> longest(regions.size());
    int const width = labels.image->GetWidth();
    Pixel const* row = labels.image->GetBufferPtr();
    for (int y = 0; y < labels.image->GetHeight(); ++y, row += width)
        for (int left = 0, right; left < width; left = right) {
            Pixel const label = row[left];
            for (right = left + 1; right < width && row[right] == label;) ++right;
            if (label) AddRun(regions[label - 1U], y, left, right, longest[label - 1U]);
        }
    for (std::size_t i = 0; i < regions.size(); ++i) regions[i].label = static_cast<Pixel>(i + 1);
    return regions;
}

}  // namespace

MaskPtr Above(Image const& image, Pixel threshold) {
    MaskPtr const mask = NewMask(image.GetWidth(), image.GetHeight());
    Pixels const from(image);
    std::transform(from.begin(), from.end(), mask->GetBufferPtr(),
                   [threshold](Pixel pixel) { return static_cast<unsigned char>(pixel > threshold); });
    return mask;
}

void CleanUp(Mask const& mask, int radius) {
    MaskPtr const disk = Disk(radius);
    int const middle = disk->GetWidth() / 2;
    ZPA::ImageAttributes inPlace = mask;
    Check(ZPA::ImOpen(mask, &inPlace, *disk, middle, middle), "cannot take away small structures");
    Check(ZPA::ImClose(mask, &inPlace, *disk, middle, middle), "cannot join structures");
    // Holes are not left through corners, or structures of one pixel's width would not close them.
    Check(ZPA::FillHoles(mask, 4), "cannot close the holes");
}

ImagePtr Widened(Mask const& mask) {
    ImagePtr const wide = NewImage(mask.GetWidth(), mask.GetHeight());
    ZPA::ImageAttributes output = *wide;
    Check(ZPA::CopyPixels(mask, &output), "cannot widen the mask");
    return wide;
}

Labels LabelRegions(Mask const& mask) {
    Labels labels{Widened(mask), 0};
    Check(ZPA::LabelMarkers(*labels.image, kAllNeighbours, &labels.count), "cannot label the regions");
    return labels;
}

std::vector<Region> MeasureRegions(Image const& image, Labels const& labels, std::size_t most) {
    std::vector<Region> regions = PlaceRegions(labels);
    std::stable_sort(regions.begin(), regions.end(),
                     [](Region const& a, Region const& b) { return a.area > b.area; });
    if (regions.size() > most) regions.resize(most);

    // In double precision, since the library squares 16-bit pixels in 32 bits, which those above 46 340 pass.
    ZPA::ZPA_Image<double> wide(nullptr, image.GetWidth(), image.GetHeight(), 0, 64, 1, true, false);
    ZPA::ImageAttributes grey = wide;
    Check(ZPA::CopyPixels(image, &grey), "cannot widen the radiograph");
    Pixels const numbers(*labels.image);
    MaskPtr const mask = NewMask(image.GetWidth(), image.GetHeight());
    for (Region& region : regions) {
        std::transform(numbers.begin(), numbers.end(), mask->GetBufferPtr(),
                       [&](Pixel label) { return static_cast<unsigned char>(label == region.label); });
        ZPA::ImageAttributes const selected = *mask;
        ZPA::APOINT const corner(region.bounds.x, region.bounds.y);
        Check(ZPA::CalculateImageStats(grey, &region.bounds, &selected, &corner, nullptr, nullptr,
                                       &region.mean, &region.deviation),
              "cannot measure a region");
    }
    return regions;
}

}  // namespace Radiograph
