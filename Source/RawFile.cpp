// The writers of raw files and of pictures for the eye.
#include <Basics/RawFile.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <string>
#include <utility>

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

// In the current rounding mode, which is to nearest even unless the caller has changed it. 0 for what has no
// place in a byte, as not-a-number.
unsigned char RoundToByte(double value) {
    // Beside this number a double has no room for a fraction: quicker than a call, where doubles are no
    // wider.
    constexpr double kShift = 6755399441055744.0;
    double const rounded = FLT_EVAL_METHOD == 0 ? (value + kShift) - kShift : std::nearbyint(value);
    return rounded >= 0 && rounded <= 255 ? static_cast<unsigned char>(static_cast<int>(rounded))
                                          : std::uint8_t{0};
}

// Several at a time, since each comparison waits for the one before it. A comparison with not-a-number keeps
// what there was.
template <typename T> std::pair<T, T> MinimumAndMaximum(T const* pixels, std::int64_t count) {
    constexpr int kLanes = 8;
    T low[kLanes], high[kLanes];
    std::fill_n(low, kLanes, pixels[0]);
    std::fill_n(high, kLanes, pixels[0]);
    auto const take = [&](T pixel, int lane) {
        low[lane] = pixel < low[lane] ? pixel : low[lane];
        high[lane] = pixel > high[lane] ? pixel : high[lane];
    };
    std::int64_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        for (int lane = 0; lane < kLanes; ++lane) take(pixels[i + lane], lane);
    for (; i < count; ++i) take(pixels[i], 0);
    return {*std::min_element(low, low + kLanes), *std::max_element(high, high + kLanes)};
}

// Stretches the range of the pixels over that of a byte.
template <typename T> class GreyScale {
public:
    GreyScale(T const* pixels, std::int64_t count) : scale_(0) {
        auto const range = MinimumAndMaximum(pixels, count);
        minimum_ = static_cast<double>(range.first);
        auto const maximum = static_cast<double>(range.second);
        if (maximum != minimum_) scale_ = 255 / (maximum - minimum_);
    }
    unsigned char operator()(T pixel) const {
        return RoundToByte((static_cast<double>(pixel) - minimum_) * scale_);
    }

private:
    double minimum_;
    double scale_;
};

template <typename T> bool WritePixels(T const* pixels, std::int64_t count, std::FILE* file) {
    GreyScale<T> const grey(pixels, count);
    constexpr std::int64_t kChunk = 1 << 14;
    unsigned char bytes[kChunk];
    for (; count > 0; pixels += kChunk, count -= kChunk) {
        auto const size = static_cast<std::size_t>(std::min(count, kChunk));
        std::transform(pixels, pixels + size, bytes, grey);
        if (std::fwrite(bytes, 1, size, file) != size) return false;
    }
    return true;
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
