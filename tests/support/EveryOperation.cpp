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

namespace {

std::vector<OperationCall> MakeCalls() {
    using W = Workplace;
    constexpr int w = W::kWidth, h = W::kHeight;
    std::vector<OperationCall> calls;
    auto const add = [&](char const* name, std::vector<int> const& withoutMemory,
                         std::function<int(W&)> const& call) {
        calls.push_back({name, withoutMemory, call});
    };
    add("ValidateImageBuffer", {1}, [](W& p) { return ValidateImageBuffer(p.Words(), &p.made); });
    add("CopyPixels", {999}, [](W& p) { return CopyPixels(p.Words(), &p.made); });
    add("SetPixels", {}, [](W& p) { return SetPixels(nullptr, nullptr, nullptr, -1, 3, p.Words()); });
    add("copyImage", {1}, [](W& p) { return copyImage(p.Words(), &p.made); });
    add("copyBuffer", {1}, [](W& p) { return copyBuffer(W::Buffer(eUInt16, p.words), &p.counts); });
    add("ApplyMask", {}, [](W& p) { return ApplyMask(p.Words(), p.Mask()); });
    add("compare", {}, [](W& p) { return compare(p.Words(), p.Words()); });
    add("DecimateAndCompare", {}, [](W& p) {
        bool equal = false;
        return DecimateAndCompare(p.Words(), p.Words(), nullptr, nullptr, nullptr, 2, 2, 1, &equal);
    });
    add("Add", {5}, [](W& p) { return Add(p.Words(), p.Words(), &p.made); });
    add("Sub", {5}, [](W& p) { return Sub(p.Words(), p.Words(), &p.made); });
    add("MulP", {5}, [](W& p) { return MulP(p.Words(), p.Words(), &p.made); });
    add("DivP", {5}, [](W& p) { return DivP(p.Words(), p.Words(), &p.made); });
    add("Mul", {1, 5}, [](W& p) {
        ImageAttributes right = p.Doubles();
        right.width = right.stride = h;
        right.height = w;
        return Mul(p.Doubles(), right, &p.made);
    });
    add("AddC", {5}, [](W& p) { return AddC(p.Words(), p.moreWords, &p.made); });
    add("DivC", {5}, [](W& p) { return DivC(p.Words(), p.moreWords, &p.made); });
    add("Abs", {5}, [](W& p) { return Abs(p.Doubles(), &p.made); });
    add("LogicalPixelOp", {999}, [](W& p) {
        unsigned char table[] = {0, 1, 1, 0};
        return LogicalPixelOp(p.Words(), p.Bytes(), table, &p.made);
    });
    add("CalculateImageStats", {}, [](W& p) {
        ImageAttributes const mask = p.Mask();
        return CalculateImageStats(p.Words(), nullptr, &mask, nullptr, p.doubles, p.doubles + 1,
                                   p.doubles + 2, p.doubles + 3);
    });
    add("RowCountOfN", {999},
        [](W& p) { return RowCountOfN(p.Bytes(), nullptr, nullptr, nullptr, 3, &p.counts, nullptr); });
    add("ColumnCountOfN", {999},
        [](W& p) { return ColumnCountOfN(p.Bytes(), nullptr, nullptr, nullptr, 3, nullptr, &p.counts); });
    add("NormalizeImage", {}, [](W& p) {
        ImageAttributes output = p.Doubles();
        return NormalizeImage(p.Doubles(), nullptr, nullptr, nullptr, &output);
    });
    add("InvertGray", {}, [](W& p) {
        ImageAttributes output = p.Words();
        return InvertGray(p.Words(), nullptr, nullptr, nullptr, &output);
    });
    add("GetIntegerHistogram", {5, 999}, [](W& p) {
        return GetIntegerHistogram(p.Bytes(), nullptr, nullptr, nullptr, nullptr, nullptr, &p.counts);
    });
    add("GetRealHistogram", {999},
        [](W& p) { return GetRealHistogram(p.Doubles(), nullptr, nullptr, nullptr, 9, 0, 99, &p.counts); });
    add("smoothHistogram", {1, 999}, [](W& p) { return smoothHistogram(p.floats, W::kPixels, 2, 2); });
    add("rectFlatTopFilter", {1}, [](W& p) { return rectFlatTopFilter(p.words, p.moreWords, w, h, 3, 5); });
    add("rect_flat_top_filtering_double", {1},
        [](W& p) { return rect_flat_top_filtering_double(p.doubles, p.moreDoubles, w, h, 3, 5); });
    add("rectFlatTopFilteringWithMask_ushort", {1}, [](W& p) {
        char weights[W::kPixels] = {1, 0, 1};
        return rectFlatTopFilteringWithMask_ushort(p.words, p.moreWords, weights, w, h, 3, 3);
    });
    add("blockAverageDownSample_ushort", {},
        [](W& p) { return blockAverageDownSample_ushort(p.words, p.moreWords, w, h, w / 2, h / 2, 2); });
    add("subsample", {1}, [](W& p) {
        ImageAttributes const source = p.Words();
        return subsample(&source, &p.made, 2, 0, 1);
    });
    add("AnisotropicGaussian", {999},
        [](W& p) { return AnisotropicGaussian(p.Words(), &p.made, 3, 2, 30, 1, 1); });
    add("HomoFilter", {999}, [](W& p) { return HomoFilter(p.Words(), 3, &p.made); });
    add("Filter2D an image of integers", {1, 5, 999}, [](W& p) {
        int weights[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1}, divisor = 16;
        return Filter2D(p.Words(), nullptr, &p.made, nullptr, {eInt32, weights, 3, 3, 3, 32, 0}, &divisor);
    });
    add("Filter2D a real image", {1, 5, 999}, [](W& p) {
        return Filter2D(p.Doubles(), nullptr, &p.made, nullptr, {eDouble, p.moreDoubles, 5, 5, 5, 64, 0},
                        nullptr);
    });
    add("FilterBufferSimple", {1, 999}, [](W& p) {
        return FilterBufferSimple(W::Buffer(eUInt16, p.words), {eSingle, p.floats, 3}, &p.counts);
    });
    add("fspecial", {}, [](W& p) { return fspecial(p.Doubles(), "gaussian", 2); });
    add("TransposeImage", {}, [](W& p) {
        ImageAttributes to(eUInt16, p.moreWords, h, w, h, 16, 0);
        return TransposeImage(p.Words(), &to);
    });
    add("strel", {999}, [](W& p) {
        double center[2];
        double const angle = 0;
        ImageAttributes const mask(eByte, p.bytes, 7, 1, 7, 8, 0);
        return strel(mask, center, "line", 5, &angle, 0);
    });
    add("Dilate", {1, 5}, [](W& p) { return Dilate(p.Words(), &p.made, p.Element(), 1, 1); });
    add("ImOpen", {1, 5}, [](W& p) { return ImOpen(p.Bytes(), &p.made, p.Element(), 1, 1); });
    add("Erode3x3", {1, 5}, [](W& p) { return Erode3x3(p.Words(), nullptr, 2); });
    add("FloodFill", {1, 5}, [](W& p) { return FloodFill(p.Bytes(), 2, 2, 9, 4); });
    add("FillHoles", {5}, [](W& p) { return FillHoles(p.Mask(), 4); });
    add("LabelMarkers", {1, 5}, [](W& p) { return LabelMarkers(p.Mask(), 8, p.numbers); });
    add("LabelMarkers2", {0, 999}, [](W& p) { return LabelMarkers2(p.Mask(), 4, p.numbers, &p.made); });
    add("alloc_vector", {1}, [](W&) {
        float* const v = alloc_vector(1, 9);
        delete_vector(v, 1);
        return v ? 0 : 1;
    });
    add("ludcmp", {1}, [](W& p) {
        double sign = 0;
        ludcmp(p.doubles, 9, p.numbers, &sign);
        return sign == 0;
    });
    add("svdcmp", {1, 5}, [](W& p) {
        OffsetMatrix<float, 5, 3> a(p.floats);
        OffsetMatrix<float, 3, 3> v(p.floats + 50);
        return svdcmp(a, 5, 3, p.floats + 99, v);
    });
    add("dsvdcmp_DBL", {999}, [](W& p) {
        OffsetMatrix<double, 5, 3> a(p.doubles);
        OffsetMatrix<double, 3, 3> v(p.doubles + 50);
        return dsvdcmp_DBL(a, 5, 3, p.doubles + 99, v);
    });
    add("realFFT_DBL", {0}, [](W& p) { return realFFT_DBL(p.doubles, 256, 1), 0; });
    add("correl_DBL", {0},
        [](W& p) { return correl_DBL(p.doubles, p.doubles + 128, 128, p.moreDoubles), 0; });
    add("ZPA_Create an image", {999}, [](W&) { return Create("image.8.5.4.0.12.0"); });
    add("ZPA_Create a buffer", {999}, [](W&) { return Create("buffer.14.9"); });
    add("GetHistogram", {0, 999}, [](W& p) -> int {
        try {
            ZPA_Image<unsigned char> const image(p.bytes, w, h, w, 8, 0, false, false);
            auto const histogram = image.GetHistogram();
            if (!histogram.GetPointer() || !histogram->GetBufferPtr()) return 999;
            auto const* const bins = histogram->GetBufferPtr();
            return static_cast<int>(std::accumulate(bins, bins + 256, 0u)) - W::kPixels;
        } catch (std::runtime_error const&) {  // of a callback
            return 999;
        }
    });
    add("ReadRawFile", {1, 999}, [](W& p) { return ReadRawFile(p.scan.c_str(), &p.made); });
    add("DumpRawImage", {999}, [](W& p) { return DumpRawImage(p.words, w, h, 3, p.dump.c_str()); });
    add("dumpPgm8bit", {999}, [](W& p) { return dumpPgm8bit(p.words, w, h, p.picture.c_str()); });
    add("LoadBag", {0, 1, 5, kWithoutDocument}, Load);
    add("SaveBag", {0, 1, 5}, Save);
    add("Bag", {0, 1}, UseBags);
    return calls;
}

}  // namespace

std::vector<OperationCall> const& EveryOperation() {
    static std::vector<OperationCall> const calls = MakeCalls();
    return calls;
}

}  // namespace ZPA::Testing
