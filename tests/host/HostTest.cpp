// A host program whose functions are named as the library's must not be called by the library.
//
// A row is an operation that needs another exported one; the other one is also a function in
// HostFunctions.cpp.
#include <Basics/CoreTypes.h>
#include <Basics/Factory.h>
#include <Basics/PixelOperations.h>
#include <Basics/RawFile.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "host/HostFunctions.h"
#include "support/CapturedLog.h"

namespace ZPA {
namespace {

TEST(HostProgram, KeepsItsNamesToItself) {
    auto* const found = dlsym(RTLD_DEFAULT, "compare");
    Dl_info where = {};
    ASSERT_NE(dladdr(found, &where), 0);
    ASSERT_EQ(std::strstr(where.dli_fname, "libzpa"), nullptr) << "the host's names must come first";

    Testing::CapturedLog const log;
    std::unique_ptr<ISolvane_Object> const object(ZPA_Create("image.6.2.2"));
    ASSERT_NE(object, nullptr);
    EXPECT_GT(object->Id(), 0);

    ImageAttributes output;
    EXPECT_EQ(ValidateImageBuffer(ImageAttributes(eByte, &output, 1, -1, 1, 8, 0), &output), 1);

    // A destination with memory is refused and freed.
    unsigned short element = 0;
    BufferAttributes destination(eUInt16, new unsigned short[1], 1);
    EXPECT_EQ(copyBuffer(BufferAttributes(eUInt16, &element, 1), &destination), 2);
    EXPECT_EQ(destination.buffer, nullptr);

    ImageAttributes read(eUInt16, nullptr, 1, 1, 1, 16, 0);
    EXPECT_EQ(ReadRawFile("no.1.1.such.raw", &read), 5);
    EXPECT_EQ(FirstCaptured(), "");
}

}  // namespace
}  // namespace ZPA
