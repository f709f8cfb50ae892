// All forms of the flat-top filter alike: what they refuse, and under which names.
#include <Basics/FlatTopFilter.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>

#include "support/CapturedLog.h"
#include "support/NoMemory.h"

namespace ZPA {
namespace {

using namespace Testing;

// Every exported form over the same memory, whose elements it takes for its own.
struct Form {
    char const* name;
    std::wstring prefix;
    std::size_t elementSize;
    bool masked;
    std::function<int(void* in, void* out, void* mask, int w, int h, int kw, int kh)> call;
};
template <typename T>
Form Plain(char const* name, SOLVANE_RETURNCODE (*filter)(T*, T*, int, int, int, int),
           std::wstring const& prefix = L"rectFlatTopFilteringTemplate()") {
    return {name, prefix, sizeof(T), false,
            [filter](void* in, void* out, void*, int w, int h, int kw, int kh) {
                return int{filter(static_cast<T*>(in), static_cast<T*>(out), w, h, kw, kh)};
            }};
}
template <typename T>
Form Masked(char const* name, SOLVANE_RETURNCODE (*filter)(T*, T*, char*, int, int, int, int)) {
    return {name, L"rectFlatTopFilteringWithMaskTemplate()", sizeof(T), true,
            [filter](void* in, void* out, void* mask, int w, int h, int kw, int kh) {
                return int{filter(static_cast<T*>(in), static_cast<T*>(out), static_cast<char*>(mask), w, h,
                                  kw, kh)};
            }};
}
Form const kForms[] = {
    Plain("rectFlatTopFilter", rectFlatTopFilter, L"rect_flat_top_filtering()"),
    Plain("rectFlatTopFilteringTemplate", rectFlatTopFilteringTemplate<unsigned short>),
    Plain("rectFlatTopFilteringTemplate", rectFlatTopFilteringTemplate<short>),
    Plain("rectFlatTopFilteringTemplate", rectFlatTopFilteringTemplate<double>),
    Plain("rect_flat_top_filtering_ushort", rect_flat_top_filtering_ushort),
    Plain("rect_flat_top_filtering_short", rect_flat_top_filtering_short),
    Plain("rect_flat_top_filtering_double", rect_flat_top_filtering_double),
    Masked("rectFlatTopFilteringWithMaskTemplate", rectFlatTopFilteringWithMaskTemplate<unsigned short>),
    Masked("rectFlatTopFilteringWithMaskTemplate", rectFlatTopFilteringWithMaskTemplate<double>),
    Masked("rectFlatTopFilteringWithMask_ushort", rectFlatTopFilteringWithMask_ushort),
    Masked("rectFlatTopFilteringWithMask_short", rectFlatTopFilteringWithMask_short),
    Masked("rectFlatTopFilteringWithMask_double", rectFlatTopFilteringWithMask_double),
};

// Memory for an image of 6 x 5 doubles and more, three times, known by its bytes.
struct Scene {
    std::vector<unsigned char> bytes = std::vector<unsigned char>(1024);
    unsigned char* input = bytes.data();
    unsigned char* output = bytes.data() + 256;
    unsigned char* mask = bytes.data() + 512;

