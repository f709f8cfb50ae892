// Each step as raw file, PGM and PNG, and as a section of the page.
#include "radiograph/Output.h"

#include <Basics/RawFile.h>

#include "radiograph/Library.h"
#include "radiograph/OutputFolder.h"
#include "radiograph/Picture.h"
#include "radiograph/Png.h"
#include "radiograph/Progress.h"
#include "radiograph/Report.h"
#include "radiograph/Statistics.h"
#include "radiograph/Text.h"

namespace Radiograph {
namespace {

constexpr int kLongestOnPage = 1024;  // pixels; sharp on a dense screen, and the page stays light

Section WriteStep(Step const& step, bool highIsDark, OutputFolder const& folder) {
    Image const& image = *step.result;
    int const width = image.GetWidth();
    int const height = image.GetHeight();
    std::string const size = "." + std::to_string(width) + "." + std::to_string(height);
    std::string const raw = step.name + size + ".raw";
    std::string const pgm = step.name + ".pgm";
    std::string const png = step.name + ".png";

    // The operation puts size and extension behind the name by itself.
    Check(ZPA::DumpRawImage(image.GetBufferPtr(), width, height, -1, folder.PathFor(step.name).c_str()),
          raw + " cannot be written");
    Check(ZPA::dumpPgm8bit(image.GetBufferPtr(), width, height, folder.PathFor(pgm).c_str()),
          pgm + " cannot be written");
    GreyScale const scale = ChooseScale(image, highIsDark);
    Picture const picture = Show(image, scale);
    folder.Write(png, EncodePng(picture));

    Statistics const found = Measure(image);
    Section section;
    section.title = step.title;
    section.caption = step.caption;
    section.picture = ScaleDown(picture, kLongestOnPage);
    section.scale = scale;
    section.figures = {
        {"Size", Dimensions(width, height)},       {"Minimum", Number(found.minimum)},
        {"Maximum", Number(found.maximum)},        {"Mean", Number(found.mean, 1)},
        {"Deviation", Number(found.deviation, 1)}, {"Time", Number(step.seconds * 1000, 1) + " ms"}};
    section.fullSize = png;
    section.files = {{"PNG", png}, {"PGM", pgm}, {"Raw", raw}};
    return section;
}

}  // namespace

std::string WriteOutput(std::vector<Step> const& steps, CommandLine const& options) {
    namespace fs = std::filesystem;
    Progress progress("Writing");
    bool const highIsDark = !options.invert;
    OutputFolder folder(options.out);
    Report report;
    report.subject = options.file.empty() ? "Phantom" : fs::path(options.file).filename().string();
    report.greyNote = highIsDark ? "High values, where more of the beam arrived, are shown dark, as on film."
                                 : "High values are shown bright.";
    for (Step const& step : steps) report.sections.push_back(WriteStep(step, highIsDark, folder));
    folder.Write("report.html", MakePage(report));
    folder.Publish(options.file);
    progress.Done();
    return (fs::path(options.out) / "report.html").string();
}

}  // namespace Radiograph
