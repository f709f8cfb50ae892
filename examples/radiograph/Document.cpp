// From steps to a bag, and from the bag to a document with raw files beside it.
#include "radiograph/Document.h"

#include <Basics/PixelOperations.h>
#include <Basics/ZPA_BagIO.h>

#include "radiograph/Failure.h"
#include "radiograph/Statistics.h"

namespace Radiograph {
namespace {

constexpr char kRoot[] = "radiograph";

using BagPtr = ZPA::ZPA_Ptr<ZPA::Bag>;

BagPtr NewBag() { return BagPtr(new ZPA::Bag); }

BagPtr ParametersOf(Step const& step) {
    BagPtr const bag = NewBag();
    for (Parameter const& parameter : step.parameters) bag->Set(parameter.name, parameter.value);
    return bag;
}

BagPtr FiguresOf(Step const& step) {
    Counts const counts = CountByValue(*step.result);
    Statistics const found = Measure(*step.result, counts);
    BagPtr const bag = NewBag();
    bag->Set("Minimum", int{found.minimum});
    bag->Set("Maximum", int{found.maximum});
    bag->Set("Mean", found.mean);
    bag->Set("Deviation", found.deviation);
    bag->Set("Threshold", int{OtsuThreshold(counts)});
    bag->Set("Seconds", step.seconds);
    return bag;
}

// A bag a region, under its number.
BagPtr RegionsOf(Findings const& found) {
    BagPtr const regions = NewBag();
    regions->Set("Count", found.regionCount);
    for (Region const& region : found.regions) {
        BagPtr const bag = NewBag();
        bag->Set("Area", region.area);
        bag->Set("Left", int{region.bounds.x});
        bag->Set("Top", int{region.bounds.y});
        bag->Set("Width", int{region.bounds.width});
        bag->Set("Height", int{region.bounds.height});
        bag->Set("Mean", region.mean);
        bag->Set("Deviation", region.deviation);
        regions->Set("Region" + std::to_string(region.label), bag);
    }
    return regions;
}

bool IsWhole(ZPA::Bag const& loaded, Step const& step) {
    if (!loaded.Has(step.name)) return false;
    ImagePtr const image = loaded.Get(step.name);
    return ZPA::compare(*image, *step.result) == ZPA::SOLVANE_OK;
}

}  // namespace

void WriteDocument(Findings const& found, CommandLine const& options, OutputFolder const& folder) {
    std::vector<Step> const& steps = found.steps;
    BagPtr const bag = NewBag();
    bag->Set("File", options.file);
    bag->Set("Invert", options.invert);
    BagPtr const parameters = NewBag(), figures = NewBag();
    for (Step const& step : steps) {
        parameters->Set(step.name, ParametersOf(step));
        figures->Set(step.name, FiguresOf(step));
    }
    bag->Set("Parameters", parameters);
    bag->Set("Figures", figures);
    bag->Set("Regions", RegionsOf(found));
    for (Step const& step : steps) bag->Set(step.name, step.result);

    ZPA::ZPA_BagIO io;
    std::string const path = folder.PathFor(kDocument);
    if (!io.SaveBag(bag, path, kRoot)) throw Failure(std::string(kDocument) + " cannot be written");
    // Saving does not tell of a full disk.
    BagPtr const loaded = io.LoadBag(path);
    for (Step const& step : steps)
        if (!IsWhole(*loaded, step))
            throw Failure("the image " + step.name + " of " + kDocument + " cannot be written");
}

}  // namespace Radiograph
