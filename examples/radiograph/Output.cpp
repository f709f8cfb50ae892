// Each step as raw file, PGM and PNG and as a section of the page, and all of them as a bag document.
#include "radiograph/Output.h"

#include <Basics/RawFile.h>

#include <algorithm>

#include "radiograph/Document.h"
#include "radiograph/HistogramPlot.h"
#include "radiograph/Library.h"
#include "radiograph/OutputFolder.h"
#include "radiograph/Overlay.h"
#include "radiograph/Picture.h"
#include "radiograph/Png.h"
#include "radiograph/Progress.h"
#include "radiograph/Report.h"
#include "radiograph/Statistics.h"
#include "radiograph/Text.h"

namespace Radiograph {
namespace {

constexpr int kLongestOnPage = 1024;  // pixels; sharp on a dense screen, and the page stays light

// How results become pictures, and what there is to say of them.
class Sections {
public:
    Sections(Findings const& found, bool highIsDark, OutputFolder const& folder)
        : found_(found), highIsDark_(highIsDark), folder_(folder) {}

    // Writes the files of a step, and gives its section of the page.
    Section Write(Step const& step) const {
        Image const& image = *step.result;
        int const width = image.GetWidth();
        int const height = image.GetHeight();
        std::string const raw =
            step.name + "." + std::to_string(width) + "." + std::to_string(height) + ".raw";
        std::string const pgm = step.name + ".pgm";
        std::string const png = step.name + ".png";

        // The operation puts size and extension behind the name by itself.
        Check(ZPA::DumpRawImage(image.GetBufferPtr(), width, height, -1, folder_.PathFor(step.name).c_str()),
              raw + " cannot be written");
        Check(ZPA::dumpPgm8bit(image.GetBufferPtr(), width, height, folder_.PathFor(pgm).c_str()),
              pgm + " cannot be written");

        Section section;
        section.title = step.title;
        section.caption = step.caption;
        section.fullSize = png;
        section.files = {{"PNG", png}, {"PGM", pgm}, {"Raw", raw}};
        Picture const picture = Draw(step, section);
        folder_.Write(png, EncodePng(picture));
        section.picture = ScaleDown(picture, kLongestOnPage);
        return section;
    }

private:
    // Gives the picture, and tells the section what is in it.
    Picture Draw(Step const& step, Section& section) const {
        Image const& image = *step.result;
        std::string const size = Dimensions(image.GetWidth(), image.GetHeight());
        switch (step.look) {
            case Look::kMask:
                section.figures = {{"Size", size}, {"In the mask", Share(image)}};
                return Show(image, {0, 1});
            case Look::kRegions:
                section.figures = {{"Size", size}, {"Regions", Number(found_.regionCount)}};
                section.marks = Marks(image);
                return Overlay(Grey(*found_.input), image, found_.regions);
            default: {
                Counts const counts = CountByValue(image);
                Statistics const found = Measure(image, counts);
                GreyScale const scale = ChooseScale(counts, highIsDark_);
                section.scale = {{"Black", Number(scale.black)}, {"white", Number(scale.white)}};
                section.figures = {{"Size", size},
                                   {"Range", Number(found.minimum) + " – " + Number(found.maximum)},
                                   {"Mean", Number(found.mean, 1)},
                                   {"Deviation", Number(found.deviation, 1)}};
                return Show(image, scale);
            }
        }
    }

    Picture Grey(Image const& image) const {
        return Show(image, ChooseScale(CountByValue(image), highIsDark_));
    }

    static std::string Share(Image const& mask) {
        Pixels const pixels(mask);
        auto const set = static_cast<double>(std::count(pixels.begin(), pixels.end(), Pixel{1}));
        return Number(100 * set / static_cast<double>(pixels.size()), 1) + " %";
    }

    // Not so near an edge that the number would be cut.
    static double Within(double part) { return std::clamp(part, 0.04, 0.96); }

