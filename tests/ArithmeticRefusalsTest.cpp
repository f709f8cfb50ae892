// What pixel arithmetic refuses, in its order.
#include <Basics/Arithmetic.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/Outputs.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr auto kTypes = L"Input images are different datatypes.";
constexpr auto kSizes = L"Input images have different dimensions.";
constexpr auto kNull = L"At least one input image is NULL.";
constexpr auto kImageNull = L"Input image can not be NULL.";
constexpr auto kValidate = L"Failed of ValidateImageBuffer when validate buffer of output image.";
constexpr auto kUnsupported = L"Unsupported image datatype.";
constexpr auto kNarrow = L"The elements of the output image are too narrow.";
constexpr auto kFirstRows = L"The first image's rows overlap.";
constexpr auto kSecondRows = L"The second image's rows overlap.";
constexpr auto kOutputRows = L"The output image's rows overlap.";

alignas(8) unsigned char pixels[512], others[512];

ImageAttributes Of(eTypeCode type, int width = 4, int height = 3, int stride = 5) {
    return {type, pixels, width, height, stride, 16, 0};
}
ImageAttributes Apart(eTypeCode type, int width = 4, int height = 3, int stride = 4) {
    return {type, others, width, height, stride, 8, 0};
}
ImageAttributes Without(eTypeCode type) { return Described(type, 4, 3, 5); }

ImageAttributes const kEmpty;  // to be created
ImageAttributes const kValid = Of(eByte);
constexpr auto kNoType = static_cast<eTypeCode>(11);

TEST(ArithmeticRefuses, TwoImagesInItsOrder) {
    for (auto const operation : {Add, Sub, MulP, DivP}) {
        SCOPED_TRACE(operation == Add    ? "Add"
                     : operation == Sub  ? "Sub"
                     : operation == MulP ? "MulP"
                                         : "DivP");
        bool const silent = operation == Sub || operation == DivP;
        auto const call = LeavingOutput(operation);
        auto const freed = LeavingOutput(operation, false);
        EXPECT_REFUSAL(4, kTypes, call(kEmpty, Without(kNoType), Of(eByte, 9)));
        EXPECT_REFUSAL(silent ? 999 : 6, silent ? L"" : kUnsupported,
                       call(kEmpty, Without(kNoType), Without(kNoType)));
        EXPECT_REFUSAL(4, kSizes, call(kEmpty, Without(eByte), Of(eByte, 3)));
        EXPECT_REFUSAL(4, kSizes, call(kEmpty, kValid, Of(eByte, 4, 2)));
        EXPECT_REFUSAL(4, kNull, call(kValid, Without(eByte), kValid));
        EXPECT_REFUSAL(4, kNull, call(kValid, kValid, Without(eByte)));
        EXPECT_REFUSAL(5, kValidate, call(kValid, kValid, kValid));
        EXPECT_REFUSAL(5, kValidate, call(Apart(eByte, 4, 2), kValid, kValid));
        EXPECT_REFUSAL(7, kNarrow, call(Apart(eByte), Of(eUInt16), Of(eUInt16)));
        EXPECT_REFUSAL(7, kOutputRows, call(Apart(eByte, 4, 3, 3), kValid, kValid));
        EXPECT_REFUSAL(7, kFirstRows, call(Apart(eByte), Of(eByte, 4, 3, 3), kValid));
        EXPECT_REFUSAL(7, kSecondRows, freed(kEmpty, kValid, Of(eByte, 4, 3, -4)));
    }
}

TEST(ArithmeticRefuses, ConstantsInItsOrder) {
    double three = 3;
    for (auto const& [operation, name] :
         {std::pair{&AddC, L"AddC"}, {SubC, L"SubC"}, {MulC, L"MulC"}, {DivC, L"DivC"}}) {
        auto const call = LeavingOutput(operation);
        auto const freed = LeavingOutput(operation, false);
        std::wstring const noConstant = std::wstring(L"ZPA::") + name + L"(): nput data cannot be NULL.";
        EXPECT_REFUSAL(4, noConstant, call(kEmpty, Described(eUnknown, 0, 0, 0), nullptr));
        EXPECT_REFUSAL(999, L"", call(kEmpty, Without(static_cast<eTypeCode>(12)), &three));
        EXPECT_REFUSAL(4, kImageNull, call(kValid, Without(eByte), &three));
        EXPECT_REFUSAL(5, kValidate, call(Of(eDouble), Of(eDouble), &three));
        EXPECT_REFUSAL(7, kNarrow, call(Apart(eSingle), Of(eDouble), &three));
        EXPECT_REFUSAL(7, kFirstRows, freed(kEmpty, Of(eDouble, 4, 3, 2), &three));
    }
}

TEST(ArithmeticRefuses, AbsoluteValuesInItsOrder) {
    auto const call = LeavingOutput(Abs);
    auto const freed = LeavingOutput(Abs, false);
    EXPECT_REFUSAL(6, L"Abs not support input type.", call(kEmpty, Without(eUnknown)));
    for (eTypeCode const type : {eInt16, eUInt16}) {
        EXPECT_REFUSAL(4, kNull, call(kEmpty, Without(type)));
        EXPECT_REFUSAL(5, kValidate, call(Of(type), Of(type)));
        EXPECT_REFUSAL(7, kNarrow, call(Apart(eSByte), Of(type)));
        EXPECT_REFUSAL(7, kFirstRows, freed(kEmpty, Of(type, 4, 3, 3)));
        EXPECT_REFUSAL(4, kNull, Abs(Without(type), nullptr));
    }
}

TEST(ArithmeticRefuses, CoresCalledByThemselves) {
    auto const add = [](ImageAttributes const& image, bool inPlace) {
        ImageAttributes output;
        SOLVANE_RETURNCODE const code = ipp_add(image, image, &output, inPlace);
        EXPECT_EQ(output.buffer, nullptr);
        return code;
    };
    EXPECT_REFUSAL(5, L"Add(): ippiAdd. code -12", add(Of(eInt32), true));
    EXPECT_REFUSAL(5, L"Add(): ippiAdd. code -2", add(Of(eUnknown), true));
    EXPECT_REFUSAL(5, L"Add(): ippiAdd. code -2", add(Of(eUnknown), false));
    EXPECT_REFUSAL(5, L"Add(): ippiAdd. code -5", add(Of(eByte, 0, 3), true));
    EXPECT_REFUSAL(5, kValidate, ipp_add(kValid, kValid, nullptr, false));
    EXPECT_REFUSAL(5, kValidate, template_sub<char>(kValid, kValid, nullptr, false));
    EXPECT_REFUSAL(7, L"The elements of the first image are too narrow.",
                   template_sub<double>(kValid, kValid, nullptr, true));
    ImageAttributes output;
    EXPECT_REFUSAL(2, L"The constant is NULL.", template_addc<char>(kValid, nullptr, &output, false));
    EXPECT_EQ(output.buffer, nullptr);
}

}  // namespace
}  // namespace ZPA
