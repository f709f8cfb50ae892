// Factory ids: what they build, and what is refused.
#include <Basics/Factory.h>
#include <Basics/ImageBuffer.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/RawFiles.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> void ExpectImage(char const* id, Shape shape, int bitsperpixel, int pixelspacing) {
    SCOPED_TRACE(id);
    std::unique_ptr<ISolvane_Object> const object(ZPA_Create(id));
    auto const* const image = dynamic_cast<ZPA_Image<T>*>(object.get());
    ASSERT_NE(image, nullptr);
    ImageAttributes const made = *image;
    EXPECT_EQ(Description(made), Description({TypeCodeOf<T>, nullptr, shape.width, shape.height, shape.stride,
                                              bitsperpixel, pixelspacing}));
    EXPECT_TRUE(image->IsOwner());
    for (int i = 0; i < made.stride * made.height; ++i) ASSERT_EQ(image->GetBufferPtr()[i], T{}) << i;
}

template <typename T> void ExpectBuffer(char const* id, int size) {
    SCOPED_TRACE(id);
    std::unique_ptr<ISolvane_Object> const object(ZPA_Create(id));
    auto const* const buffer = dynamic_cast<ZPA_Buffer<T>*>(object.get());
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->GetSize(), size);
    EXPECT_TRUE(buffer->IsOwner());
    for (int i = 0; i < size; ++i) ASSERT_EQ(buffer->GetBufferPtr()[i], T{}) << i;
}

TEST(Factory, BuildsWhatTheIdSays) {
    ExpectImage<unsigned char>("image.6.100.50.0.8.0", {100, 50, 100}, 8, 0);
    ExpectImage<char>("image.5.3.2.4.7.1", {3, 2, 4}, 7, 1);
    ExpectImage<short>("image.7.3.2.3.16.150", {3, 2, 3}, 16, 150);
    ExpectImage<unsigned short>("image..8...3.2.5.12.-9.77.x", {3, 2, 5}, 12, -9);
    ExpectImage<double>("image. 14th.+3.2", {3, 2, 3}, 0, 0);
    ExpectImage<unsigned char>("image.6.10.4.5.8", {10, 4, 5}, 8, 0);  // rows may share bytes
    ExpectBuffer<unsigned char>("buffer.6.16", 16);
    ExpectBuffer<char>("buffer.5.1", 1);
    ExpectBuffer<short>("buffer.7.3", 3);
    ExpectBuffer<unsigned short>("buffer.8..3.", 3);
    ExpectBuffer<int>("buffer.9.10.11", 10);
    ExpectBuffer<double>("buffer.14.10", 10);
}

TEST(Factory, Refuses) {
    struct Case {
        std::string id;
        int code;
        std::wstring message;  // "*" stands for the id in parentheses
    };
    std::wstring const imageInvalid = L"image factoryid * is invalid.";
    std::wstring const imageType = L"Unknown image datatype in factoryid *.";
    std::wstring const bufferInvalid = L"buffer factoryid * is invalid.";
    std::wstring const bufferType = L"Unknown buffer datatype in factoryid *.";
    std::wstring const unknown = L"Unknown factoryid *.";
    std::wstring const unexpected = L"Unexpected exception.";
    std::string const hundredKilobytes(100000, 'x');
    Case const cases[] = {
        {"image.6.0.50", 4, imageInvalid},
        {"image.6.50", 4, imageInvalid},
        {"image.", 4, imageInvalid},
        {"image.99.0.50", 4, imageInvalid},  // ahead of the type
        {"image.9.100.50.0.8.0", 4, imageType},
        {"image.13.1.1", 4, imageType},
        {"image.-99999999999.1.1", 4, imageType},
        {"image.%s%n.1.1", 4, imageType},
        {"image.6.-1.1", 999, unexpected},
        {"image.6.1.-1", 999, unexpected},
        {"image.6.1.1.-1", 999, unexpected},
        {"image.8.10.1.5.16", 999, unexpected},
        {"image.14.99999999999.99999999999", 999, unexpected},
        {"buffer.6", 4, bufferInvalid},
        {"buffer.99.0", 4, bufferInvalid},
        {"buffer.13.5", 4, bufferType},
        {"buffer.10.5", 4, bufferType},
        {"buffer.6.-5", 999, unexpected},
        {"volume.6.1", 4, unknown},
        {"", 4, unknown},
        {"Image.6.1.1", 4, unknown},
        {".image.6.1.1", 4, unknown},
        {hundredKilobytes, 4, unknown},
        {"image.6.1.0." + hundredKilobytes, 4, imageInvalid},
        {"buffer.99." + std::string(100000, '9'), 4, bufferType},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.id.substr(0, 40));
        std::wstring message = each.message;
        if (auto const star = message.find(L'*'); star != message.npos)
            message.replace(star, 1, L"(" + Wide(each.id) + L")");
        ISolvane_Object outside;
        ISolvane_Object* object = &outside;
        EXPECT_REFUSAL(each.code, message.substr(0, 511), ZPA_CreateEx(each.id.c_str(), &object));
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(ZPA_Create(each.id.c_str()), nullptr);
    }
}

