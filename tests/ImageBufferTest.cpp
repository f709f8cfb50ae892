// Images and buffers as objects: who owns the elements, which shapes are taken, and what is told of it.
#include <Basics/ImageBuffer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cwchar>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr auto kBadDimensions = "ZPA_Image<T>::Initialize()  : Invalid buffer dimensions";
constexpr auto kNoMemory = "ZPA_Image<T>::Initialize memory allocation failure";
constexpr auto kBadAttributes = "ZPA::ZPA_Image.ChangeImageAttributes() : Invalid buffer attributes.";
constexpr auto kBadSize = "ZPA_Image<T>::Initialize()  : Invalid buffer size.";

// What the body throws; empty if nothing.
template <typename Body> std::string Thrown(Body const& body) {
    try {
        body();
        return "";
    } catch (std::runtime_error const& error) {
        return error.what();
    }
}

template <typename T> std::vector<int> ShapeOf(IZPA_Image<T> const& image) {
    return {image.GetWidth(), image.GetHeight(), image.GetStride(), image.GetBitsPerPixel(),
            image.GetPixelSpacing()};
}
using Ints = std::vector<int>;

template <typename T> bool IsZero(T const* elements, int count) {
    return std::all_of(elements, elements + count, [](T element) { return element == T{}; });
}

// The type, whatever a descriptor says.
template <typename T> void ExpectType(eTypeCode expected) {
    SCOPED_TRACE(typeid(T).name());
    ZPA_Image<T> image;
    EXPECT_EQ(ImageAttributes(image).type, expected);
    T pixel{};
    image.SetImage(ImageAttributes(eTypeCode{99}, &pixel, 1, 1, 1, 8, 3), false, false);
    EXPECT_EQ(ImageAttributes(image).type, expected);
    ZPA_Image<T> const made(ImageAttributes(eUnknown, nullptr, 3, 2, 0, 12, 5), false, true);
    EXPECT_EQ(ImageAttributes(made).type, expected);
    EXPECT_TRUE(IsZero(made.GetBufferPtr(), 6));
    if constexpr (!std::is_same_v<T, signed char>) {  // of which there are no buffers
        ZPA_Buffer<T> buffer;
        EXPECT_EQ(BufferAttributes(buffer).type, expected);
        buffer.SetBuffer(BufferAttributes(eTypeCode{99}, nullptr, 3), false);
        EXPECT_EQ(BufferAttributes(buffer).type, expected);
        EXPECT_TRUE(IsZero(buffer.GetBufferPtr(), 3));
        ZPA_Buffer<T> const madeBuffer(BufferAttributes(eUnknown, nullptr, 3), false);
        EXPECT_EQ(BufferAttributes(madeBuffer).type, expected);
    }
}

TEST(EveryElement, HasItsType) {
    ExpectType<char>(eSByte);
    ExpectType<signed char>(eSByte);
    ExpectType<unsigned char>(eByte);
    ExpectType<short>(eInt16);
    ExpectType<unsigned short>(eUInt16);
    ExpectType<int>(eInt32);
    ExpectType<unsigned int>(eUInt32);
    // No element type has 64 bits.
    ExpectType<long>(sizeof(long) == 4 ? eInt32 : eUnknown);
    ExpectType<unsigned long>(sizeof(long) == 4 ? eUInt32 : eUnknown);
    ExpectType<float>(eSingle);
    ExpectType<double>(eDouble);
}

TEST(Image, IsEmptyAtFirst) {
    ZPA_Image<short> const image;
    EXPECT_EQ(ShapeOf(image), Ints({0, 0, 0, 0, 0}));
    EXPECT_EQ(image.GetBufferPtr(), nullptr);
    EXPECT_FALSE(image.IsOwner());
}

TEST(Image, AllocatesAndOwnsWhateverTheOwnerFlagSays) {
    ZPA_Image<unsigned short> const image(nullptr, 10, 10, 0, 16, 7, false, true);
    EXPECT_EQ(ShapeOf(image), Ints({10, 10, 10, 16, 7}));
    EXPECT_TRUE(image.IsOwner());
    EXPECT_TRUE(IsZero(image.GetBufferPtr(), 100));
    ImageAttributes const described = image;
    EXPECT_EQ(described.buffer, image.GetBufferPtr());
    EXPECT_EQ(described.pixelspacing, 7);
}