    std::vector<Mark> Marks(Image const& image) const {
        std::vector<Mark> marks;
        for (Region const& region : found_.regions)
            marks.push_back({Within((region.middle.x + 0.5) / image.GetWidth()),
                             Within((region.middle.y + 0.5) / image.GetHeight()), Number(region.label)});
        return marks;
    }

    Findings const& found_;
    bool highIsDark_;
    OutputFolder const& folder_;
};

Plot ThresholdPlot(Findings const& found) {
    Counts const counts = CountByValue(*found.flattened);
    Histogram const histogram = MakeHistogram(counts);
    return {
        "Of the flattened image: the counts as an area, smoothed as a line, and a dashed line at the "
        "threshold of Otsu’s method (IEEE Transactions on Systems, Man, and Cybernetics, 1979), which "
        "parts low values from high ones best.",
        HistogramSvg(histogram, found.threshold),
        {{"From", Number(histogram.low)},
         {"Threshold", Number(found.threshold)},
         {"To", Number(histogram.high)},
         {"Values a bin", Number(histogram.valuesPerBin)}}};
}

Table RegionTable(Findings const& found) {
    auto const pixels = static_cast<double>(Pixels(*found.input).size());
    Table table;
    table.caption = found.regions.empty()
                        ? "Nothing lies above the threshold."
                        : "The " + Number(static_cast<double>(found.regions.size())) + " largest of " +
                              Number(found.regionCount) +
                              ", with the input’s grey values in them. Lengths and areas are in pixels.";
    table.rows = {{"Region", "Area", "Share", "Left", "Top", "Size", "Mean", "Deviation"}};
    for (std::size_t i = 0; i < found.regions.size(); ++i) {
        Region const& region = found.regions[i];
        ZPA::Rectangle const& bounds = region.bounds;
        table.rows.push_back({Number(region.label), Number(region.area),
                              Number(100 * region.area / pixels, 2) + " %", Number(bounds.x),
                              Number(bounds.y), Dimensions(bounds.width, bounds.height),
                              Number(region.mean, 1), Number(region.deviation, 1)});
        table.colours.push_back(ColourOf(i));
    }
    return table;
}

std::string Versions() {
    std::string const compiler =
#if defined(__clang__)
        "Clang " + std::to_string(__clang_major__) + "." + std::to_string(__clang_minor__);
#elif defined(__GNUC__)
        "GCC " + std::to_string(__GNUC__) + "." + std::to_string(__GNUC_MINOR__);
#else
        "another compiler";
#endif
    return "Made with zpa " + std::to_string(ZPA_VERSION_MAJOR) + "." + std::to_string(ZPA_VERSION_MINOR) +
           "." + std::to_string(ZPA_VERSION_PATCH) + " and libpng " + PngVersion() + ", built with " +
           compiler + ".";
}

}  // namespace

std::string WriteOutput(Findings const& found, CommandLine const& options) {
    namespace fs = std::filesystem;
    Progress progress("Writing");
    bool const highIsDark = !options.invert;
    OutputFolder folder(options.out);
    Report report;
    report.subject = options.file.empty() ? "Phantom" : fs::path(options.file).filename().string();
    report.greyNote = highIsDark ? "High values, where more of the beam arrived, are shown dark, as on film."
                                 : "High values are shown bright.";
    Sections const sections(found, highIsDark, folder);
    for (Step const& step : found.steps) {
        report.sections.push_back(sections.Write(step));
        report.times.push_back({step.title, Number(step.seconds * 1000, 1) + " ms"});
        report.seconds.push_back(step.seconds);
    }
    report.histogram = ThresholdPlot(found);
    report.regions = RegionTable(found);
    report.versions = Versions();
    WriteDocument(found, options, folder);
    folder.Write("report.html", MakePage(report));
    folder.Publish(options.file);
    progress.Done();
    return (fs::path(options.out) / "report.html").string();
}

}  // namespace Radiograph
