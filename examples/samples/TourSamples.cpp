// The samples of docs/tour.md.
// [sample]
#include <Basics/ZPA.h>
// [sample]

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/CapturedLog.h"

namespace {

TEST(TourSamples, PartOfAnImage) {
    // [sample]
    std::vector<unsigned short> pixels(640 * 480);
    ZPA::ImageAttributes const whole(ZPA::eUInt16, pixels.data(), 640, 480, 640, 12, 0);

    // 100 by 50 pixels of it, from column 20 and row 30 on. The rows are those of the whole, and so is the stride.
    ZPA::ImageAttributes const part(ZPA::eUInt16, pixels.data() + 30 * 640 + 20, 100, 50, 640, 12, 0);
    ZPA::SetPixels(nullptr, nullptr, nullptr, 0, 4095, part);
    // [sample]
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 4095), 100 * 50);
    EXPECT_EQ(whole.buffer, pixels.data());
    EXPECT_EQ(pixels[30 * 640 + 20] + pixels[79 * 640 + 119], 2 * 4095);
}

TEST(TourSamples, WhoOwnsAnOutput) {
    std::vector<unsigned short> pixels(12, 3);
    ZPA::ImageAttributes const source(ZPA::eUInt16, pixels.data(), 4, 3, 4, 16, 0);
    // [sample]
    ZPA::ImageAttributes wide;  // without pixels: CopyPixels makes them, and they are ours
    wide.type = ZPA::eDouble;
    if (ZPA::CopyPixels(source, &wide) == ZPA::SOLVANE_OK) {
        ZPA::AnisotropicGaussian(wide, &wide, 2, 2, 0, 0, 0);
        ZPA::FreePixels(wide.buffer);
    }
    // [sample]

    // [sample]
    using Image = ZPA::ZPA_Image<double>;
    ZPA::ImageAttributes made;
    made.type = ZPA::eDouble;
    if (ZPA::CopyPixels(source, &made) == ZPA::SOLVANE_OK) {
        // The object takes the pixels over, and the last of the counted pointers to it frees them.
        ZPA::ZPA_Ptr<Image> const owner(new Image(made, true, false));
        ZPA::ZPA_Ptr<Image> const another = owner;
        ZPA::Abs(*another, nullptr);  // an object goes where a descriptor is wanted
    }
    // [sample]
}

TEST(TourSamples, RegionsAndMasks) {
    std::vector<unsigned short> pixels(64 * 48);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned short>(i);
    std::vector<unsigned char> field(64 * 48);
    field[10 * 64 + 8] = field[11 * 64 + 9] = field[40 * 64 + 60] = 255;
    ZPA::ImageAttributes const image(ZPA::eUInt16, pixels.data(), 64, 48, 64, 16, 0);
    ZPA::ImageAttributes const mask(ZPA::eByte, field.data(), 64, 48, 64, 8, 0);
    // [sample]
    ZPA::Rectangle const rectangle(8, 10, 32, 16);  // column, row, width, height
    ZPA::APOINT const origin(8, 10);                // the mask pixel that lies on the rectangle's corner
    double mean = 0, deviation = 0;
    auto const code =
        ZPA::CalculateImageStats(image, &rectangle, &mask, &origin, nullptr, nullptr, &mean, &deviation);
    // [sample]
    EXPECT_EQ(code, ZPA::SOLVANE_OK);
    EXPECT_EQ(mean, (10 * 64 + 8 + 11 * 64 + 9) / 2.0);
}

TEST(TourSamples, InPlace) {
    short pixels[] = {-1, 0, 1, 2};
    ZPA::ImageAttributes const image(ZPA::eInt16, pixels, 4, 1, 4, 16, 0);
    // [sample]
    short offset = 100;                  // of the image's type
    ZPA::AddC(image, &offset, nullptr);  // null: in place
    ZPA::ImageAttributes result;         // without pixels: a new image
    ZPA::SubC(image, &offset, &result);
    // [sample]
    EXPECT_EQ(pixels[0], 99);
    EXPECT_EQ(*static_cast<short*>(result.buffer), -1);
    ZPA::FreePixels(result.buffer);
}

TEST(TourSamples, Refusals) {
    ZPA::Testing::CapturedLog const log;
    // [sample]
    ZPA::ImageAttributes const nothing;
    ZPA::ImageAttributes output;
    auto const code = ZPA::CopyPixels(nothing, &output);
    // code is ZPA::SOLVANE_UNSUPPORTED_TYPE, and the log has "The source image type is not supported."
    // [sample]
    EXPECT_EQ(code, ZPA::SOLVANE_UNSUPPORTED_TYPE);
    EXPECT_EQ(log.Text(), L"The source image type is not supported.");
}

}  // namespace