TEST(Factory, RefusesNullPointers) {
    ISolvane_Object outside;
    ISolvane_Object* object = &outside;
    EXPECT_REFUSAL(2, L"Null pointer(s).", ZPA_CreateEx(nullptr, &object));
    EXPECT_EQ(object, nullptr);
    EXPECT_REFUSAL(2, L"Null pointer(s).", ZPA_CreateEx("image.6.1.1", nullptr));
    EXPECT_EQ(ZPA_Create(nullptr), nullptr);
}

TEST(Factory, ReportsItsScopeUnderItsOwnCategory) {
    CapturedLog log;
    log.Debug(eLogFactory);
    ISolvane_Object* object = nullptr;
    ASSERT_EQ(ZPA_CreateEx("buffer.6.1", &object), 0);
    delete object;
    ASSERT_EQ(log.DebugLines().size(), 2u);
    EXPECT_EQ(log.DebugLines()[0].category, 2);
    // Details end where their format would.
    EXPECT_EQ(log.DebugLines()[0].message, L"Entering function ZPA::ZPA_CreateEx factoryid=buffer.6.1, obj");
    EXPECT_EQ(log.DebugLines()[1].message, L"Exiting function ZPA::ZPA_CreateEx");
}

TEST(ParseFactoryString, KeepsFieldsWhoseNumbersAreMissing) {
    struct Case {
        char const* id;
        int type, width, height, stride, bitsperpixel, pixelspacing;
    };
    Case const images[] = {
        {"image.6.5.4.3.2.1", 6, 5, 4, 3, 2, 1},
        {"anything.6.5.4", 6, 5, 4, 13, 12, 11},
        {"..6.5.4.3", 5, 4, 3, 13, 12, 11},
        {"image", 16, 15, 14, 13, 12, 11},
        {"", 16, 15, 14, 13, 12, 11},
        {"x.y.-1. . .9e9", 0, -1, 0, 0, 9, 11},
    };
    for (Case const& each : images) {
        SCOPED_TRACE(each.id);
        ImageAttributes image(static_cast<eTypeCode>(16), nullptr, 15, 14, 13, 12, 11);
        EXPECT_EQ(ParseImageFactoryString(each.id, &image), 0);
        EXPECT_EQ(Description(image),
                  Description({static_cast<eTypeCode>(each.type), nullptr, each.width, each.height,
                               each.stride, each.bitsperpixel, each.pixelspacing}));

        BufferAttributes buffer(static_cast<eTypeCode>(16), nullptr, 15);
        EXPECT_EQ(ParseBufferFactoryString(each.id, &buffer), 0);
        EXPECT_EQ(buffer.type, each.type);
        EXPECT_EQ(buffer.size, each.width);
    }
    ImageAttributes image;
    BufferAttributes buffer;
    EXPECT_EQ(ParseImageFactoryString("image.6", nullptr), 2);
    EXPECT_EQ(ParseImageFactoryString(nullptr, &image), 2);
    EXPECT_EQ(ParseBufferFactoryString("buffer.6", nullptr), 2);
    EXPECT_EQ(ParseBufferFactoryString(nullptr, &buffer), 2);
}

}  // namespace
}  // namespace ZPA
