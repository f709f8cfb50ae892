// The arguments of one call, made from an input: descriptors, and memory of just the size they describe.
#include "support/Scene.h"

#include <cmath>

namespace ZPA::Fuzz {
namespace {

constexpr eTypeCode kTypes[] = {eByte, eUInt16, eInt16, eSByte, eInt32, eUInt32, eSingle, eDouble};
constexpr std::int64_t kMostBytes = 1 << 17;

}  // namespace

std::size_t Scene::SizeOf(eTypeCode type) const {
    // Something to point at, for a type that no operation may look at.
    int const size = SizeOfTypeCode(type);
    return size > 0 ? static_cast<std::size_t>(size) : traits_ & kTakesUnset ? 2 : 1;
}

std::int64_t Scene::Span(ImageAttributes const& image) const {
    std::int64_t const width = image.width, height = image.height;
    std::int64_t const stride = image.stride == 0 && traits_ & kTakesUnset ? width : image.stride;
    std::int64_t span = 0;
    if (width > 0 && height == 1) span = width;
    if (width > 0 && height > 1 && stride >= 0) span = (height - 1) * stride + width;
    return traits_ & kWholeRows && height > 0 && stride > 0 ? std::max(span, height * stride) : span;
}

Scene::Scene(Input& itsInput, unsigned traits) : input(itsInput), traits_(traits) {
    first_.type = input.OneOf(kTypes);
    first_.width = input.Number(1, 70);
    first_.height = input.Number(1, 12);
    firstBuffer_.type = input.OneOf(kTypes);
    firstBuffer_.size = input.Number(0, 70);
}

Scene::~Scene() {
    for (std::size_t i = 0; i < outputs_.size(); ++i)
        if (outputIsMade_[i]) FreePixels(outputs_[i].buffer);
    for (std::size_t i = 0; i < bufferOutputs_.size(); ++i)
        if (bufferIsMade_[i]) FreePixels(bufferOutputs_[i].buffer);
}

int Scene::ElementSize() const { return static_cast<int>(SizeOf(first_.type)); }

void* Scene::Bytes(std::int64_t count, eTypeCode type, std::size_t elementSize, bool mayBeNull) {
    if (mayBeNull && input.Seldom(64)) return nullptr;
    if (count > kMostBytes / static_cast<std::int64_t>(elementSize)) return nullptr;
    std::size_t const size = static_cast<std::size_t>(count) * elementSize;
    blocks_.push_back({std::unique_ptr<void, Free>(std::malloc(size)), size, type});
    Fill(blocks_.back(), type);
    return blocks_.back().memory.get();
}

void Scene::Fill(Block const& block, eTypeCode type) {
    auto* const bytes = static_cast<unsigned char*>(block.memory.get());
    int const style = input.Choice(6);
    std::uint64_t state = input.Byte() * 0x9E3779B97F4A7C15ULL + 1;
    auto const next = [&] {
        state ^= state << 13, state ^= state >> 7, state ^= state << 17;
        return state;
    };
    constexpr double kReals[] = {0, 1, -1, 0.5, 1e300, -1e300, 5e-324, HUGE_VAL, -HUGE_VAL, NAN, 65535.5};
    bool const real = (type == eSingle || type == eDouble) && style != 0 && style != 5;
    auto const fillReals = [&](auto zero) {
        auto* const values = reinterpret_cast<decltype(zero)*>(bytes);
        for (std::size_t i = 0; i < block.size / sizeof zero; ++i) {
            double const small = static_cast<double>(next() % 2000) / 4 - 100;
            values[i] = static_cast<decltype(zero)>(style == 4   ? kReals[next() % 11]
                                                    : style == 1 ? 1
                                                                 : small);
        }
    };
    if (real && type == eSingle) fillReals(0.0F);
    if (real && type == eDouble) fillReals(0.0);
    if (!real) {
        for (std::size_t i = 0; i < block.size; ++i) {
            std::uint64_t const value = next();
            bytes[i] = static_cast<unsigned char>(style == 0   ? 0
                                                  : style == 1 ? 1
                                                  : style == 2 ? value & 1
                                                  : style == 3 ? (value & 7 ? 0 : value >> 8)
                                                  : style == 4 ? (value & 3 ? 0xFF : value >> 8)
                                                               : value >> 8);
        }
    }
    if (traits_ & kDivides)
        for (std::size_t i = 0; i < block.size; ++i) bytes[i] |= 1;
}

void Scene::Describe(ImageAttributes& image) {
    image = first_;
    if (input.Seldom(8)) image.width = input.Number(0, 70);
    if (input.Seldom(8)) image.height = input.Number(0, 12);
    if (input.Seldom(8)) image.type = input.Seldom(8) ? input.Bits<eTypeCode>() : input.OneOf(kTypes);
    constexpr int kPadding[] = {0, 0, 0, 1, 3, 16};
    std::int64_t const stride = std::int64_t{image.width} + input.OneOf(kPadding);
    image.stride =
        input.Seldom(12) ? input.Number(0, 90) : static_cast<int>(std::min<std::int64_t>(stride, INT_MAX));
    image.bitsperpixel = input.Seldom(4) ? input.Number(0, 33) : 8 * static_cast<int>(SizeOf(image.type));
    image.pixelspacing = input.Seldom(16) ? input.Bits<int>() : 1;
}

void* Scene::Pixels(ImageAttributes const& image) {
    std::int64_t const span = Span(image);
    std::size_t const elementSize = SizeOf(image.type);
    // Memory of an earlier image, from any of its elements on.
    if (!(traits_ & kDivides) && !blocks_.empty() && input.Seldom(24)) {
        Block const& block = blocks_[input.Byte() % blocks_.size()];
        std::size_t const offset = input.Byte() % 8 * elementSize;
        if (span > 0 && span < kMostBytes &&
            offset + static_cast<std::size_t>(span) * elementSize <= block.size) {
            repeatable_ = false;
            return static_cast<unsigned char*>(block.memory.get()) + offset;
        }
    }
    return Bytes(span, image.type, elementSize, true);
}

ImageAttributes Scene::Image() {
    ImageAttributes image;
    Describe(image);
    image.buffer = Pixels(image);
    if (blocks_.size() == 1) first_ = image, first_.buffer = nullptr;
    return image;
}

ImageAttributes* Scene::Output() {
    int const choice = input.Choice(8);
    if (choice == 7) return nullptr;
    ImageAttributes image;
    Describe(image);
    bool const isMade = choice >= 5;
    if (!isMade) image.buffer = Pixels(image);
    outputs_.push_back(image);
    outputIsMade_.push_back(!image.buffer);
    return &outputs_.back();
}

ImageAttributes const* Scene::Mask() {
    if (input.Choice(3) == 2) return nullptr;
    ImageAttributes mask;
    Describe(mask);
    if (!input.Seldom(8)) mask.type = eByte;
    mask.buffer = Pixels(mask);
    masks_.push_back(mask);
    return &masks_.back();
}

ImageAttributes Scene::Element() {
    ImageAttributes element(eByte, nullptr, input.Number(1, 9), input.Number(1, 9), 0, 8, 0);
    element.stride = input.Seldom(8) ? input.Number(0, 20) : element.width;
    if (input.Seldom(16)) element.type = input.OneOf(kTypes);
    element.buffer = Pixels(element);
    return element;
}

BufferAttributes Scene::Buffer() {
    BufferAttributes buffer = firstBuffer_;
    if (input.Seldom(8)) buffer.size = input.Number(0, 70);
    if (input.Seldom(8)) buffer.type = input.Seldom(8) ? input.Bits<eTypeCode>() : input.OneOf(kTypes);
    buffer.buffer = Bytes(std::max(buffer.size, 0), buffer.type, SizeOf(buffer.type), true);
    return buffer;
}

BufferAttributes* Scene::BufferOutput() {
    int const choice = input.Choice(8);
    if (choice == 7) return nullptr;
    BufferAttributes buffer(eUInt32, nullptr, input.Number(0, 300));
    if (choice < 2) buffer = firstBuffer_;
    if (choice < 5) buffer.buffer = Bytes(std::max(buffer.size, 0), buffer.type, SizeOf(buffer.type), true);
    bufferOutputs_.push_back(buffer);
    bufferIsMade_.push_back(!buffer.buffer);
    return &bufferOutputs_.back();
}

Rectangle const* Scene::Roi() {
    if (input.Choice(3) == 2) return nullptr;
    int const width = std::clamp(first_.width, 1, 70), height = std::clamp(first_.height, 1, 70);
    roi_.x = input.Number(0, width - 1);
    roi_.y = input.Number(0, height - 1);
    roi_.width = input.Number(1, std::max(width - std::clamp(roi_.x, 0, width - 1), 1));
    roi_.height = input.Number(1, std::max(height - std::clamp(roi_.y, 0, height - 1), 1));
    return &roi_;
}

APOINT const* Scene::Origin() {
    if (input.Choice(3) == 2) return nullptr;
    origin_ = {input.Number(0, 8), input.Number(0, 4)};
    return &origin_;
}

// All that is not a number counts as one: which of its forms comes out, no operation promises.
void Scene::Take(void const* memory, std::size_t size, eTypeCode type) {
    auto const* const bytes = static_cast<unsigned char const*>(memory);
    auto const take = [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) digest_ = (digest_ ^ bytes[i]) * 1099511628211ULL;
    };
    auto const takeNumbers = [&](auto number) {
        for (std::size_t i = 0; i + sizeof number <= size; i += sizeof number) {
            std::memcpy(&number, bytes + i, sizeof number);
            if (number == number) take(i, i + sizeof number);
        }
    };
    if (type == eSingle) return takeNumbers(0.0F);
    if (type == eDouble) return takeNumbers(0.0);
    take(0, size);
}

