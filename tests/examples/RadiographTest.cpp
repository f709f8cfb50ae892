// The parts of the radiograph example whose faults a look at its page would not show.
#include <gtest/gtest.h>
#include <png.h>

#include "radiograph/Phantom.h"
#include "radiograph/Picture.h"
#include "radiograph/Png.h"
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

TEST(Statistics, DescribeWholeRangeOfPixels) {
    Statistics const found = Measure(*ImageOf(2, {0, 65535, 65535, 0}));
    EXPECT_EQ(found.minimum, 0);
    EXPECT_EQ(found.maximum, 65535);
    EXPECT_DOUBLE_EQ(found.mean, 32767.5);
    EXPECT_DOUBLE_EQ(found.deviation, 32767.5);
}

TEST(Statistics, PercentilesLeaveOutliersAside) {
    std::vector<Pixel> pixels(1000, 500);
    pixels[0] = 0;
    pixels[1] = 65535;
    Range const range = Percentiles(*ImageOf(100, pixels), 0.01, 0.99);
    EXPECT_EQ(range.low, 500);
    EXPECT_EQ(range.high, 500);
    Range const all = Percentiles(*ImageOf(100, pixels), 0, 1);
    EXPECT_EQ(all.low, 0);
    EXPECT_EQ(all.high, 65535);
}

TEST(Picture, SpreadsEitherDirectionAndCutsTheRest) {
    auto const image = ImageOf(5, {0, 100, 150, 200, 65535});
    using Grey = std::vector<unsigned char>;
    EXPECT_EQ(Show(*image, {100, 200}).grey, (Grey{0, 0, 128, 255, 255}));
    EXPECT_EQ(Show(*image, {200, 100}).grey, (Grey{255, 255, 128, 0, 0}));
    EXPECT_EQ(Show(*image, {150, 150}).grey, (Grey{0, 0, 0, 255, 255}));  // one value only: no division
    EXPECT_GT(ChooseScale(*image, true).black, ChooseScale(*image, true).white);
}

TEST(Picture, ScalesDownWithPartialBlocksAtTheEdges) {
    Picture const picture{5, 3, {10, 20, 30, 40, 50, 10, 20, 30, 40, 50, 70, 71, 90, 90, 7}};
    Picture const small = ScaleDown(picture, 3);
    EXPECT_EQ(small.width, 3);
    EXPECT_EQ(small.height, 2);
    EXPECT_EQ(small.grey, (std::vector<unsigned char>{15, 35, 50, 71, 90, 7}));
    EXPECT_EQ(ScaleDown(picture, 5).grey, picture.grey);
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
    EXPECT_EQ(grey, picture.grey);
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
    report.sections = {section};
    std::string const page = MakePage(report);
    EXPECT_EQ(page.find("<b>"), std::string::npos);
    EXPECT_NE(page.find("&lt;b&gt;&amp;&quot;.raw"), std::string::npos);
    EXPECT_NE(page.find("href=\"a&quot;b.png\""), std::string::npos);
    // The first eight bytes of every PNG file, and the length of its header.
    EXPECT_NE(page.find("src=\"data:image/png;base64,iVBORw0KGgoAAAANSUhEUg"), std::string::npos);
}

TEST(Phantom, IsBrightInAirAndDarkInTheMiddleAtAnySize) {
    for (int side : {16, 333}) {
        ImagePtr const image = MakePhantom(side);
        ASSERT_EQ(image->GetWidth(), side);
        ASSERT_EQ(image->GetHeight(), side);
        Statistics const found = Measure(*image);
        EXPECT_LT(found.maximum, 1 << 14);
        Pixel const corner = *Pixels(*image).begin();
        Pixel const middle = Pixels(*image).begin()[side / 2 * side + side / 2];
        EXPECT_GT(corner, 12000);
        EXPECT_LT(middle, 8000);
    }
}

}  // namespace
}  // namespace Radiograph
