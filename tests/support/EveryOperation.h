// A call of every operation that succeeds, for tests of what becomes of it when something fails around it.
#ifndef ZPA_TESTS_SUPPORT_EVERYOPERATION_H
#define ZPA_TESTS_SUPPORT_EVERYOPERATION_H

#include <Basics/CoreTypes.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace ZPA::Testing {

// The arguments of one call: small images with something to see in them, and room for what operations make.
class Workplace {
public:
    static constexpr int kWidth = 13, kHeight = 11, kPixels = kWidth * kHeight;

    // A folder with a slash at its end for operations that need files; it has the files of WriteFiles.
    explicit Workplace(std::string const& folder);
    ~Workplace();
    Workplace(Workplace const&) = delete;
    Workplace& operator=(Workplace const&) = delete;
    static void WriteFiles(std::string const& folder);

    ImageAttributes Bytes() { return Described(eByte, bytes, 8); }
    ImageAttributes Mask() { return Described(eByte, mask, 8); }
    ImageAttributes Words() { return Described(eUInt16, words, 16); }
    ImageAttributes Doubles() { return Described(eDouble, doubles, 64); }
    ImageAttributes Element() { return {eByte, element, 3, 3, 3, 8, 0}; }
    static BufferAttributes Buffer(eTypeCode type, void* elements) { return {type, elements, kPixels}; }

    // Frees what operations made.
    void Clear();
    // Of all that operations write.
    std::uint64_t Digest() const;

    std::string const scan, dump, picture, document, saved;
    unsigned char bytes[kPixels], mask[kPixels], element[9];
    unsigned short words[kPixels], moreWords[kPixels];
    float floats[4 * kPixels];
    double doubles[4 * kPixels], moreDoubles[kPixels];
    int numbers[kPixels];
    ImageAttributes made;
    BufferAttributes counts;

private:
    static ImageAttributes Described(eTypeCode type, void* pixels, int bits) {
        return {type, pixels, kWidth, kHeight, kWidth, bits, 1};
    }
};

// What loading returns if nothing of the document could be read.
inline constexpr int kWithoutDocument = -1;

struct OperationCall {
    char const* name;
    // What the call returns if one of its allocations fails; 0 among them if it knows another way.
    std::vector<int> withoutMemory;
    std::function<int(Workplace&)> call;
};
std::vector<OperationCall> const& EveryOperation();

}  // namespace ZPA::Testing

#endif
