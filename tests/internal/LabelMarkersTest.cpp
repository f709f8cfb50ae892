// The labelling primitives by themselves: what they refuse, and the buffer that they ask for.
#include "primitives/LabelMarkers.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "support/SimdTargets.h"

namespace ZPA {
namespace {

TEST(LabelMarkersPrimitive, RefusesInItsOrder) {
    std::uint8_t bytes[4] = {1, 1, 1, 1};
    std::uint8_t buffer[1000];
    int regions = -1;
    Size const fits{2, 2};
    struct Case {
        std::uint8_t* image;
        Size size;
        int smallest, largest, norm;
        int* regions;
        void* buffer;
        Status status;
    };
    Case const cases[] = {
        {nullptr, {0, 0}, 0, 0, 2, &regions, buffer, kNullPointer},
        {bytes, {0, 0}, 0, 0, 2, nullptr, buffer, kNullPointer},
        {bytes, {0, 0}, 0, 0, 2, &regions, nullptr, kNullPointer},
        {bytes, {0, 2}, 0, 0, 2, &regions, buffer, kBadSize},
        {bytes, {2, -1}, 1, 254, 0, &regions, buffer, kBadSize},
        {bytes, {65536, 65536}, 1, 254, 0, &regions, buffer, kBadSize},
        {bytes, fits, 0, 254, 0, &regions, buffer, kBadArgument},
        {bytes, fits, 3, 2, 0, &regions, buffer, kBadArgument},
        {bytes, fits, 1, 256, 1, &regions, buffer, kBadArgument},
        {bytes, fits, 1, 254, 2, &regions, buffer, kBadArgument},
        {bytes, fits, 255, 255, 1, &regions, buffer, kDone},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(&each - cases);
        EXPECT_EQ(ippiLabelMarkers(each.image, 2, each.size, each.smallest, each.largest, each.norm,
                                   each.regions, each.buffer),
                  each.status);
        EXPECT_EQ(regions, each.status == kDone ? 1 : -1);
    }
    std::size_t size = 0;
    EXPECT_EQ(ippiLabelMarkersGetBufferSize({0, 0}, nullptr), kNullPointer);
    EXPECT_EQ(ippiLabelMarkersGetBufferSize({1, 0}, &size), kBadSize);
    EXPECT_EQ(ippiLabelMarkersGetBufferSize({INT_MAX, INT_MAX}, &size), kBadSize);
    EXPECT_EQ(ippiLabelMarkersGetBufferSize({65535, 65536}, &size), kBadSize);
    EXPECT_EQ(ippiLabelMarkersGetBufferSize({4000, 3000}, &size), kDone);
    EXPECT_GT(size, 2000u * 3000u * 6u);
}

// As many runs as there can be, in a buffer that lies anywhere and has no byte to spare.
TEST(LabelMarkersPrimitive, StaysInItsBuffer) {
    constexpr unsigned char kGuard = 0xA5;
    for (Size const size : {Size{1, 1}, {1, 70}, {63, 3}, {64, 2}, {65, 5}, {129, 1}})
        for (int const norm : {kInfinityNorm, kL1Norm})
            for (std::size_t const offset : {0u, 1u, 7u, 8u})
                Testing::ForEachSimdTarget([&] {
                    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
                    std::size_t bytes = 0;
                    ASSERT_EQ(ippiLabelMarkersGetBufferSize(size, &bytes), kDone);
                    std::vector<unsigned char> memory(offset + bytes + 8, kGuard);
                    auto const pixels = static_cast<std::size_t>(size.width * size.height);
                    std::vector<std::uint16_t> image(pixels);
                    for (std::size_t i = 0; i < pixels; ++i)
                        image[i] = static_cast<int>(i) % size.width % 2 == 0 ? 1 : 0;
                    int regions = 0;
                    ASSERT_EQ(ippiLabelMarkers(image.data(), 2 * size.width, size, 5, 7, norm, &regions,
                                               memory.data() + offset),
                              kDone);
                    EXPECT_EQ(regions, (size.width + 1) / 2);
                    for (std::size_t i = 0; i < pixels; ++i) {
                        int const x = static_cast<int>(i) % size.width;
                        ASSERT_EQ(image[i], x % 2 == 0 ? 5 + x / 2 % 3 : 0) << i;
                    }
                    for (std::size_t i = 0; i < offset; ++i) ASSERT_EQ(memory[i], kGuard);
                    for (std::size_t i = offset + bytes; i < memory.size(); ++i) ASSERT_EQ(memory[i], kGuard);
                });
}

}  // namespace
}  // namespace ZPA
