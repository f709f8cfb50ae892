// Calls of image and buffer objects, which wrap, own and reshape elements.
#include <Basics/ImageBuffer.h>

#include <stdexcept>

#include "operations/Operations.h"

namespace ZPA::Fuzz {
namespace {

template <typename Work> int CodeOf(Work const& work) {
    try {
        work();
        return SOLVANE_OK;
    } catch (std::exception const&) {
        return SOLVANE_UNEXPECTED;
    }
}

// Rows may share their memory, so that any number of them is an image.
template <typename T> bool TakesLong(ZPA_Image<T> const& image) {
    return std::int64_t{image.GetWidth()} * image.GetHeight() > 1 << 20;
}

// The whole of what the image says that it has: read, and written.
template <typename T> void Touch(ZPA_Image<T> const& image) {
    ImageAttributes const described = image;
    if (!described.buffer || described.width < 1 || TakesLong(image)) return;  // however many rows of nothing
    auto* const pixels = static_cast<T*>(described.buffer);
    for (std::ptrdiff_t y = 0; y < described.height; ++y)
        for (std::ptrdiff_t x = 0; x < described.width; ++x) pixels[y * described.stride + x] = T(x);
}

template <typename T> void CallImage(Scene& scene) {
    ZPA_Image<T> image;
    int code = 0;
    for (int step = 0; step < 3; ++step) {
        int const width = scene.input.Number(1, 40), height = scene.input.Number(1, 12);
        int const stride = scene.input.Seldom(4) ? scene.input.Number(0, 50) : 0;
        int const bits = scene.input.Seldom(4) ? scene.input.Number(0, 33) : 8;
        bool const clear = scene.input.Choice(2) == 1;
        switch (scene.input.Choice(4)) {
            case 0:
                code += CodeOf([&] { image.SetImage(nullptr, width, height, stride, bits, 1, true, clear); });
                break;
            case 1: {
                // Elements of the scene, which keeps them.
                std::int64_t const rows = std::clamp(height, 1, 100), columns = std::clamp(width, 1, 100);
                auto* const pixels =
                    scene.Elements<T>(rows * std::max<std::int64_t>(columns, std::clamp(stride, 1, 100)));
                code += CodeOf([&] {
                    image.SetImage(pixels, static_cast<int>(columns), static_cast<int>(rows), 0, bits, 1,
                                   false, clear);
                });
                break;
            }
            case 2:
                // For memory that it did not allocate an image takes a shape on trust.
                if (image.IsOwner())
                    code += CodeOf([&] { image.ChangeImageAttributes(width, height, stride, bits, 1); });
                break;
            default:
                if (!TakesLong(image)) (void)image.GetHistogram();
        }
        Touch(image);
    }
    if (!TakesLong(image)) (void)image.GetHistogram();
    scene.Answer(code);
}

template <typename T> void CallBuffer(Scene& scene) {
    ZPA_Buffer<T> buffer;
    int code = 0;
    for (int step = 0; step < 3; ++step) {
        int const size = scene.input.Number(0, 100);
        T* const elements = scene.input.Choice(2) ? scene.Elements<T>(size) : nullptr;
        code += CodeOf([&] { buffer.SetBuffer(elements, size, !elements); });
        BufferAttributes const described = buffer;
        for (int i = 0; described.buffer && i < described.size; ++i)
            static_cast<T*>(described.buffer)[i] = T(i);
    }
    scene.Answer(code);
}

}  // namespace

std::vector<Operation> const& Objects() {
    static std::vector<Operation> const operations = {
        {"ZPA_Image<unsigned char>", CallImage<unsigned char>, kPassesExceptions},
        {"ZPA_Image<unsigned short>", CallImage<unsigned short>, kPassesExceptions},
        {"ZPA_Image<double>", CallImage<double>, kPassesExceptions},
        {"ZPA_Buffer<unsigned char>", CallBuffer<unsigned char>, kPlain},
        {"ZPA_Buffer<double>", CallBuffer<double>, kPlain},
    };
    return operations;
}

}  // namespace ZPA::Fuzz
