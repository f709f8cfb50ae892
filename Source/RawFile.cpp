// The writers of raw files and of pictures for the eye.
#include <Basics/RawFile.h>

#include <algorithm>
#include <string>
#include <utility>

#include "primitives/ByteTable.h"
#include "primitives/GreyRow.h"
#include "primitives/StatisticsRow.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Memory.h"
#include "Source/Internal/RawBlock.h"
#include "Source/Internal/Trace.h"
#include "Source/Platform/File.h"

namespace ZPA {
namespace {

// True if the file holds all that was written: what is buffered may fail as late as here.
bool Close(File file) { return std::fclose(file.release()) == 0; }

// What tells images from masks when they are dumped.
struct DumpKind {
    wchar_t const* scope;
    wchar_t const* nullPointer;
    wchar_t const* dumped;
    char const* beforeIndex;
    char const* extension;
    std::size_t elementSize;
};
constexpr DumpKind kImage = {
    L"ZPA::DumpRawImage",  L"DumpRawImage() - NULL input pointer.", L"image dumped to %S", "", ".raw",
    sizeof(unsigned short)};
constexpr DumpKind kMask = {
    L"ZPA::DumpRawMask",  L"DumpRawMask() - NULL input pointer.", L"mask dumped to %S", ".", ".mask",
    sizeof(unsigned char)};

// Pixels that are worked on at a time: a system call is cheap beside them, and the nearer caches hold them.
constexpr std::ptrdiff_t kPart = 1 << 15;

// Bytes of an image without padding.
std::uint64_t PackedBytes(int width, int height, std::size_t elementSize) {
    if (width < 0) return kNoSize;
    return BlockBytes(ElementsSpanned(width, height, width), elementSize);
}

SOLVANE_RETURNCODE Dump(DumpKind const& kind, void const* data, int width, int height, int index,
                        char const* name) {
    return Guarded(kind.scope, [&] {
        if (!data || !name) return Fail(SOLVANE_NULL_POINTER, kind.nullPointer);
        std::string path = name;
        if (index != -1) path += kind.beforeIndex + std::to_string(index);
        path += '.' + std::to_string(width) + '.' + std::to_string(height) + kind.extension;

        SOLVANE_RETURNCODE const code =
            WriteBlock(data, PackedBytes(width, height, kind.elementSize), path.c_str());
        if (code == SOLVANE_OK) Trace(eLogFunction, kind.dumped, path.c_str());
        return code;
    });
}

// Calls work(pixels, count) for one part after the other until it fails, and returns whether none did.
template <typename T, typename Work> bool ForEachPart(T const* pixels, std::int64_t count, Work const& work) {
    for (std::int64_t start = 0; start < count; start += kPart)
        if (!work(pixels + start, static_cast<std::ptrdiff_t>(std::min<std::int64_t>(count - start, kPart))))
            return false;
    return true;
}

// Stretches the range of the pixels over that of a byte.
template <typename T> class GreyScale {
public:
    GreyScale(T const* pixels, std::int64_t count) {
        Statistics<T> range{pixels[0], pixels[0]};
        ForEachPart(pixels, count, [&](T const* part, std::ptrdiff_t size) {
            AddToStatistics(part, nullptr, size, Measure::kRange, range);
            return true;
        });
        black_ = static_cast<double>(range.smallest);
        auto const white = static_cast<double>(range.largest);
        scale_ = white != black_ ? 255 / (white - black_) : 0;
    }
    void operator()(T const* pixels, std::ptrdiff_t count, std::uint8_t* levels) const {
        GreyRow(pixels, count, black_, scale_, levels);
    }

private:
    double black_;
    double scale_;
};

template <typename T> bool WritePixels(T const* pixels, std::int64_t count, std::FILE* file) {
    return WithTable<T>(GreyScale<T>(pixels, count), count, [&](auto const& grey) {
        std::uint8_t levels[kPart];
        return ForEachPart(pixels, count, [&](T const* part, std::ptrdiff_t size) {
            grey(part, size, levels);
            auto const bytes = static_cast<std::size_t>(size);
            return std::fwrite(levels, 1, bytes, file) == bytes;
        });
    });
}

}  // namespace

SOLVANE_RETURNCODE WriteBlock(void const* data, std::uint64_t bytes, char const* path) {
    return Guarded(L"ZPA::dumpRaw", [&] {
        if (!data || !path) return Fail(SOLVANE_NULL_POINTER, L"dumpRaw() - NULL input pointer.");
        if (bytes > PTRDIFF_MAX) return Fail(SOLVANE_OUT_OF_RANGE, L"dumpRaw() - Invalid number of bytes.");

        File file(std::fopen(path, "wb"));
        if (!file) {
            Trace(eLogFunction, L"dumpRaw() - Cannot open %S for writing.", path);
            return SOLVANE_UNEXPECTED;
        }
        auto const size = static_cast<std::size_t>(bytes);
        bool const written = std::fwrite(data, 1, size, file.get()) == size;
        if (!Close(std::move(file)) || !written)
            return Fail(SOLVANE_UNEXPECTED, L"dumpRaw() - Error in writing %S.", path);
        return SOLVANE_OK;
    });
}

SOLVANE_RETURNCODE dumpRaw(void const* data, int bytes, char const* path) {
    return WriteBlock(data, bytes < 0 ? kNoSize : static_cast<std::uint64_t>(bytes), path);
}

SOLVANE_RETURNCODE DumpRawImage(unsigned short const* data, int width, int height, int index,
                                char const* name) {
    return Dump(kImage, data, width, height, index, name);
}

SOLVANE_RETURNCODE DumpRawMask(unsigned char const* data, int width, int height, int index,
                               char const* name) {
    return Dump(kMask, data, width, height, index, name);
}

template <typename T>
SOLVANE_RETURNCODE template_dumpPgm8bit(T const* image, int width, int height, char const* path) {
    auto const dump = [&] {
        if (!image || !path || width < 1 || height < 1) {
            auto const state = [](void const* pointer) { return pointer ? L"OK" : L"NULL"; };
            Trace(eLogFunction, L"template_dumpPgm8bit():  Invalid input. imgPtr=%s, w=%d, h=%d, filePtr=%s.",
                  state(image), width, height, state(path));
            return SOLVANE_INVALID_ARGUMENT;
        }

        File file(std::fopen(path, "wb"));
        if (!file) {
            Trace(eLogFunction, L"template_dumpPgm8bit(): Error opening %S for writing.", path);
            return SOLVANE_UNEXPECTED;
        }
        bool const written = std::fprintf(file.get(), "P5\n%d %d\n255\n", width, height) > 0 &&
                             WritePixels(image, std::int64_t{width} * height, file.get());
        if (!Close(std::move(file)) || !written)
            return Fail(SOLVANE_UNEXPECTED, L"template_dumpPgm8bit(): Error in writing %S.", path);
        return SOLVANE_OK;
    };
    return Guarded(L"ZPA::template_dumpPgm8bit", dump, L"template_dumpPgm8bit(): Unexpected exception.");
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_dumpPgm8bit(unsigned short const*, int, int,
                                                                  char const*);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_dumpPgm8bit(unsigned char const*, int, int,
                                                                  char const*);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_dumpPgm8bit(double const*, int, int, char const*);

SOLVANE_RETURNCODE dumpPgm8bit(unsigned short const* image, int width, int height, char const* path) {
    return Guarded(L"ZPA::dumpPgm8bit", [&] { return template_dumpPgm8bit(image, width, height, path); });
}

SOLVANE_RETURNCODE dumpPgm8bit_uchar(unsigned char const* image, int width, int height, char const* path) {
    return Guarded(L"ZPA::dumpPgm8bit_uchar",
                   [&] { return template_dumpPgm8bit(image, width, height, path); });
}

SOLVANE_RETURNCODE dumpPgm8bit_double(double const* image, int width, int height, char const* path) {
    return Guarded(L"ZPA::dumpPgm8bit_double",
                   [&] { return template_dumpPgm8bit(image, width, height, path); });
}

}  // namespace ZPA
