// The object factory: what its ids mean, and what it builds of them.
#include <Basics/Factory.h>
#include <Basics/ImageBuffer.h>

#include <memory>

#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Numbers.h"

namespace ZPA {
namespace {

void ReadType(DotFields& fields, eTypeCode& type) {
    int number = type;
    fields.Next(number);
    type = static_cast<eTypeCode>(number);
}

bool BeginsWith(std::string_view text, std::string_view word) { return text.substr(0, word.size()) == word; }

SOLVANE_RETURNCODE CreateImage(char const* factoryId, ISolvane_Object** object) {
    ImageAttributes wanted;
    (void)ParseImageFactoryString(factoryId, &wanted);
    if (wanted.width == 0 || wanted.height == 0)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"image factoryid (%S) is invalid.", factoryId);
    if (wanted.stride == 0) wanted.stride = wanted.width;

    auto const create = [&](auto element) {
        auto image = std::make_unique<ZPA_Image<typename decltype(element)::type>>();
        image->SetImage(wanted, false, true);
        *object = image.release();
        return SOLVANE_OK;
    };
    return Dispatch<char, unsigned char, short, unsigned short, double>(wanted.type, create, [&] {
        return Fail(SOLVANE_INVALID_ARGUMENT, L"Unknown image datatype in factoryid (%S).", factoryId);
    });
}

SOLVANE_RETURNCODE CreateBuffer(char const* factoryId, ISolvane_Object** object) {
    BufferAttributes wanted;
    (void)ParseBufferFactoryString(factoryId, &wanted);
    if (wanted.size == 0)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"buffer factoryid (%S) is invalid.", factoryId);

    auto const create = [&](auto element) {
        auto buffer = std::make_unique<ZPA_Buffer<typename decltype(element)::type>>();
        buffer->SetBuffer(wanted, false);
        *object = buffer.release();
        return SOLVANE_OK;
    };
    return Dispatch<char, unsigned char, short, unsigned short, int, double>(wanted.type, create, [&] {
        return Fail(SOLVANE_INVALID_ARGUMENT, L"Unknown buffer datatype in factoryid (%S).", factoryId);
    });
}

}  // namespace

SOLVANE_RETURNCODE ZPA_CreateEx(char const* factoryId, ISolvane_Object** object) {
    if (object) *object = nullptr;
    auto const create = [&] {
        if (!factoryId || !object) return Fail(SOLVANE_NULL_POINTER, L"Null pointer(s).");
        if (BeginsWith(factoryId, "image.")) return CreateImage(factoryId, object);
        if (BeginsWith(factoryId, "buffer.")) return CreateBuffer(factoryId, object);
        return Fail(SOLVANE_INVALID_ARGUMENT, L"Unknown factoryid (%S).", factoryId);
    };
    return GuardedScope(kUnexpected, create, L"ZPA::ZPA_CreateEx", eLogFactory, L"factoryid=%S, object=%08p",
                        factoryId, static_cast<void const*>(object));
}

ISolvane_Object* ZPA_Create(char const* factoryId) {
    ISolvane_Object* object = nullptr;
    return ZPA_CreateEx(factoryId, &object) == SOLVANE_OK ? object : nullptr;
}

SOLVANE_RETURNCODE ParseImageFactoryString(char const* factoryId, ImageAttributes* attributes) {
    if (!factoryId || !attributes) return SOLVANE_NULL_POINTER;
    DotFields fields(factoryId);
    fields.Next();  // the word
    ReadType(fields, attributes->type);
    fields.Next(attributes->width);
    fields.Next(attributes->height);
    fields.Next(attributes->stride);
    fields.Next(attributes->bitsperpixel);
    fields.Next(attributes->pixelspacing);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ParseBufferFactoryString(char const* factoryId, BufferAttributes* attributes) {
    if (!factoryId || !attributes) return SOLVANE_NULL_POINTER;
    DotFields fields(factoryId);
    fields.Next();  // the word
    ReadType(fields, attributes->type);
    fields.Next(attributes->size);
    return SOLVANE_OK;
}

}  // namespace ZPA
