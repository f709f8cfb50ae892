// Raw files: any name with any content, read as images, buffers and blocks, and written.
#include <Basics/RawFile.h>

#include <cstdio>

#include "support/Input.h"
#include "support/Limits.h"
#include "support/ScratchFolder.h"

using namespace ZPA;

namespace {

Fuzz::ScratchFolder& Scratch() {
    static Fuzz::ScratchFolder folder;
    return folder;
}

// Whether every byte can be read; frees the block.
void ReadAndFree(void* block, std::int64_t bytes) {
    unsigned sum = 0;
    for (std::int64_t i = 0; i < bytes; ++i) sum += static_cast<unsigned char const*>(block)[i];
    if (sum == 1) std::fputc(' ', stdout);  // keeps the loop
    FreePixels(block);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::ListenToAll();
    return 0;
}

// A name up to the first zero, the numbers of the descriptors, and the content.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Fuzz::Input input(bytes, size);
    std::string const name = input.TextToZero();
    constexpr eTypeCode kTypes[] = {eByte,  eUInt16, eSByte,  eInt16,
                                    eInt32, eDouble, eSingle, static_cast<eTypeCode>(-1)};
    eTypeCode const type = input.OneOf(kTypes);
    int const width = input.Number(0, 40);
    int const height = input.Number(0, 20);
    int const stride = input.Seldom(3) ? input.Number(0, 40) : width;
    int const options = input.Byte();
    Fuzz::SwitchLog(options & 1);
    bool const countInBytes = options & 2;
    std::string const content = input.Rest();
    if (name.empty() || name.find('/') != name.npos || name == "." || name == "..") return -1;
    if (!Scratch().Write(name, content)) return -1;
    std::string const path = Scratch().Path(name);

    {
        Fuzz::LimitedMemory const little(1 << 20, options & 4 ? options >> 3 & 3 : -1);
        void* block = nullptr;
        if (ReadRaw(path.c_str(), &block, type, width, height, stride, countInBytes) == SOLVANE_OK)
            ReadAndFree(block, static_cast<std::int64_t>(content.size()));
        else if (block)
            std::abort();

        ImageAttributes image(type, nullptr, width, height, stride, 8, 1);
        if (ReadRawFile(path.c_str(), &image) == SOLVANE_OK)
            ReadAndFree(image.buffer, std::int64_t{image.height} * image.stride * SizeOfTypeCode(image.type));
        BufferAttributes buffer(type, nullptr, width);
        if (ReadRawBuffer(path.c_str(), &buffer) == SOLVANE_OK) ReadAndFree(buffer.buffer, buffer.size);
    }

    // What is written has as many elements as a block of the content's size holds.
    void* const block = std::malloc(content.size());
    std::memcpy(block, content.data(), content.size());
    auto const elements = [&](std::size_t elementSize) {
        return static_cast<std::int64_t>(content.size() / elementSize) >= std::int64_t{width} * height;
    };
    bool const sane = width >= 0 && height >= 0;
    if (!sane || elements(2))
        (void)DumpRawImage(static_cast<unsigned short*>(block), width, height, options - 1, path.c_str());
    if (!sane || elements(1))
        (void)DumpRawMask(static_cast<unsigned char*>(block), width, height, options - 1, path.c_str());
    if (!sane || elements(2))
        (void)dumpPgm8bit(static_cast<unsigned short*>(block), width, height, path.c_str());
    if (!sane || elements(1))
        (void)dumpPgm8bit_uchar(static_cast<unsigned char*>(block), width, height, path.c_str());
    if (!sane || elements(8))
        (void)dumpPgm8bit_double(static_cast<double*>(block), width, height, path.c_str());
    (void)dumpRaw(block, stride < 0 ? stride : static_cast<int>(content.size()), path.c_str());
    std::free(block);
    Scratch().Clear();
    return 0;
}
