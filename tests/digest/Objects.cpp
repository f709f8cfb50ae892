// Images and buffers that the library makes: as others are, and from texts.
#include <Basics/Factory.h>
#include <Basics/ImageBuffer.h>
#include <Basics/PixelOperations.h>

#include <memory>

#include "digest/Cases.h"

namespace ZPA::Testing {
namespace {

void AddMade(Digest& digest, ImageAttributes const& made) {
    for (int const each : {int{made.type}, made.width, made.height, made.stride, made.bitsperpixel,
                           made.pixelspacing, SizeOfTypeCode(made.type)})
        digest.Add(each);
    if (made.buffer)
        digest.Add(static_cast<unsigned char const*>(made.buffer),
                   static_cast<std::size_t>(made.height * made.stride * SizeOfTypeCode(made.type)));
}
void AddMade(Digest& digest, BufferAttributes const& made) {
    AddMade(digest, {made.type, made.buffer, made.size, 1, made.size, 0, 0});
}

void Copies(Digest& digest) {
    ForAllSamples(80, [&](auto& source) {
        for (auto const operation : {copyImage, ValidateImageBuffer}) {
            ImageAttributes made;
            digest.Add(int{operation(source.Attributes(12, 3), &made)});
            AddMade(digest, made);
            FreePixels(made.buffer);
        }
        BufferAttributes made;
        digest.Add(int{copyBuffer(BufferOf(source), &made)});
        AddMade(digest, made);
        FreePixels(made.buffer);
    });
}

// Objects make histograms that fit what they hold.
template <typename T> void AddHistogram(Digest& digest, TestImage<T>& pixels) {
    ZPA_Image<T> const image(pixels.Attributes(12), false, false);
    auto const histogram = image.GetHistogram();
    digest.Add(histogram.GetPointer() != nullptr);
    if (histogram.GetPointer())
        digest.Add(histogram->GetBufferPtr(), static_cast<std::size_t>(histogram->GetSize()));
}
void Histograms(Digest& digest) {
    ForAllSamples(29, [&](auto& image) { AddHistogram(digest, image); });
}

void Texts(Digest& digest) {
    for (char const* const name : {"char", "signed char", "BYTE", "unsigned char", "short", "ushort", "int",
                                   "long", "unsigned long", "Float", "double", "long double", "bool", ""})
        digest.Add(int{ParseTypeCode(name)});
    for (char const* const id :
         {"image.6.10.4.5.8", "image.5.3.2.4.7.1", "image.7.3.2", "image..8...3.2.5.12.-9.77.x",
          "image. 14th.+3.2", "image.9.3.2", "image.8.0.2", "image.8.-1.2", "image.99999999999.3.2",
          "buffer.5.3", "buffer.6.3", "buffer.7.3", "buffer.8..3.", "buffer.9.10.11", "buffer.14.9",
          "buffer.13.3", "buffer.9", "Image.8.3.2", ""}) {
        ImageAttributes image;
        BufferAttributes buffer;
        digest.Add(int{ParseImageFactoryString(id, &image)});
        digest.Add(int{ParseBufferFactoryString(id, &buffer)});
        AddMade(digest, image);
        AddMade(digest, buffer);
        ISolvane_Object* made = nullptr;
        digest.Add(int{ZPA_CreateEx(id, &made)});
        for (auto* const each : {made, ZPA_Create(id)}) {
            std::unique_ptr<ISolvane_Object> const object(each);
            ForTypes<char, unsigned char, short, unsigned short, int, double>([&](auto type) {
                using T = typename decltype(type)::type;
                if (auto const* const typed = dynamic_cast<ZPA_Image<T>*>(each))
                    AddMade(digest, ImageAttributes(*typed));
                if (auto const* const typed = dynamic_cast<ZPA_Buffer<T>*>(each))
                    AddMade(digest, BufferAttributes(*typed));
            });
        }
    }
}

}  // namespace

std::vector<Case> ObjectCases() {
    return {{"copyImage, copyBuffer, ValidateImageBuffer", Copies},
            {"ZPA_Image::GetHistogram", Histograms},
            {"ZPA_Create, ParseTypeCode", Texts}};
}

}  // namespace ZPA::Testing