void Scene::Answer(int code) {
    Take(&code, sizeof code, eInt32);
    for (Block const& block : blocks_) Take(block.memory.get(), block.size, block.type);
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
        ImageAttributes const& made = outputs_[i];
        for (int const field : {made.width, made.height, made.stride, made.bitsperpixel, made.pixelspacing})
            Take(&field, sizeof field, eInt32);
        if (!outputIsMade_[i] || !made.buffer || code != SOLVANE_OK || made.width < 1) continue;
        // No bytes for a type that the operation does not know.
        std::int64_t const elementSize = SizeOfTypeCode(made.type);
        for (std::int64_t y = 0; y < made.height; ++y)
            Take(static_cast<char const*>(made.buffer) + y * made.stride * elementSize,
                 static_cast<std::size_t>(made.width * elementSize), made.type);
    }
    for (std::size_t i = 0; i < bufferOutputs_.size(); ++i) {
        BufferAttributes const& made = bufferOutputs_[i];
        Take(&made.size, sizeof made.size, eInt32);
        if (bufferIsMade_[i] && made.buffer && code == SOLVANE_OK && made.size > 0)
            Take(made.buffer, static_cast<std::size_t>(made.size * SizeOfTypeCode(made.type)), made.type);
    }
}

}  // namespace ZPA::Fuzz
