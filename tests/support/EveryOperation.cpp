// A call of every operation that succeeds, for tests of what becomes of it when something fails around it.
#include "support/EveryOperation.h"

#include <Basics/ZPA.h>

#include <fstream>
#include <numeric>
#include <stdexcept>

namespace ZPA::Testing {
namespace {

std::uint64_t Mixed(std::uint64_t digest, void const* memory, std::size_t size) {
    auto const* const byte = static_cast<unsigned char const*>(memory);
    for (std::size_t i = 0; i < size; ++i) digest = (digest ^ byte[i]) * 1099511628211ULL;
    return digest;
}

// Row pointers from index 1 on, to rows that begin at index 1.
template <typename T, int rows, int columns> struct OffsetMatrix {
    explicit OffsetMatrix(T* elements) : pointers() {
        for (int i = 0; i < rows; ++i) pointers[i + 1] = elements + i * columns - 1;
    }
    operator T**() { return pointers; }
    T* pointers[rows + 1];
};

// The document whole, in part, or not at all.
int Load(Workplace& w) {
    try {
        auto const keys = ZPA_BagIO().LoadBag(w.document)->Key().size();
        return keys == 5 ? SOLVANE_OK : keys > 0 ? SOLVANE_OPERATION_FAILED : kWithoutDocument;
    } catch (std::bad_alloc const&) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

int Save(Workplace& w) {
    try {
        ZPA_Ptr<Bag> const bag(new Bag), inner(new Bag);
        ZPA_Ptr<unsigned short> const array(new unsigned short[120]());
        ZPA_Ptr<ZPA_Image<unsigned char>> const image(
            new ZPA_Image<unsigned char>(w.bytes, Workplace::kWidth, 2, 0, 8, 0, false, false));
        bag->Set("number", 1.5);
        bag->Set("text", "text");
        inner->Set("array", array, 120);
        bag->Set("inner", inner);
        bag->Set("image", image);
        return ZPA_BagIO().SaveBag(bag, w.saved) ? SOLVANE_OK : SOLVANE_OPERATION_FAILED;
    } catch (std::exception const&) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

int UseBags(Workplace&) {
    try {
        ZPA_Ptr<Bag> bag(new Bag), more(new Bag);
        for (int i = 0; i < 140; ++i) bag->Set("key" + std::to_string(i), i);
        more->Set("key1", 1.5);
        more->Set("inner", ZPA_Ptr<Bag>(new Bag));
        BagAddition(bag, more);
        bag->Rename("key3", "key");
        bag->Remove("key4");
        ZPA_Ptr<Bag> const clone = BagClone(bag);
        return BagQuery(bag, {"key"})->Key().size() + clone->Key().size() == 141 ? SOLVANE_OK
                                                                                 : SOLVANE_OPERATION_FAILED;
    } catch (std::bad_alloc const&) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

int Create(char const* id) {
    ISolvane_Object* object = nullptr;
    int const code = ZPA_CreateEx(id, &object);
    delete object;
    return code;
}

}  // namespace

Workplace::Workplace(std::string const& folder)
    : scan(folder + "scan.4.3.raw"),
      dump(folder + "dump"),
      picture(folder + "dump.pgm"),
      document(folder + "bag.xml"),
      saved(folder + "saved.xml") {
    for (int i = 0; i < kPixels; ++i) {
        bytes[i] = static_cast<unsigned char>(i * 37 % 251);
        mask[i] = static_cast<unsigned char>(i % 5 > 0);
        words[i] = static_cast<unsigned short>(i * 517 % 4096 + 1);
        moreWords[i] = static_cast<unsigned short>(i + 1);
        moreDoubles[i] = i % 17 + 1;
        numbers[i] = i;
    }
    for (int i = 0; i < 4 * kPixels; ++i) doubles[i] = floats[i] = static_cast<float>(i * 29 % 97 + 1);
    for (unsigned char& each : element) each = 1;
}

Workplace::~Workplace() { Clear(); }

void Workplace::Clear() {
    FreePixels(made.buffer);
    FreePixels(counts.buffer);
    made = {};
    counts = {};
}

void Workplace::WriteFiles(std::string const& folder) {
    std::ofstream(folder + "scan.4.3.raw", std::ios::binary) << std::string(24, 'x');
    std::ofstream(folder + "bag.xml")
        << "<Bag><n Type='System.Int32'>1</n><t Type='System.String'>text</t>"
           "<a Type='System.Int16[]'><item>1</item></a>"
           "<s Type='System.Byte[]' Size='120' BufferFile='scan.4.3.raw'/>"
           "<i Type='Bag'><ZPA_Type>ZPA_Image&lt;unsigned "
           "short&gt;</ZPA_Type><Width>4</Width><Height>3</Height>"
           "<BitsPerPixel>16</BitsPerPixel><Buffer BufferFile='scan.4.3.raw'/></i></Bag>";
}

std::uint64_t Workplace::Digest() const {
    std::uint64_t digest = 14695981039346656037ULL;
    digest = Mixed(digest, bytes, sizeof bytes);
    digest = Mixed(digest, words, sizeof words);
    digest = Mixed(digest, moreWords, sizeof moreWords);
    digest = Mixed(digest, floats, sizeof floats);
    digest = Mixed(digest, doubles, sizeof doubles);
    digest = Mixed(digest, moreDoubles, sizeof moreDoubles);
    digest = Mixed(digest, numbers, sizeof numbers);
    if (made.buffer)
        digest = Mixed(digest, made.buffer,
                       static_cast<std::size_t>(made.height * made.stride * SizeOfTypeCode(made.type)));
    if (counts.buffer)
        digest =
            Mixed(digest, counts.buffer, static_cast<std::size_t>(counts.size * SizeOfTypeCode(counts.type)));
    return digest;
}

std::vector<OperationCall> const& EveryOperation() {
    using W = Workplace;
    constexpr int w = W::kWidth, h = W::kHeight;
    static std::vector<OperationCall> const calls = {
        {"ValidateImageBuffer", [](W& p) -> int { return ValidateImageBuffer(p.Words(), &p.made); }, {1}},
        {"CopyPixels", [](W& p) -> int { return CopyPixels(p.Words(), &p.made); }, {999}},
        {"SetPixels", [](W& p) -> int { return SetPixels(nullptr, nullptr, nullptr, -1, 3, p.Words()); }, {}},
        {"copyImage", [](W& p) -> int { return copyImage(p.Words(), &p.made); }, {1}},
        {"copyBuffer", [](W& p) -> int { return copyBuffer(W::Buffer(eUInt16, p.words), &p.counts); }, {1}},
        {"ApplyMask", [](W& p) -> int { return ApplyMask(p.Words(), p.Mask()); }, {}},
        {"compare", [](W& p) -> int { return compare(p.Words(), p.Words()); }, {}},
        {"DecimateAndCompare",
         [](W& p) -> int {
             bool equal = false;
             return DecimateAndCompare(p.Words(), p.Words(), nullptr, nullptr, nullptr, 2, 2, 1, &equal);
         },
         {}},
        {"Add", [](W& p) -> int { return Add(p.Words(), p.Words(), &p.made); }, {5}},
        {"Sub", [](W& p) -> int { return Sub(p.Words(), p.Words(), &p.made); }, {5}},
        {"MulP", [](W& p) -> int { return MulP(p.Words(), p.Words(), &p.made); }, {5}},
        {"DivP", [](W& p) -> int { return DivP(p.Words(), p.Words(), &p.made); }, {5}},
        {"Mul",
         [](W& p) -> int {
             ImageAttributes right = p.Doubles();
             right.width = right.stride = h;
             right.height = w;
             return Mul(p.Doubles(), right, &p.made);
         },
         {1, 5}},
        {"AddC", [](W& p) -> int { return AddC(p.Words(), p.moreWords, &p.made); }, {5}},
        {"DivC", [](W& p) -> int { return DivC(p.Words(), p.moreWords, &p.made); }, {5}},
        {"Abs", [](W& p) -> int { return Abs(p.Doubles(), &p.made); }, {5}},
        {"LogicalPixelOp",
         [](W& p) -> int {
             unsigned char table[] = {0, 1, 1, 0};
             return LogicalPixelOp(p.Words(), p.Bytes(), table, &p.made);
         },
         {999}},
        {"CalculateImageStats",
         [](W& p) -> int {
             ImageAttributes const mask = p.Mask();
             return CalculateImageStats(p.Words(), nullptr, &mask, nullptr, p.doubles, p.doubles + 1,
                                        p.doubles + 2, p.doubles + 3);
         },
         {}},
        {"RowCountOfN",
         [](W& p) -> int { return RowCountOfN(p.Bytes(), nullptr, nullptr, nullptr, 3, &p.counts, nullptr); },
         {999}},
        {"ColumnCountOfN",
         [](W& p) -> int {
             return ColumnCountOfN(p.Bytes(), nullptr, nullptr, nullptr, 3, nullptr, &p.counts);
         },
         {999}},
        {"NormalizeImage",
         [](W& p) -> int {
             ImageAttributes output = p.Doubles();
             return NormalizeImage(p.Doubles(), nullptr, nullptr, nullptr, &output);
         },
         {}},
        {"InvertGray",
         [](W& p) -> int {
             ImageAttributes output = p.Words();
             return InvertGray(p.Words(), nullptr, nullptr, nullptr, &output);
         },
         {}},
        {"GetIntegerHistogram",
         [](W& p) -> int {
             return GetIntegerHistogram(p.Bytes(), nullptr, nullptr, nullptr, nullptr, nullptr, &p.counts);
         },
         {5, 999}},
        {"GetRealHistogram",
         [](W& p) -> int {
             return GetRealHistogram(p.Doubles(), nullptr, nullptr, nullptr, 9, 0, 99, &p.counts);
         },
         {999}},
        {"smoothHistogram",
         [](W& p) -> int { return smoothHistogram(p.floats, W::kPixels, 2, 2); },
         {1, 999}},
        {"rectFlatTopFilter",
         [](W& p) -> int { return rectFlatTopFilter(p.words, p.moreWords, w, h, 3, 5); },
         {1}},
        {"rect_flat_top_filtering_double",
         [](W& p) -> int { return rect_flat_top_filtering_double(p.doubles, p.moreDoubles, w, h, 3, 5); },
         {1}},
        {"rectFlatTopFilteringWithMask_ushort",
         [](W& p) -> int {
             char weights[W::kPixels] = {1, 0, 1};
             return rectFlatTopFilteringWithMask_ushort(p.words, p.moreWords, weights, w, h, 3, 3);
         },
         {1}},
        {"blockAverageDownSample_ushort",
         [](W& p) -> int {
             return blockAverageDownSample_ushort(p.words, p.moreWords, w, h, w / 2, h / 2, 2);
         },
         {}},
        {"subsample",
         [](W& p) -> int {
             ImageAttributes const source = p.Words();
             return subsample(&source, &p.made, 2, 0, 1);
         },
         {1}},
        {"AnisotropicGaussian",
         [](W& p) -> int { return AnisotropicGaussian(p.Words(), &p.made, 3, 2, 30, 1, 1); },
         {999}},
        {"HomoFilter", [](W& p) -> int { return HomoFilter(p.Words(), 3, &p.made); }, {999}},
        {"Filter2D an image of integers",
         [](W& p) -> int {
             int weights[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1}, divisor = 16;
             return Filter2D(p.Words(), nullptr, &p.made, nullptr, {eInt32, weights, 3, 3, 3, 32, 0},
                             &divisor);
         },
         {1, 5, 999}},
        {"Filter2D a real image",
         [](W& p) -> int {
             return Filter2D(p.Doubles(), nullptr, &p.made, nullptr, {eDouble, p.moreDoubles, 5, 5, 5, 64, 0},
                             nullptr);
         },
         {1, 5, 999}},
        {"FilterBufferSimple",
         [](W& p) -> int {
             return FilterBufferSimple(W::Buffer(eUInt16, p.words), {eSingle, p.floats, 3}, &p.counts);
         },
         {1, 999}},
        {"fspecial", [](W& p) -> int { return fspecial(p.Doubles(), "gaussian", 2); }, {}},
        {"TransposeImage",
         [](W& p) -> int {
             ImageAttributes to(eUInt16, p.moreWords, h, w, h, 16, 0);
             return TransposeImage(p.Words(), &to);
         },
         {}},
        {"strel",
         [](W& p) -> int {
             double center[2];
             double const angle = 0;
             ImageAttributes const mask(eByte, p.bytes, 7, 1, 7, 8, 0);
             return strel(mask, center, "line", 5, &angle, 0);
         },
         {999}},
        {"Dilate", [](W& p) -> int { return Dilate(p.Words(), &p.made, p.Element(), 1, 1); }, {1, 5}},
        {"ImOpen", [](W& p) -> int { return ImOpen(p.Bytes(), &p.made, p.Element(), 1, 1); }, {1, 5}},
        {"Erode3x3", [](W& p) -> int { return Erode3x3(p.Words(), nullptr, 2); }, {1, 5}},
        {"FloodFill", [](W& p) -> int { return FloodFill(p.Bytes(), 2, 2, 9, 4); }, {1, 5}},
        {"FillHoles", [](W& p) -> int { return FillHoles(p.Mask(), 4); }, {5}},
        {"LabelMarkers", [](W& p) -> int { return LabelMarkers(p.Mask(), 8, p.numbers); }, {1, 5}},
        {"LabelMarkers2",
         [](W& p) -> int { return LabelMarkers2(p.Mask(), 4, p.numbers, &p.made); },
         {0, 999}},
        {"alloc_vector",
         [](W&) -> int {
             float* const v = alloc_vector(1, 9);
             delete_vector(v, 1);
             return v ? 0 : 1;
         },
         {1}},
        {"ludcmp",
         [](W& p) -> int {
             double sign = 0;
             ludcmp(p.doubles, 9, p.numbers, &sign);
             return sign == 0;
         },
         {1}},
        {"svdcmp",
         [](W& p) -> int {
             OffsetMatrix<float, 5, 3> a(p.floats);
             OffsetMatrix<float, 3, 3> v(p.floats + 50);
             return svdcmp(a, 5, 3, p.floats + 99, v);
         },
         {1, 5}},
        {"dsvdcmp_DBL",
         [](W& p) -> int {
             OffsetMatrix<double, 5, 3> a(p.doubles);
             OffsetMatrix<double, 3, 3> v(p.doubles + 50);
             return dsvdcmp_DBL(a, 5, 3, p.doubles + 99, v);
         },
         {999}},
        {"realFFT_DBL", [](W& p) -> int { return realFFT_DBL(p.doubles, 256, 1), 0; }, {0}},
        {"correl_DBL",
         [](W& p) -> int { return correl_DBL(p.doubles, p.doubles + 128, 128, p.moreDoubles), 0; },
         {0}},
        {"ZPA_Create an image", [](W&) -> int { return Create("image.8.5.4.0.12.0"); }, {999}},
        {"ZPA_Create a buffer", [](W&) -> int { return Create("buffer.14.9"); }, {999}},
        {"GetHistogram",
         [](W& p) -> int {
             try {
                 ZPA_Image<unsigned char> const image(p.bytes, w, h, w, 8, 0, false, false);
                 auto const histogram = image.GetHistogram();
                 if (!histogram.GetPointer() || !histogram->GetBufferPtr()) return 999;
                 return static_cast<int>(
                            std::accumulate(histogram->GetBufferPtr(), histogram->GetBufferPtr() + 256, 0u)) -
                        W::kPixels;
             } catch (std::runtime_error const&) {  // of a callback
                 return 999;
             }
         },
         {0, 999}},
        {"ReadRawFile", [](W& p) -> int { return ReadRawFile(p.scan.c_str(), &p.made); }, {1, 999}},
        {"DumpRawImage", [](W& p) -> int { return DumpRawImage(p.words, w, h, 3, p.dump.c_str()); }, {999}},
        {"dumpPgm8bit", [](W& p) -> int { return dumpPgm8bit(p.words, w, h, p.picture.c_str()); }, {999}},
        {"LoadBag", Load, {0, 1, 5, kWithoutDocument}},
        {"SaveBag", Save, {0, 1, 5}},
        {"Bag", UseBags, {0, 1}},
    };
    return calls;
}

}  // namespace ZPA::Testing
