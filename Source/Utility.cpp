// The readers of raw files, and what they learn from a file's name.
#include <Basics/RawFile.h>

#include <memory>

#include "Source/Internal/Frame.h"
#include "Source/Internal/Memory.h"
#include "Source/Internal/Numbers.h"
#include "Source/Internal/Path.h"
#include "Source/Internal/Text.h"
#include "Source/Platform/File.h"

namespace ZPA {
namespace {

// 0 for types that raw files do not have.
std::size_t ElementSize(eTypeCode type) {
    if (type == eUInt32 || type == eSingle) return 0;
    return static_cast<std::size_t>(SizeOfTypeCode(type));
}

// Whether a file has the length of its rows. A stride of 0 stands for one row as long as the file.
bool HasLength(std::uint64_t length, std::size_t elementSize, std::int64_t height, std::int64_t stride) {
    if (stride == 0) return length == 0 || (height == 1 && elementSize == 1);
    // A negative product becomes one beyond the address space, which no file's length is.
    return length == BlockBytes(static_cast<std::uint64_t>(height * stride), elementSize);
}

// A file's name as its numbers and its extension. A name that is too long has no numbers.
struct RawName {
    explicit RawName(std::string_view path) : RawName(SplitPath(path)) {}
    explicit RawName(PathParts<char> const& parts)
        : fields(parts.stem.size() < kStemLimit && parts.extension.size() < kExtensionLimit ? parts.stem
                                                                                            : ""),
          extension(parts.extension) {
        fields.Next();  // the base name
    }

    DotFields fields;
    std::string_view extension;

private:
    static constexpr std::size_t kStemLimit = 260;
    static constexpr std::size_t kExtensionLimit = 256;
};

}  // namespace

SOLVANE_RETURNCODE ReadRaw(char const* path, void** data, eTypeCode type, int width, int height, int stride,
                           bool countInBytes) {
    if (data) *data = nullptr;
    auto const read = [&] {
        if (!path || !data) return Fail(SOLVANE_NULL_POINTER, L"ReadRaw: Null pointer.");
        std::size_t const elementSize = ElementSize(type);
        if (elementSize == 0)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"ReadRaw: Unsupported eType %d.", static_cast<int>(type));

        std::uint64_t length = 0;
        File const file = OpenForReading(path, length);
        if (!file || !HasLength(length, countInBytes ? 1 : elementSize, height, stride))
            return Fail(SOLVANE_OPERATION_FAILED,
                        L"ReadRaw: File %S does not exist, or does not match requested size.", path);

        std::unique_ptr<unsigned char[]> block(AllocateElements<unsigned char>(length));
        if (!block) return FailMemory(L"ReadRaw", length);
        // Rows of another width than their step never add up to the file.
        bool const packed = stride == 0 || stride == width;
        if (!packed || std::fread(block.get(), 1, static_cast<std::size_t>(length), file.get()) != length)
            return Fail(SOLVANE_OPERATION_FAILED, L"ReadRaw: Unable to read required number of bytes.");
        *data = block.release();
        return SOLVANE_OK;
    };
    return Guarded(L"ZPA::ReadRaw", read, L"ReadRaw: Unexpected exception.");
}

SOLVANE_RETURNCODE ReadRawFile(char const* path, ImageAttributes* attributes) {
    return Guarded(L"ZPA::ReadRawFile", [&] {
        if (!path || !attributes) return Fail(SOLVANE_NULL_POINTER, L"ReadRawFile: Null pointer.");
        RawName name(path);
        int width = 0;
        int height = 0;
        name.fields.Next(width);
        name.fields.Next(height);
        if (width != 0 && height != 0) {
            attributes->width = width;
            attributes->stride = width;
            attributes->height = height;
            if (SameText(name.extension, ".raw")) attributes->type = eUInt16;
            if (SameText(name.extension, ".mask")) attributes->type = eByte;
        }

        void* pixels = nullptr;
        SOLVANE_RETURNCODE const code = ReadRaw(path, &pixels, attributes->type, attributes->width,
                                                attributes->height, attributes->stride, false);
        if (code == SOLVANE_OK) attributes->buffer = pixels;
        return code;
    });
}

SOLVANE_RETURNCODE ReadRawBuffer(char const* path, BufferAttributes* attributes) {
    return Guarded(L"ZPA::ReadRawBuffer", [&] {
        if (!path || !attributes) return Fail(SOLVANE_NULL_POINTER, L"ReadRawBuffer: Null pointer.");
        RawName name(path);
        int length = 0;
        name.fields.Next(length);
        if (length != 0) {
            attributes->size = length;
            if (SameText(name.extension, ".raw")) attributes->type = eUInt16;
        }

        void* elements = nullptr;
        SOLVANE_RETURNCODE const code =
            ReadRaw(path, &elements, attributes->type, attributes->size, 1, attributes->size, true);
        if (code == SOLVANE_OK) attributes->buffer = elements;
        return code;
    });
}

}  // namespace ZPA