TEST(Image, NeverZeroesForeignMemory) {
    unsigned char pixels[] = {1, 2, 3, 4, 5, 6};
    ZPA_Image<unsigned char> image(pixels, 3, 2, 0, 8, 0, false, true);
    image.SetImage(pixels + 1, 1, 1, 1, 8, 0, false, true);
    image.SetImage(pixels, 2, 2, 3, 8, 0, false, true);
    image.SetImage(pixels, 3, 2, 3, 8, 0, false, true);
    EXPECT_EQ(pixels[0] + pixels[1] + pixels[5], 1 + 2 + 6);
    EXPECT_FALSE(image.IsOwner());
}

TEST(Image, TakesGoodShapesOnly) {
    struct Case {
        int width, height, stride, bitsperpixel;
        char const* thrown;
    };
    Case const cases[] = {
        {0, 1, 1, 8, kBadDimensions},
        {0, 1, 0, 8, kBadDimensions},
        {1, 0, 1, 8, kBadDimensions},
        {-1, 1, 1, 8, kBadDimensions},
        {1, -1, 1, 8, kBadDimensions},
        {-1, -1, -1, 8, kBadDimensions},
        {1, 1, -1, 8, kBadDimensions},
        {INT_MIN, INT_MIN, INT_MIN, INT_MIN, kBadDimensions},
        {10, 2, 5, 9, kBadDimensions},
        {10, 2, 5, 8, ""},
        {10, 2, 5, -1, ""},
        {10, 2, 10, 64, ""},
        {10, 2, 0, 64, ""},
        {1, 2, 99, 16, ""},
        {INT_MAX, 2, 0, 16, kNoMemory},
        {1, 46341, 46341, 16, kNoMemory},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(testing::Message() << each.width << " x " << each.height << ", " << each.stride);
        CapturedLog const log;
        bool const failsInMemory = each.thrown == std::string(kNoMemory);
        auto const expectThrown = [&](std::string const& thrown) {
            EXPECT_EQ(thrown, each.thrown);
            EXPECT_EQ(log.Code(), failsInMemory ? 1 : 0);
            if (failsInMemory) {
                EXPECT_EQ(log.Text().find(L"Memory allocation failed for "), 0U);
            }
        };
        expectThrown(Thrown([&] {
            ZPA_Image<double>(nullptr, each.width, each.height, each.stride, each.bitsperpixel, 0, false,
                              true);
        }));
        ZPA_Image<double> image;
        expectThrown(Thrown([&] {
            image.SetImage(nullptr, each.width, each.height, each.stride, each.bitsperpixel, 0, false, true);
        }));
    }
}

// The sanitizers tell if the last row has no room.
TEST(Image, HasRoomForTheLastOfItsOverlappingRows) {
    ZPA_Image<unsigned char> image(nullptr, 10, 10, 5, 8, 0, true, true);
    EXPECT_TRUE(IsZero(image.GetBufferPtr(), 9 * 5 + 10));
    image.GetBufferPtr()[9 * 5 + 9] = 1;
    EXPECT_EQ(image.GetHistogram()->GetBufferPtr()[1], 1U);

    // A narrower block has not; it must not be kept for such rows, and no such shape be given to it.
    image.SetImage(nullptr, 5, 10, 5, 8, 0, true, true);
    image.SetImage(nullptr, 5, 11, 5, 8, 0, true, true);
    EXPECT_EQ(Thrown([&] { image.ChangeImageAttributes(60, 1, 5, 8, 0); }), kBadAttributes);
    EXPECT_EQ(Thrown([&] { image.ChangeImageAttributes(10, 10, -5, 8, 0); }), kBadAttributes);
    image.SetImage(nullptr, 10, 11, 5, 8, 0, true, true);
    EXPECT_TRUE(IsZero(image.GetBufferPtr(), 10 * 5 + 10));
    image.GetBufferPtr()[10 * 5 + 9] = 1;
    EXPECT_EQ(image.GetHistogram()->GetBufferPtr()[1], 1U);
    unsigned char const* const kept = image.GetBufferPtr();
    image.SetImage(nullptr, 10, 11, 5, 8, 0, true, false);
    EXPECT_EQ(image.GetBufferPtr(), kept);
    EXPECT_EQ(image.GetHistogram()->GetBufferPtr()[1], 1U);
}

