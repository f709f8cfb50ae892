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
    Statistics const found = Measure(*step.result);
    BagPtr const bag = NewBag();
    bag->Set("Minimum", int{found.minimum});
    bag->Set("Maximum", int{found.maximum});
    bag->Set("Mean", found.mean);
    bag->Set("Deviation", found.deviation);
    bag->Set("Seconds", step.seconds);
    return bag;
}

bool IsWhole(ZPA::Bag const& loaded, Step const& step) {
    if (!loaded.Has(step.name)) return false;
    ImagePtr const image = loaded.Get(step.name);
    return ZPA::compare(*image, *step.result) == ZPA::SOLVANE_OK;
}

}  // namespace

void WriteDocument(std::vector<Step> const& steps, CommandLine const& options, OutputFolder const& folder) {
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
