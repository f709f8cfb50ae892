// The parts of the radiograph example whose faults a look at its page would not show.
#include <gtest/gtest.h>
#include <png.h>

#include <cmath>

#include "radiograph/Edges.h"
#include "radiograph/HistogramPlot.h"
#include "radiograph/Overlay.h"
#include "radiograph/Phantom.h"
#include "radiograph/Picture.h"
#include "radiograph/Png.h"
#include "radiograph/Regions.h"
#include "radiograph/Report.h"
#include "radiograph/Statistics.h"
#include "radiograph/Text.h"

namespace Radiograph {
namespace {

ImagePtr ImageOf(int width, std::vector<Pixel> const& pixels) {
    ImagePtr const image = NewImage(width, static_cast<int>(pixels.size()) / width);
    std::copy(pixels.begin(), pixels.end(), Pixels(*image).begin());
    return image;
}

Statistics Measured(Image const& image) { return Measure(image, CountByValue(image)); }

TEST(Statistics, DescribeWholeRangeOfPixels) {
    Statistics const found = Measured(*ImageOf(2, {0, 65535, 65535, 0}));
    EXPECT_EQ(found.minimum, 0);
    EXPECT_EQ(found.maximum, 65535);
    EXPECT_DOUBLE_EQ(found.mean, 32767.5);
    EXPECT_DOUBLE_EQ(found.deviation, 32767.5);
}

TEST(Statistics, PercentilesLeaveOutliersAside) {
    std::vector<Pixel> pixels(1000, 500);
    pixels[0] = 0;
    pixels[1] = 65535;
    Range const range = Percentiles(CountByValue(*ImageOf(100, pixels)), 0.01, 0.99);
    EXPECT_EQ(range.low, 500);
    EXPECT_EQ(range.high, 500);
    Range const all = Percentiles(CountByValue(*ImageOf(100, pixels)), 0, 1);
    EXPECT_EQ(all.low, 0);
    EXPECT_EQ(all.high, 65535);
}

TEST(Histogram, BinsHoldEveryPixelFromFirstToLast) {
    Counts counts(0x10000);
    counts[65535] = 3;
    Histogram const one = MakeHistogram(counts);
    EXPECT_EQ(one.low, 65535);
    EXPECT_EQ(one.counts, (std::vector<float>{3}));
    counts[65535 - 600] = 5;
    counts[65534] = 1;
    Histogram const wide = MakeHistogram(counts);  // 601 values, three a bin: the last bin has one only
    EXPECT_EQ(wide.valuesPerBin, 3);
    EXPECT_EQ(wide.counts.size(), 201U);
    EXPECT_EQ(wide.counts.front(), 5);
    EXPECT_EQ(wide.counts[199], 1);
    EXPECT_EQ(wide.counts.back(), 3);
    EXPECT_EQ(wide.smoothed.size(), wide.counts.size());
}

TEST(Histogram, ThresholdPartsTwoGroups) {
    Counts counts(0x10000);
    counts[40000] = 10;
    EXPECT_EQ(OtsuThreshold(counts), 40000);
    counts[65535] = 1000;
    EXPECT_EQ(OtsuThreshold(counts), 40000);
    // Two groups of different sizes and widths, whose threshold is the last value of the lower one.
    counts = Counts(0x10000);
    for (std::size_t value = 100; value <= 140; ++value) counts[value] = 50;
    for (std::size_t value = 300; value <= 305; ++value) counts[value] = 20;
    EXPECT_EQ(OtsuThreshold(counts), 140);
}

TEST(Histogram, IsDrawnInsideItsFrame) {
    Counts counts(0x10000);
    counts[7] = 9;
    // One bin, which the threshold ends.
    std::string const one = HistogramSvg(MakeHistogram(counts), 7);
    EXPECT_NE(one.find("H256.00"), std::string::npos);
    EXPECT_NE(one.find("M256.00 0V100"), std::string::npos);
    EXPECT_EQ(one.find("nan"), std::string::npos);
    EXPECT_EQ(one.find('-', one.find(" d=\"")), std::string::npos);  // nothing negative
}

TEST(Picture, SpreadsEitherDirectionAndCutsTheRest) {
    auto const image = ImageOf(5, {0, 100, 150, 200, 65535});
    using Grey = std::vector<unsigned char>;
    EXPECT_EQ(Show(*image, {100, 200}).samples, (Grey{0, 0, 128, 255, 255}));
    EXPECT_EQ(Show(*image, {200, 100}).samples, (Grey{255, 255, 128, 0, 0}));
    EXPECT_EQ(Show(*image, {150, 150}).samples, (Grey{0, 0, 0, 255, 255}));  // one value only: no division
    Counts const counts = CountByValue(*image);
    EXPECT_GT(ChooseScale(counts, true).black, ChooseScale(counts, true).white);
}

TEST(Picture, ScalesDownWithPartialBlocksAtTheEdges) {
    Picture const picture{5, 3, {10, 20, 30, 40, 50, 10, 20, 30, 40, 50, 70, 71, 90, 90, 7}};
    Picture const small = ScaleDown(picture, 3);
    EXPECT_EQ(small.width, 3);
    EXPECT_EQ(small.height, 2);
    EXPECT_EQ(small.samples, (std::vector<unsigned char>{15, 35, 50, 71, 90, 7}));
    EXPECT_EQ(ScaleDown(picture, 5).samples, picture.samples);
    // The colours of a pixel stay apart.
    Picture const colours{2, 2, {0, 10, 20, 2, 12, 22, 4, 14, 24, 6, 16, 26}, 3};
    EXPECT_EQ(ScaleDown(colours, 1).samples, (std::vector<unsigned char>{3, 13, 23}));
}

TEST(Edges, AreAsSteepAsTheGreyValuesChange) {
    ImagePtr const slope = NewImage(40, 30);
    for (int i = 0; i < 40 * 30; ++i)
        Pixels(*slope).begin()[i] = static_cast<Pixel>(1000 + 30 * (i % 40) + 40 * (i / 40));
    ImagePtr const edges = Edges(*slope, 0);
    auto const at = [&](int x, int y) { return Pixels(*edges).begin()[y * 40 + x]; };
    for (int y = 1; y < 29; ++y)
        for (int x = 1; x < 39; ++x) ASSERT_EQ(at(x, y), 8 * 50) << x << ", " << y;
    for (int x = 0; x < 40; ++x) EXPECT_EQ(at(x, 0) + at(x, 29), 0);
    for (int y = 0; y < 30; ++y) EXPECT_EQ(at(0, y) + at(39, y), 0);
}

TEST(Regions, AreFoundAndMeasured) {
    // A block with a hole and a spot, and apart from it another block.
    ImagePtr const image = NewImage(40, 30);
    std::fill(Pixels(*image).begin(), Pixels(*image).end(), Pixel{100});
    auto const fill = [&](ZPA::Rectangle area, Pixel value) {
        for (int y = area.y; y < area.y + area.height; ++y)
            std::fill_n(image->GetBufferPtr() + y * 40 + area.x, area.width, value);
    };
    fill({25, 2, 6, 5}, 60000);
    fill({4, 6, 12, 15}, 50000);
    fill({8, 10, 2, 2}, 100);
    fill({36, 28, 1, 1}, 60000);
    MaskPtr const mask = Above(*image, 100);
    CleanUp(*mask, 1);
    Labels const labels = LabelRegions(*mask);
    EXPECT_EQ(labels.count, 2);
    std::vector<Region> const regions = MeasureRegions(*image, labels, 9);
    ASSERT_EQ(regions.size(), 2U);
    // An opening with the smallest disk, a cross, takes the corners.
    auto const numbers = [](Region const& region) {
        ZPA::Rectangle const& bounds = region.bounds;
        return std::vector<int>{region.label, region.area,   bounds.x,        bounds.y,
                                bounds.width, bounds.height, region.middle.x, region.middle.y};
    };
    EXPECT_EQ(numbers(regions[0]), (std::vector<int>{2, 12 * 15 - 4, 4, 6, 12, 15, 10, 7}));
    // Four pixels of the hole have 100.
    EXPECT_DOUBLE_EQ(regions[0].mean, (172 * 50000.0 + 4 * 100) / 176);
    EXPECT_NEAR(regions[0].deviation, 49900 * std::sqrt(172.0 * 4) / 176, 1e-6);
    EXPECT_EQ(numbers(regions[1]), (std::vector<int>{1, 6 * 5 - 4, 25, 2, 6, 5, 28, 3}));
    EXPECT_DOUBLE_EQ(regions[1].mean, 60000);
    EXPECT_DOUBLE_EQ(regions[1].deviation, 0);
    EXPECT_EQ(MeasureRegions(*image, labels, 1).size(), 1U);
}

TEST(Overlay, TintsRegionsAndLeavesTheRestGrey) {
    ImagePtr const labels = NewImage(5, 5);
    for (int i = 0; i < 25; ++i) Pixels(*labels).begin()[i] = i % 5 < 4 && i / 5 < 4 ? 9 : 0;
    Region region{};
    region.label = 9;
    Picture const picture = Overlay({5, 5, std::vector<unsigned char>(25, 100)}, *labels, {region});
    ASSERT_EQ(picture.samples.size(), 75U);
    auto const at = [&](std::size_t x, std::size_t y) {
        auto const pixel = picture.samples.begin() + static_cast<std::ptrdiff_t>((y * 5 + x) * 3);
        return std::vector<unsigned char>(pixel, pixel + 3);
    };
    using Colour = std::vector<unsigned char>;
    EXPECT_EQ(at(4, 4), (Colour{100, 100, 100}));
    EXPECT_EQ(at(0, 0), (Colour{86, 180, 233}));  // on the outline
    EXPECT_EQ(at(1, 1), (Colour{95, 124, 140}));
    EXPECT_EQ(ColourOf(0), "#56b4e9");
}

TEST(Png, ReadsBackAsItWas) {
    Picture const picture{3, 2, {0, 1, 127, 128, 254, 255}};
    std::string const bytes = EncodePng(picture);
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    ASSERT_TRUE(png_image_begin_read_from_memory(&header, bytes.data(), bytes.size()));
    EXPECT_EQ(header.width, 3U);
    EXPECT_EQ(header.height, 2U);
    header.format = PNG_FORMAT_GRAY;
    std::vector<unsigned char> grey(6);
    ASSERT_TRUE(png_image_finish_read(&header, nullptr, grey.data(), 0, nullptr));
    EXPECT_EQ(grey, picture.samples);
}

TEST(Text, GroupsDigitsOfTheWholePart) {
    EXPECT_EQ(Number(0), "0");
    EXPECT_EQ(Number(999.96, 1), "1\u202F000.0");
    EXPECT_EQ(Number(123456), "123\u202F456");
    EXPECT_EQ(Number(1234567.25, 2), "1\u202F234\u202F567.25");
}

TEST(Report, HoldsItsPicturesAndEscapesItsTexts) {
    Report report;
    report.subject = "<b>&\".raw";
    Section section;
    section.picture = {1, 1, {7}};
    section.fullSize = "a\"b.png";
    section.marks = {{0.25, 0.5, "<7>"}};
    report.sections = {section};
    report.regions = {"", {{"Region"}, {"<8>"}}, {"#123456"}};
    report.times = {{"Step", "1 ms"}, {"Other", "4 ms"}};
    report.seconds = {1e-3, 4e-3};
    std::string const page = MakePage(report);
    EXPECT_EQ(page.find("<b>"), std::string::npos);
    EXPECT_NE(page.find("&lt;b&gt;&amp;&quot;.raw"), std::string::npos);
    EXPECT_NE(page.find("href=\"a&quot;b.png\""), std::string::npos);
    EXPECT_NE(page.find("<b style=\"left:25.00%;top:50.00%\">&lt;7&gt;</b>"), std::string::npos);
    EXPECT_NE(page.find("<td><i style=\"background:#123456\"></i>&lt;8&gt;</td>"), std::string::npos);
    EXPECT_NE(page.find("width:25.00%"), std::string::npos);
    EXPECT_NE(page.find("width:100.00%"), std::string::npos);
    // The first eight bytes of every PNG file, and the length of its header.
    EXPECT_NE(page.find("src=\"data:image/png;base64,iVBORw0KGgoAAAANSUhEUg"), std::string::npos);
}

TEST(Phantom, IsBrightInAirAndDarkInTheMiddleAtAnySize) {
    for (int side : {16, 333}) {
        ImagePtr const image = MakePhantom(side);
        ASSERT_EQ(image->GetWidth(), side);
        ASSERT_EQ(image->GetHeight(), side);
        Statistics const found = Measured(*image);
        EXPECT_LT(found.maximum, 1 << 14);
        Pixel const corner = *Pixels(*image).begin();
        Pixel const middle = Pixels(*image).begin()[side / 2 * side + side / 2];
        EXPECT_GT(corner, 12000);
        EXPECT_LT(middle, 8000);
    }
}

}  // namespace
}  // namespace Radiograph