TEST(Image, KeepsItsMemoryWhileTheProductIsTheSame) {
    ZPA_Image<unsigned short> image(nullptr, 10, 10, 10, 16, 0, true, true);
    unsigned short* const kept = image.GetBufferPtr();
    kept[99] = 7;
    image.SetImage(nullptr, 20, 5, 20, 12, 3, false, false);
    EXPECT_EQ(image.GetBufferPtr(), kept);
    EXPECT_EQ(ShapeOf(image), Ints({20, 5, 20, 12, 3}));
    EXPECT_TRUE(image.IsOwner());
    EXPECT_EQ(kept[99], 7);
    image.SetImage(nullptr, 3, 4, 25, 16, 0, true, true);
    EXPECT_EQ(image.GetBufferPtr(), kept);
    EXPECT_TRUE(IsZero(kept, 100));
    // Refused before the memory is touched. A stride of 0 is none here: its product is another.
    kept[0] = 9;
    for (auto const& shape : {Ints{-10, 10, 10}, Ints{10, -10, -10}, Ints{30, 5, 20}}) {
        EXPECT_EQ(Thrown([&] { image.SetImage(nullptr, shape[0], shape[1], shape[2], 16, 0, true, true); }),
                  kBadDimensions);
        EXPECT_EQ(image.GetBufferPtr(), kept);
        EXPECT_EQ(ShapeOf(image), Ints({3, 4, 25, 16, 0}));
        EXPECT_EQ(kept[0], 9);
    }
}

TEST(Image, LetsGoOfItsMemoryForAnotherProduct) {
    unsigned short foreign[6] = {1, 2, 3, 4, 5, 6};
    ZPA_Image<unsigned short> image(nullptr, 10, 10, 0, 16, 0, true, true);
    image.SetImage(nullptr, 10, 11, 0, 16, 0, false, true);
    EXPECT_TRUE(IsZero(image.GetBufferPtr(), 110));
    image.SetImage(foreign, 3, 2, 0, 16, 0, false, true);
    EXPECT_EQ(image.GetBufferPtr(), foreign);
    EXPECT_FALSE(image.IsOwner());
    // Foreign memory is never kept for a null pointer, nor freed.
    image.SetImage(nullptr, 3, 2, 3, 16, 0, false, true);
    EXPECT_NE(image.GetBufferPtr(), foreign);
    EXPECT_TRUE(image.IsOwner());
    EXPECT_EQ(foreign[5], 6);
    // Handed over, it is freed with the image.
    image.SetImage(new unsigned short[6], 3, 2, 0, 16, 0, true, true);
    EXPECT_TRUE(image.IsOwner());
}

TEST(Image, HasNoPixelsAfterAFailure) {
    CapturedLog const log;
    ZPA_Image<unsigned short> image(nullptr, 4, 4, 0, 16, 5, true, true);
    EXPECT_EQ(Thrown([&] { image.SetImage(nullptr, 0, 4, 0, 12, 0, true, true); }), kBadDimensions);
    EXPECT_EQ(image.GetBufferPtr(), nullptr);
    EXPECT_EQ(ShapeOf(image), Ints({4, 4, 4, 16, 5}));
    auto const histogram = image.GetHistogram();
    EXPECT_EQ(histogram->GetSize(), 65536);
    EXPECT_TRUE(IsZero(histogram->GetBufferPtr(), 65536));

    unsigned short foreign[4] = {};
    image.SetImage(foreign, 2, 2, 0, 16, 0, false, false);
    EXPECT_EQ(Thrown([&] { image.SetImage(nullptr, 60000, 60000, 0, 8, 1, true, true); }), kNoMemory);
    EXPECT_EQ(log.Code(), 1);
    EXPECT_EQ(log.Text(), L"Memory allocation failed for 2147483647 bytes.");
    EXPECT_EQ(image.GetBufferPtr(), nullptr);
    EXPECT_EQ(ShapeOf(image), Ints({60000, 60000, 60000, 8, 1}));
    EXPECT_FALSE(image.IsOwner());
    EXPECT_EQ(image.GetHistogram()->GetBufferPtr()[0], 0U);

    // Wrapped memory outlives a refused shape.
    image.SetImage(foreign, 2, 2, 0, 16, 0, false, false);
    EXPECT_EQ(Thrown([&] { image.SetImage(nullptr, 2, -2, 0, 16, 0, false, false); }), kBadDimensions);
    EXPECT_EQ(image.GetBufferPtr(), foreign);
}

