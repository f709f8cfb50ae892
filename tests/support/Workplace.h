// The arguments of one call of any operation.
#ifndef ZPA_TESTS_SUPPORT_WORKPLACE_H
#define ZPA_TESTS_SUPPORT_WORKPLACE_H

#include <Basics/CoreTypes.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace ZPA::Testing {

// Small images with something to see in them, and room for what operations make.
class Workplace {
public:
    static constexpr int kWidth = 13, kHeight = 11, kPixels = kWidth * kHeight;
    // More than what operations take from the stack.
    static constexpr int kMany = 8192;

    // A folder with a slash at its end for operations that need files; it has the files of WriteFiles.
    explicit Workplace(std::string const& folder);
    ~Workplace();
    Workplace(Workplace const&) = delete;
    Workplace& operator=(Workplace const&) = delete;
    static void WriteFiles(std::string const& folder);

    ImageAttributes Bytes() { return Described(eByte, bytes, 8); }
    ImageAttributes Words() { return Described(eUInt16, words, 16); }
    ImageAttributes Doubles() { return Described(eDouble, doubles, 64); }
    // The memory of the doubles as elements of any type.
    ImageAttributes Of(eTypeCode type) { return Described(type, doubles, 8 * SizeOfTypeCode(type)); }
    template <typename T> T* From() { return static_cast<T*>(static_cast<void*>(doubles)); }
    template <typename T> T* To() { return static_cast<T*>(static_cast<void*>(moreDoubles)); }
    // A square of the same memory.
    static ImageAttributes Square(ImageAttributes image) {
        return {image.type, image.buffer, kHeight, kHeight, kHeight, image.bitsperpixel, 1};
    }
    ImageAttributes Element() { return {eByte, element, 3, 3, 3, 8, 0}; }
    static BufferAttributes Buffer(ImageAttributes const& image) {
        return {image.type, image.buffer, kPixels};
    }

    // Frees what operations made.
    void Clear();
    // Of all that operations write.
    std::uint64_t Digest() const;
    // Which of the arrays have other bytes than those of another place.
    std::vector<bool> Differences(Workplace const& other) const;

    std::string const scan, curve, dump, picture, document, saved;
    unsigned char bytes[kPixels], mask[kPixels], element[9];
    unsigned short words[kPixels];
    float floats[kMany];
    double doubles[kMany], moreDoubles[kPixels];
    int numbers[kPixels];
    char weights[kPixels] = {1, 0, 1};
    ImageAttributes const maskImage = Described(eByte, mask, 8);
    ImageAttributes made;
    BufferAttributes counts;

private:
    struct Array {
        void const* bytes;
        std::size_t size;
    };
    std::vector<Array> Arrays() const;
    static ImageAttributes Described(eTypeCode type, void* pixels, int bits) {
        return {type, pixels, kWidth, kHeight, kWidth, bits, 1};
    }
};

inline std::uint64_t Mixed(std::uint64_t digest, void const* memory, std::size_t size) {
    auto const* const byte = static_cast<unsigned char const*>(memory);
    for (std::size_t i = 0; i < size; ++i) digest = (digest ^ byte[i]) * 1099511628211ULL;
    return digest;
}

inline Workplace::Workplace(std::string const& folder)
    : scan(folder + "scan.4.3.raw"),
      curve(folder + "curve.24.raw"),
      dump(folder + "dump"),
      picture(folder + "dump.pgm"),
      document(folder + "bag.xml"),
      saved(folder + "saved.xml") {
    for (int i = 0; i < kPixels; ++i) {
        bytes[i] = static_cast<unsigned char>(i * 37 % 251);
        mask[i] = static_cast<unsigned char>(i % 5 > 0);
        words[i] = static_cast<unsigned short>(i * 517 % 4096 + 1);
        moreDoubles[i] = i % 17 + 1;
        numbers[i] = i;
    }
    for (int i = 0; i < kMany; ++i) doubles[i] = floats[i] = static_cast<float>(i * 29 % 97 + 1);
    for (unsigned char& each : element) each = 1;
}

inline Workplace::~Workplace() { Clear(); }

inline void Workplace::Clear() {
    FreePixels(made.buffer);
    FreePixels(counts.buffer);
    made = {};
    counts = {};
}

inline void Workplace::WriteFiles(std::string const& folder) {
    for (char const* const name : {"scan.4.3.raw", "curve.24.raw"})
        std::ofstream(folder + name, std::ios::binary) << std::string(24, 'x');
    std::ofstream(folder + "bag.xml")
        << "<Bag><n Type='System.Int32'>1</n><t Type='System.String'>text</t>"
           "<a Type='System.Int16[]'><item>1</item></a>"
           "<s Type='System.Byte[]' Size='120' BufferFile='scan.4.3.raw'/>"
           "<i Type='Bag'><ZPA_Type>ZPA_Image&lt;unsigned "
           "short&gt;</ZPA_Type><Width>4</Width><Height>3</Height>"
           "<BitsPerPixel>16</BitsPerPixel><Buffer BufferFile='scan.4.3.raw'/></i></Bag>";
}

inline std::vector<Workplace::Array> Workplace::Arrays() const {
    return {{bytes, sizeof bytes},
            {mask, sizeof mask},
            {element, sizeof element},
            {words, sizeof words},
            {floats, sizeof floats},
            {doubles, sizeof doubles},
            {moreDoubles, sizeof moreDoubles},
            {numbers, sizeof numbers},
            {weights, sizeof weights}};
}

inline std::vector<bool> Workplace::Differences(Workplace const& other) const {
    std::vector<Array> const own = Arrays(), others = other.Arrays();
    std::vector<bool> differ;
    for (std::size_t i = 0; i < own.size(); ++i)
        differ.push_back(std::memcmp(own[i].bytes, others[i].bytes, own[i].size) != 0);
    return differ;
}

inline std::uint64_t Workplace::Digest() const {
    std::uint64_t digest = 14695981039346656037ULL;
    for (Array const& each : Arrays()) digest = Mixed(digest, each.bytes, each.size);
    if (made.buffer)
        digest = Mixed(digest, made.buffer,
                       static_cast<std::size_t>(made.height * made.stride * SizeOfTypeCode(made.type)));
    if (counts.buffer)
        digest =
            Mixed(digest, counts.buffer, static_cast<std::size_t>(counts.size * SizeOfTypeCode(counts.type)));
    return digest;
}

}  // namespace ZPA::Testing

#endif
