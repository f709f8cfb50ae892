// The arguments of one call, made from an input: descriptors, and memory of just the size they describe.
#ifndef ZPA_FUZZ_SUPPORT_SCENE_H
#define ZPA_FUZZ_SUPPORT_SCENE_H

#include <Basics/CoreTypes.h>

#include <cstdlib>
#include <deque>
#include <memory>
#include <vector>

#include "support/Input.h"

namespace ZPA::Fuzz {

// What sets an operation apart from the others.
enum Trait : unsigned {
    kPlain = 0,
    kWholeRows = 1,          // images are blocks of stride * height elements: the last row has its padding
    kDivides = 2,            // no element may be zero
    kOneInstructionSet = 4,  // results depend on it
    kPassesExceptions = 8,   // those of callbacks
    kTakesUnset = 16,        // a stride of 0 is the width, and elements without a type have 16 bits
};

// Memory that no operator new has a part in: allocations that fail are the library's alone.
template <typename T> struct OwnMemory {
    using value_type = T;
    OwnMemory() = default;
    template <typename U> OwnMemory(OwnMemory<U> const&) {}
    T* allocate(std::size_t count) { return static_cast<T*>(std::malloc(count * sizeof(T))); }
    void deallocate(T* block, std::size_t) { std::free(block); }
    template <typename U> bool operator==(OwnMemory<U> const&) const { return true; }
    template <typename U> bool operator!=(OwnMemory<U> const&) const { return false; }
};

// Elements in memory of their own, beyond whose ends the sanitizer sees every byte. Pointers into it stay valid
// as long as the scene, which releases all that operations have made, too.
class Scene {
public:
    template <typename T> using List = std::vector<T, OwnMemory<T>>;
    template <typename T> using Fixed = std::deque<T, OwnMemory<T>>;  // whose elements do not move

    Scene(Input& itsInput, unsigned traits);
    ~Scene();
    Scene(Scene const&) = delete;
    Scene& operator=(Scene const&) = delete;

    Input& input;

    // An image, of the size and type of the first one as a rule. Where its description makes no sense, or asks
    // for more than a few pages, there is no memory behind it.
    ImageAttributes Image();
    // Null, a descriptor without pixels, or an image.
    ImageAttributes* Output();
    // Null, or an image that is a mask as a rule.
    ImageAttributes const* Mask();
    // A structuring element.
    ImageAttributes Element();
    BufferAttributes Buffer();
    BufferAttributes* BufferOutput();
    Rectangle const* Roi();
    APOINT const* Origin();

    // Elements in memory of that size; null once in a while. None for a count that makes no sense.
    template <typename T> T* Elements(std::int64_t count) {
        return static_cast<T*>(Bytes(count < 0 ? 0 : count, TypeOf<T>(), sizeof(T), true));
    }
    // The same, but never null.
    template <typename T> T* Needed(std::int64_t count) {
        return static_cast<T*>(Bytes(count < 0 ? 0 : count, TypeOf<T>(), sizeof(T), false));
    }
    // A value that an argument points to; null once in a while.
    template <typename T> T* Value(T value) {
        auto* const at = static_cast<T*>(Bytes(1, TypeOf<T>(), sizeof(T), true));
        if (at) *at = value;
        return at;
    }
    // The elements that an image describes, from the first pixel to the last one.
    std::int64_t Span(ImageAttributes const& image) const;
    // The size of the first image's elements, 1 if it has none.
    int ElementSize() const;

    // The answer of the operation; releases what it has made.
    void Answer(int code);
    // What the operation has left behind: its answer, and all memory that it could write.
    std::uint64_t Digest() const { return digest_; }
    // Whether another run must leave the same behind.
    bool IsRepeatable() const { return repeatable_; }

private:
    struct Free {
        void operator()(void* block) const { std::free(block); }
    };
    struct Block {
        std::unique_ptr<void, Free> memory;
        std::size_t size;
        eTypeCode type;
    };

    template <typename T> static eTypeCode TypeOf() {
        if (std::is_same_v<T, float>) return eSingle;
        if (std::is_same_v<T, double>) return eDouble;
        return eUnknown;
    }
    std::size_t SizeOf(eTypeCode type) const;
    void* Bytes(std::int64_t count, eTypeCode type, std::size_t elementSize, bool mayBeNull);
    void Fill(Block const& block, eTypeCode type);
    void Describe(ImageAttributes& image);
    void* Pixels(ImageAttributes const& image);
    void Take(void const* memory, std::size_t size, eTypeCode type);

    unsigned traits_;
    ImageAttributes first_;
    BufferAttributes firstBuffer_;
    List<Block> blocks_;
    Fixed<ImageAttributes> outputs_, masks_;
    Fixed<BufferAttributes> bufferOutputs_;
    Rectangle roi_;
    APOINT origin_;
    List<bool> outputIsMade_, bufferIsMade_;
    std::uint64_t digest_ = 14695981039346656037ULL;
    bool repeatable_ = true;
};

}  // namespace ZPA::Fuzz

#endif