TEST(Image, GivesItsPixelsAway) {
    std::unique_ptr<int[]> pixels;
    {
        ZPA_Image<int> image(nullptr, 2, 2, 0, 32, 0, true, true);
        image.Disown();
        EXPECT_FALSE(image.IsOwner());
        pixels.reset(image.GetBufferPtr());
    }
    EXPECT_EQ(pixels[3], 0);
    ZPA_Image<int> image(nullptr, 2, 2, 0, 32, 0, true, true);
    image.Disown();
    FreePixels(image.GetBufferPtr());
}

TEST(Image, ChangesItsShapeWithinItsMemory) {
    ZPA_Image<unsigned short> image;
    EXPECT_EQ(Thrown([&] { image.ChangeImageAttributes(1, 1, 1, 16, 0); }), kBadAttributes);
    image.SetImage(nullptr, 10, 10, 0, 16, 0, true, true);
    unsigned short* const pixels = image.GetBufferPtr();
    image.ChangeImageAttributes(5, 4, 25, 12, 9);
    EXPECT_EQ(ShapeOf(image), Ints({5, 4, 25, 12, 9}));
    for (auto const& shape : {Ints{1, 101, 1}, Ints{1, 1, 101}, Ints{65536, 65536, 65536}}) {
        EXPECT_EQ(Thrown([&] { image.ChangeImageAttributes(shape[0], shape[1], shape[2], 16, 0); }),
                  kBadAttributes);
        EXPECT_EQ(ShapeOf(image), Ints({5, 4, 25, 12, 9}));
    }
    // The present pointer takes the same road, and leaves the owner as it was.
    image.SetImage(pixels, 10, 10, 10, 16, 1, false, true);
    EXPECT_TRUE(image.IsOwner());
    EXPECT_EQ(Thrown([&] { image.SetImage(pixels, 10, 11, 10, 16, 1, false, true); }), kBadAttributes);
    EXPECT_EQ(image.GetBufferPtr(), pixels);

    unsigned short foreign[1] = {};
    image.SetImage(foreign, 1, 1, 1, 16, 0, false, false);
    image.ChangeImageAttributes(60000, 60000, 60000, 16, 0);  // on trust
    EXPECT_EQ(ShapeOf(image), Ints({60000, 60000, 60000, 16, 0}));
    image.ChangeImageAttributes(-1, 0, -7, -2, -3);
    EXPECT_EQ(ShapeOf(image), Ints({-1, 0, -7, -2, -3}));
}

TEST(Buffer, OwnsWhatItAllocatesAndWhatItIsGiven) {
    ZPA_Buffer<int> const empty;
    EXPECT_EQ(empty.GetBufferPtr(), nullptr);
    EXPECT_EQ(empty.GetSize(), 0);
    EXPECT_FALSE(empty.IsOwner());

    ZPA_Buffer<int> buffer(nullptr, 4, false);
    EXPECT_TRUE(buffer.IsOwner());
    EXPECT_TRUE(IsZero(buffer.GetBufferPtr(), 4));
    int* const kept = buffer.GetBufferPtr();
    kept[3] = 7;
    buffer.SetBuffer(nullptr, 4, false);  // zeroes what it has
    EXPECT_EQ(buffer.GetBufferPtr(), kept);
    EXPECT_TRUE(buffer.IsOwner());
    EXPECT_EQ(kept[3], 0);
    kept[3] = 7;
    buffer.SetBuffer(kept, 3, true);  // its own elements stay
    EXPECT_EQ(buffer.GetBufferPtr(), kept);
    EXPECT_EQ(buffer.GetSize(), 3);
    EXPECT_EQ(kept[3], 7);
    buffer.SetBuffer(nullptr, 9, false);
    EXPECT_TRUE(IsZero(buffer.GetBufferPtr(), 9));

    int foreign[2] = {1, 2};
    buffer.SetBuffer(foreign, 2, false);
    EXPECT_FALSE(buffer.IsOwner());
    EXPECT_EQ(static_cast<BufferAttributes>(buffer).buffer, foreign);
    buffer.SetBuffer(nullptr, 2, false);
    EXPECT_NE(buffer.GetBufferPtr(), foreign);
    EXPECT_EQ(foreign[1], 2);
    buffer.SetBuffer(new int[5], 5, true);
    EXPECT_TRUE(buffer.IsOwner());

    buffer.Disown();
    std::unique_ptr<int[]> const given(buffer.GetBufferPtr());
    EXPECT_FALSE(buffer.IsOwner());
    EXPECT_EQ(buffer.GetBufferPtr(), given.get());
}

