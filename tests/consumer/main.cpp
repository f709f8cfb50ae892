// A program of somebody who uses the library. The lines between the marks are the sample in README.md.
#include <cstdio>
#include <stdexcept>
#include <string>

// [sample]
#include <Basics/ZPA.h>

#include <vector>

// The mean over 61 by 61 pixels around each pixel of a 16-bit image; empty if an operation refuses.
std::vector<double> Background(unsigned short* pixels, int width, int height) {
    ZPA::ImageAttributes const source(ZPA::eUInt16, pixels, width, height, width, 16, 0);
    ZPA::ImageAttributes wide;  // without pixels: CopyPixels makes them
    wide.type = ZPA::eDouble;
    if (ZPA::CopyPixels(source, &wide) != ZPA::SOLVANE_OK) return {};
    auto* const input = static_cast<double*>(wide.buffer);
    std::vector<double> means(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    auto const code = ZPA::rect_flat_top_filtering_double(input, means.data(), width, height, 61, 61);
    ZPA::FreePixels(wide.buffer);  // they are ours, whatever the filter says
    if (code != ZPA::SOLVANE_OK) means.clear();
    return means;
}
// [sample]

namespace {

std::wstring lastError;
int lastCode = 0;
void KeepError(wchar_t const*, int code, wchar_t const* message) {
    lastCode = code;
    lastError = message;
}

int failures = 0;
void Expect(bool holds, char const* what) {
    if (holds) return;
    ++failures;
    std::printf("failed: %s\n", what);
}

// The class's text, if its exception can be caught by type in another module than it was thrown in.
std::string RefusalOf(int width) {
    try {
        ZPA::ZPA_Image<unsigned short> const image(nullptr, width, 1, 0, 16, 0, true, true);
        return {};
    } catch (std::runtime_error const& refusal) {
        return refusal.what();
    }
}

}  // namespace

int main() {
    ZPA::ZPA_Logging::SetErrorCallback(KeepError);

    constexpr int kWidth = 101, kHeight = 80;
    std::vector<unsigned short> pixels(kWidth * kHeight, 65535);
    Expect(Background(pixels.data(), kWidth, kHeight) == std::vector<double>(kWidth * kHeight, 65535.0),
           "a uniform image is its own background");
    Expect(lastError.empty(), "nothing is logged on success");

    Expect(Background(nullptr, kWidth, kHeight).empty(), "a null image is refused");
    Expect(lastCode == 2 && lastError == L"The source buffer pointer was NULL.",
           "the refusal reaches the callback");

    Expect(RefusalOf(-1) == "ZPA_Image<T>::Initialize()  : Invalid buffer dimensions",
           "exceptions cross modules");
    Expect(RefusalOf(1).empty(), "an image object owns its pixels");

    if (failures == 0)
        std::printf("zpa %d.%d.%d works\n", ZPA_VERSION_MAJOR, ZPA_VERSION_MINOR, ZPA_VERSION_PATCH);
    return failures == 0 ? 0 : 1;
}