    Scene() {
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i % 101);
    }
};

TEST(EveryFlatTopFilter, RefusesInItsOrder) {
    std::wstring const null = L" - NULL pointer(s).", kernel = L" - invalid kernel size.";
    std::wstring const inPlace = L" - input and output must be different buffers.";
    struct Refusal {
        bool input, output;
        int width, height, kernelWidth, kernelHeight;
        int code;
        std::wstring text;
    };
    Refusal const refusals[] = {
        {false, true, 6, 5, 3, 3, 2, null},
        {true, false, 6, 5, 3, 3, 2, null},
        {false, true, 0, 0, 2, 2, 2, null},
        {true, true, 6, 5, 2, 3, 3, kernel},
        {true, true, 6, 5, 3, 2, 3, kernel},
        {true, true, 6, 5, 0, 3, 3, kernel},
        {true, true, 6, 5, 3, INT_MIN, 3, kernel},
        {true, true, 6, 5, 7, 3, 3, kernel},
        {true, true, 6, 5, 6, 3, 3, kernel},  // becomes 7
        {true, true, 6, 4, 3, 4, 3, kernel},
        {true, true, 6, 5, INT_MAX, 3, 3, kernel},
        {true, true, 6, 5, 3, INT_MAX - 1, 3, kernel},
        {true, true, 0, 5, 3, 3, 3, kernel},
        {true, true, 6, -5, 3, 3, 3, kernel},
        {true, true, INT_MIN, INT_MIN, 3, 3, 3, kernel},
        {true, true, INT_MAX, INT_MAX, 3, 3, 4, inPlace},  // no memory holds two such images
    };
    for (Form const& form : kForms) {
        SCOPED_TRACE(form.name);
        for (Refusal const& each : refusals) {
            SCOPED_TRACE(testing::Message() << each.width << " x " << each.height << " by "
                                            << each.kernelWidth << " x " << each.kernelHeight);
            Scene scene;
            auto const before = scene.bytes;
            auto const call = [&] {
                return form.call(each.input ? scene.input : nullptr, each.output ? scene.output : nullptr,
                                 scene.mask, each.width, each.height, each.kernelWidth, each.kernelHeight);
            };
            ExpectRefusal(call, each.code, form.prefix + each.text);
            EXPECT_EQ(scene.bytes, before);
        }
        if (!form.masked) continue;
        Scene scene;
        ExpectRefusal([&] { return form.call(scene.input, scene.output, nullptr, 6, 5, 2, 3); }, 2,
                      form.prefix + null);
    }
}

TEST(EveryFlatTopFilter, RefusesSharedMemory) {
    for (Form const& form : kForms) {
        SCOPED_TRACE(form.name);
        std::size_t const imageBytes = 6 * 5 * form.elementSize, maskBytes = 6 * 5;
        struct Overlap {
            std::size_t input, output, mask;
            int code;
        };
        Overlap const overlaps[] = {
            {0, 0, 512, 4},
            {0, imageBytes - form.elementSize, 512, 4},
            {imageBytes - form.elementSize, 0, 512, 4},
            {0, imageBytes, 512, 0},
            {imageBytes, 0, 512, 0},
            {0, 256, 256 + imageBytes - 1, form.masked ? 4 : 0},
            {0, 256, 256 - maskBytes + 1, form.masked ? 4 : 0},
            {0, 256, 256 + imageBytes, 0},
            {0, 256, 256 - maskBytes, 0},
            {0, 256, 0, 0},
        };
        for (Overlap const& each : overlaps) {
            Scene scene;
            auto const before = scene.bytes;
            CapturedLog const log;
            EXPECT_EQ(form.call(scene.input + each.input, scene.input + each.output, scene.input + each.mask,
                                6, 5, 3, 3),
                      each.code);
            EXPECT_EQ(log.Code(), each.code);
            EXPECT_EQ(scene.bytes == before, each.code != 0);
        }
    }
}

TEST(EveryFlatTopFilter, ReportsThatThereIsNoMemory) {
    for (Form const& form : kForms) {
        SCOPED_TRACE(form.name);
        Scene scene;
        auto expected = scene.bytes;
        if (form.masked)
            std::fill_n(expected.begin() + 256, 6 * 5 * form.elementSize, static_cast<unsigned char>(0));
        CapturedLog const log;
        EXPECT_EQ(WithoutMemory([&] { return form.call(scene.input, scene.output, scene.mask, 6, 5, 3, 3); }),
                  1);
        EXPECT_EQ(log.Code(), 1);
        EXPECT_EQ(log.Text().find(form.prefix + L": Memory allocation failed for "), 0U)
            << testing::PrintToString(log.Text());
        EXPECT_EQ(scene.bytes, expected);
    }
}

TEST(EveryFlatTopFilter, IsEnteredAndLeftOnceUnderItsName) {
    for (Form const& form : kForms) {
        Scene scene;
        std::string const name = form.name;
        EXPECT_EQ(ScopesOf([&] { form.call(scene.input, scene.output, scene.mask, 6, 5, 3, 3); }),
                  std::wstring(name.begin(), name.end()) + L"{}");
    }
}

}  // namespace
}  // namespace ZPA