TEST(Buffer, RefusesSizesBelowOneInTheNameOfTheImage) {
    for (int const size : {0, -1, INT_MIN}) {
        EXPECT_EQ(Thrown([&] { ZPA_Buffer<int>(nullptr, size, false); }), kBadSize);
        ZPA_Buffer<int> buffer(nullptr, 3, false);
        EXPECT_EQ(Thrown([&] { buffer.SetBuffer(nullptr, size, true); }), kBadSize);
        EXPECT_EQ(buffer.GetBufferPtr(), nullptr);
        EXPECT_EQ(buffer.GetSize(), 3);
        EXPECT_TRUE(buffer.IsOwner());
    }
}

// Pointers as traces print them.
std::wstring Shown(void const* pointer) {
    wchar_t digits[2 * sizeof(void*) + 1];
    std::swprintf(digits, 2 * sizeof(void*) + 1, L"%0*llX", static_cast<int>(2 * sizeof(void*)),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pointer)));
    return digits;
}

using Lines = std::vector<std::wstring>;

TEST(Trace, TellsCallsAndMemory) {
    CapturedLog log;
    log.Debug(eLogImage);
    log.Debug(eLogMemory);
    unsigned short foreign[4] = {};
    auto const memory = [](ISolvane_Object const& object, void const* elements, int size) {
        std::wstring const count = std::to_wstring(size);
        return Lines{L"allocating(object=" + Shown(&object) + L", pointer=" + Shown(elements) + L", size=" +
                         count + L")",
                     L"de-allocating(object=" + Shown(&object) + L",pointer=" + Shown(elements) + L",size=" +
                         count + L")"};
    };
    Lines expected;
    {
        ZPA_Image<unsigned short> traced(nullptr, 4, 2, 5, 12, 3, false, false);  // constructors are no calls
        expected = memory(traced, traced.GetBufferPtr(), 10);
        traced.SetImage(nullptr, 2, 5, 2, 8, 7, true, false);
        traced.SetImage(ImageAttributes(eByte, foreign, 1, 2, 2, 8, -1), false, true);
    }
    std::wstring const null = Shown(nullptr);
    EXPECT_EQ(Messages(log.DebugLines(), eLogImage),
              (Lines{L"SetImage called. buffer=" + null +
                         L",width=2,height=5,stride=2,bitsperpixel=8,pixelspacing=7,owner=1",
                     L"SetImage called. buffer=" + Shown(foreign) +
                         L",width=1,height=2,stride=2,bitsperpixel=8,pixelspacing=-1,owner=0"}));
    EXPECT_EQ(Messages(log.DebugLines(), eLogMemory), expected);
    log.Clear();
    {
        ZPA_Buffer<double> traced;
        traced.SetBuffer(BufferAttributes(eByte, nullptr, 3), false);
        expected = memory(traced, traced.GetBufferPtr(), 3);
    }
    EXPECT_EQ(Messages(log.DebugLines(), eLogImage),
              Lines{L"SetBuffer called. buffer=" + null + L",size=3,owner=0"});
    EXPECT_EQ(Messages(log.DebugLines(), eLogMemory), expected);
}

// Nothing leaks, and no destructor ends the process.
TEST(Trace, CannotDisturbOwnership) {
    CapturedLog log;
    log.Debug(eLogMemory);
    ZPA_Logging::SetDebugCallback(ThrowFromCallback);
    ZPA_Image<int> image(nullptr, 2, 2, 0, 32, 0, true, true);
    EXPECT_TRUE(image.IsOwner());
    image.SetImage(nullptr, 3, 2, 0, 32, 0, true, true);
    EXPECT_EQ(image.GetWidth(), 3);
}

}  // namespace
}  // namespace ZPA
