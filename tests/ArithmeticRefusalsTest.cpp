// What pixel arithmetic refuses, in its order.
#include <Basics/Arithmetic.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/CapturedLog.h"
#include "support/Images.h"

namespace ZPA {
namespace {

using namespace Testing;

using WithImage = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes, ImageAttributes*);
using WithConstant = SOLVANE_RETURNCODE (*)(ImageAttributes, void*, ImageAttributes*);

constexpr auto kTypes = L"Input images are different datatypes.";
constexpr auto kSizes = L"Input images have different dimensions.";
constexpr auto kNull = L"At least one input image is NULL.";
constexpr auto kImageNull = L"Input image can not be NULL.";
constexpr auto kValidate = L"Failed of ValidateImageBuffer when validate buffer of output image.";
constexpr auto kUnsupported = L"Unsupported image datatype.";
constexpr auto kNarrow = L"The elements of the output image are too narrow.";
constexpr auto kFirstRows = L"The first image's rows overlap.";

struct Refusal {
    std::string name;
    std::function<SOLVANE_RETURNCODE(ImageAttributes*)> call;
    ImageAttributes output;
    int code;
    std::wstring message;
};

class ArithmeticRefuses : public testing::Test {
protected:
    // The output must be as it was.
    static void Check(Refusal const& each) {
        SCOPED_TRACE(each.name);
        ImageAttributes output = each.output;
        ExpectRefusal([&] { return each.call(&output); }, each.code, each.message);
        EXPECT_EQ(output.buffer, each.output.buffer);
    }
    static ImageAttributes Apart(eTypeCode type, int width = 4, int height = 3, int stride = 4) {
        return {type, others, width, height, stride, 8, 0};
    }
    static ImageAttributes Of(eTypeCode type, int width = 4, int height = 3, int stride = 5) {
        return {type, pixels, width, height, stride, 16, 0};
    }
    alignas(8) static inline unsigned char pixels[512];
    alignas(8) static inline unsigned char others[512];
};

TEST_F(ArithmeticRefuses, TwoImagesInItsOrder) {
    ImageAttributes const wrong(static_cast<eTypeCode>(11), nullptr, 4, 3, 5, 16, 0);
    ImageAttributes const valid = Of(eByte), empty;
    auto const call = [](WithImage operation, ImageAttributes first, ImageAttributes second) {
        return [=](ImageAttributes* output) { return operation(first, second, output); };
    };
    std::pair<char const*, WithImage> const operations[] = {
        {"Add", Add}, {"Sub", Sub}, {"MulP", MulP}, {"DivP", DivP}};
    for (auto const& [name, operation] : operations) {
        bool const silent = operation == Sub || operation == DivP;
        ImageAttributes const same = Of(eByte), words = Of(eUInt16), back = Of(eByte, 4, 3, -4);
        Refusal const cases[] = {
            {"types", call(operation, wrong, Of(eByte, 9)), empty, 4, kTypes},
            {"unsupported", call(operation, wrong, wrong), empty, silent ? 999 : 6,
             silent ? L"" : kUnsupported},
            {"width", call(operation, Described(eByte, 4, 3, 5), Of(eByte, 3)), empty, 4, kSizes},
            {"height", call(operation, Of(eByte), Of(eByte, 4, 2)), empty, 4, kSizes},
            {"first null", call(operation, Described(eByte, 4, 3, 5), valid), same, 4, kNull},
            {"second null", call(operation, valid, Described(eByte, 4, 3, 5)), same, 4, kNull},
            {"output is first", call(operation, valid, valid), same, 5, kValidate},
            {"output size", call(operation, valid, valid), Apart(eByte, 4, 2), 5, kValidate},
            {"output narrower", call(operation, words, words), Apart(eByte), 7, kNarrow},
            {"output rows", call(operation, valid, valid), Apart(eByte, 4, 3, 3), 7,
             L"The output image's rows overlap."},
            {"first rows", call(operation, Of(eByte, 4, 3, 3), valid), Apart(eByte), 7, kFirstRows},
            {"second rows, output freed", call(operation, valid, back), empty, 7,
             L"The second image's rows overlap."},
        };
        SCOPED_TRACE(name);
        for (Refusal const& each : cases) Check(each);
    }
}

TEST_F(ArithmeticRefuses, ConstantsInItsOrder) {
    std::pair<WithConstant, std::wstring> const operations[] = {
        {AddC, L"AddC"}, {SubC, L"SubC"}, {MulC, L"MulC"}, {DivC, L"DivC"}};
    for (auto const& operation : operations) {
        auto const call = [&](ImageAttributes image, void* constant) {
            return [=](ImageAttributes* output) { return operation.first(image, constant, output); };
        };
        static double three = 3;
        ImageAttributes const empty;
        Refusal const cases[] = {
            {"constant", call(Described(eUnknown, 0, 0, 0), nullptr), empty, 4,
             L"ZPA::" + operation.second + L"(): nput data cannot be NULL."},
            {"type", call(Described(static_cast<eTypeCode>(12), 4, 3, 5), &three), empty, 999, L""},
            {"image", call(Described(eByte, 4, 3, 5), &three), Of(eByte), 4, kImageNull},
            {"output is image", call(Of(eDouble), &three), Of(eDouble), 5, kValidate},
            {"output narrower", call(Of(eDouble), &three), Apart(eSingle), 7, kNarrow},
            {"rows, output freed", call(Of(eDouble, 4, 3, 2), &three), empty, 7, kFirstRows},
        };
        for (Refusal const& each : cases) Check(each);
    }
}

TEST_F(ArithmeticRefuses, AbsoluteValuesInItsOrder) {
    auto const call = [](ImageAttributes image) {
        return [=](ImageAttributes* output) { return Abs(image, output); };
    };
    ImageAttributes const empty;
    for (eTypeCode const type : {eInt16, eUInt16}) {
        Refusal const cases[] = {
            {"type", call(Described(eUnknown, 4, 3, 5)), empty, 6, L"Abs not support input type."},
            {"null", call(Described(type, 4, 3, 5)), empty, 4, kNull},
            {"output is image", call(Of(type)), Of(type), 5, kValidate},
            {"output narrower", call(Of(type)), Apart(eSByte), 7, kNarrow},
            {"rows, output freed", call(Of(type, 4, 3, 3)), empty, 7, kFirstRows},
        };
        for (Refusal const& each : cases) Check(each);
        EXPECT_EQ(Abs(Described(type, 4, 3, 5), nullptr), SOLVANE_INVALID_ARGUMENT);
    }
}

TEST_F(ArithmeticRefuses, CoresCalledByThemselves) {
    ImageAttributes const valid = Of(eByte), empty;
    auto const add = [](ImageAttributes image, bool inPlace) {
        return [=](ImageAttributes* output) { return ipp_add(image, image, output, inPlace); };
    };
    Refusal const cases[] = {
        {"no primitive", add(Of(eInt32), true), empty, 5, L"Add(): ippiAdd. code -12"},
        {"no type", add(Of(eUnknown), true), empty, 5, L"Add(): ippiAdd. code -2"},
        {"no type, output freed", add(Of(eUnknown), false), empty, 5, L"Add(): ippiAdd. code -2"},
        {"no pixels", add(Of(eByte, 0, 3), true), empty, 5, L"Add(): ippiAdd. code -5"},
        {"null output", [&](ImageAttributes*) { return ipp_add(valid, valid, nullptr, false); }, empty, 5,
         kValidate},
        {"null output of a template",
         [&](ImageAttributes*) { return template_sub<char>(valid, valid, nullptr, false); }, empty, 5,
         kValidate},
        {"elements of a template",
         [&](ImageAttributes*) { return template_sub<double>(valid, valid, nullptr, true); }, empty, 7,
         L"The elements of the first image are too narrow."},
        {"constant of a template",
         [&](ImageAttributes* output) { return template_addc<char>(valid, nullptr, output, false); }, empty,
         2, L"The constant is NULL."},
    };
    for (Refusal const& each : cases) Check(each);
}

}  // namespace
}  // namespace ZPA
