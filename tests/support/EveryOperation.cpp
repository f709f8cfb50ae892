// A call of every operation that succeeds, for tests of what becomes of it when something fails around it.
#include "support/EveryOperation.h"

#include <Basics/ZPA.h>

#include <memory>
#include <numeric>
#include <stdexcept>

#include "support/Bags.h"

namespace ZPA::Testing {
namespace {

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
        return keys == 5 ? SOLVANE_OK : keys > 0 ? SOLVANE_OPERATION_FAILED : kLost;
    } catch (std::bad_alloc const&) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

int Save(Workplace& w) {
    try {
        ZPA_Ptr<unsigned short> const array(new unsigned short[120]());
        ZPA_Ptr<ZPA_Image<unsigned char>> const image(
            new ZPA_Image<unsigned char>(w.bytes, Workplace::kWidth, 2, 0, 8, 0, false, false));
        BagPtr const bag = NewBag({{"number", 1.5},
                                   {"text", "text"},
                                   {"inner", NewBag({{"array", array, 120}})},
                                   {"image", image}});
        return ZPA_BagIO().SaveBag(bag, w.saved) ? SOLVANE_OK : SOLVANE_OPERATION_FAILED;
    } catch (std::exception const&) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

int UseBags(Workplace&) {
    try {
        BagPtr bag = NewBag();
        for (int i = 0; i < 140; ++i) bag->Set("key" + std::to_string(i), i);
        BagAddition(bag, NewBag({{"key1", 1.5}, {"inner", NewBag()}}));
        bag->Rename("key3", "key");
        bag->Remove("key4");
        std::size_t const keys = BagQuery(bag, {"key"})->Key().size() + BagClone(bag)->Key().size();
        return keys == 141 ? SOLVANE_OK : SOLVANE_OPERATION_FAILED;
    } catch (std::bad_alloc const&) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

// An operation's name, and its call with arguments of the place `p`, and of `image` where it is one of many types.
#define CALL(operation, ...) \
    std::string(#operation), \
        [=](W& p, Image image) -> int { return (void)p, (void)image, operation(__VA_ARGS__); }

std::vector<OperationCall> MakeCalls() {
    using W = Workplace;
    using Image = ImageAttributes;
    using Word = unsigned short;
    constexpr int w = W::kWidth, h = W::kHeight, n = W::kPixels;
    std::vector<OperationCall> calls;
    using Codes = std::vector<int>;
    using Call = std::function<int(W&, Image)>;
    auto const add = [&](Codes const& withoutMemory, std::string const& name, Call const& call) {
        calls.push_back({name, withoutMemory, [=](W& p) { return call(p, Image()); }});
    };
    // A call for each element type, with an image of it.
    using Types = std::vector<eTypeCode>;
    auto const addFor = [&](Types const& types, Codes const& withoutMemory, std::string const& name,
                            Call const& call) {
        for (eTypeCode const type : types)
            calls.push_back({name + " of type " + std::to_string(type), withoutMemory,
                             [=](W& p) { return call(p, p.Of(type)); }});
    };
    // One of a function without a result, which tells the log of a failure.
    auto const run = [&](std::string const& name, std::function<void(W&)> const& call) {
        calls.push_back({name, {0}, [=](W& p) { return call(p), 0; }});
    };
    Types const all = {eSByte, eByte, eInt16, eUInt16, eInt32, eUInt32, eSingle, eDouble};
    Types const real = {eSingle, eDouble}, labels = {eByte, eUInt16}, counted = {eByte, eInt16, eUInt16};
    Types const measured = {eByte, eInt16, eUInt16, eDouble}, stretched = {eByte, eUInt16, eDouble};
    Types const set = {eByte, eUInt16, eSingle, eDouble};

    addFor(all, {1}, CALL(ValidateImageBuffer, image, &p.made));
    for (eTypeCode const to : stretched)
        addFor({eByte, eInt16, eUInt16, eInt32, eSingle, eDouble}, {999}, "CopyPixels",
               [to](W& p, Image image) { return p.made.type = to, CopyPixels(image, &p.made); });
    addFor(set, {}, CALL(SetPixels, nullptr, &p.maskImage, nullptr, -1, 3, image));
    addFor(stretched, {1}, CALL(copyImage, image, &p.made));
    add({1}, CALL(copyBuffer, W::Buffer(p.Words()), &p.counts));
    addFor(labels, {}, CALL(ApplyMask, image, p.maskImage));
    add({}, CALL(compare, p.Words(), p.Words()));
    addFor({eByte, eInt16, eUInt16, eSingle, eDouble}, {}, "DecimateAndCompare", [](W& p, Image image) {
        bool equal = false;
        return DecimateAndCompare(image, image, nullptr, &p.maskImage, nullptr, 2, 2, 1, &equal);
    });
    addFor({eByte, eInt16, eInt32}, {}, "DiffBuffer", [](W& p, Image image) {
        BufferAttributes output(image.type, p.moreDoubles, n);
        return DiffBuffer(W::Buffer(image), &output);
    });
    run("ClipImage", [](W& p) { ClipImage(p.From<short>(), n, -9, 9); });
    addFor(all, {1, 5}, CALL(Add, image, image, &p.made));
    addFor(all, {1, 5}, CALL(Sub, image, image, &p.made));
    addFor(all, {1, 5}, CALL(MulP, W::Square(image), W::Square(image), &p.made));
    addFor(real, {1, 5}, CALL(Mul, W::Square(image), W::Square(image), &p.made));
    addFor(real, {1, 5}, CALL(ipp_mul, W::Square(image), W::Square(image), &p.made));
    addFor(real, {5}, CALL(DivP, image, image, &p.made));
    add({5}, CALL(DivP, p.Words(), p.Words(), &p.made));
    addFor({eByte, eInt16, eUInt16, eSingle}, {5}, CALL(ipp_add, image, image, &p.made, false));
    // The number is not zero in any type.
    addFor(all, {5}, CALL(AddC, image, p.numbers + 2, &p.made));
    addFor(all, {5}, CALL(SubC, image, p.numbers + 2, &p.made));
    addFor(all, {5}, CALL(MulC, image, p.numbers + 2, &p.made));
    addFor(all, {5}, CALL(DivC, image, p.numbers + 2, &p.made));
    addFor(all, {5}, CALL(Abs, image, &p.made));
    addFor({eByte, eInt16, eUInt16, eInt32, eUInt32}, {999}, "LogicalPixelOp", [](W& p, Image image) {
        unsigned char table[] = {0, 1, 1, 0};
        return LogicalPixelOp(image, p.Bytes(), table, &p.made);
    });

    addFor(measured, {},
           CALL(CalculateImageStats, image, nullptr, &p.maskImage, nullptr, p.moreDoubles, p.moreDoubles + 1,
                p.moreDoubles + 2, p.moreDoubles + 3));
    addFor(set, {},
           CALL(CalculateBufferStats, W::Buffer(image), nullptr, nullptr, p.moreDoubles, p.moreDoubles + 1,
                p.moreDoubles + 2, p.moreDoubles + 3));
    addFor(counted, {}, CALL(ImageCountOfN, image, nullptr, nullptr, nullptr, 3, p.numbers, p.numbers + 1));
    addFor(labels, {999}, CALL(RowCountOfN, image, nullptr, nullptr, nullptr, 3, &p.counts, nullptr));
    addFor(labels, {999}, CALL(ColumnCountOfN, image, nullptr, nullptr, nullptr, 3, nullptr, &p.counts));
    addFor(stretched, {}, CALL(NormalizeImage, image, nullptr, nullptr, nullptr, &image));
    addFor(set, {}, "NormalizeBuffer", [](W&, Image image) {
        BufferAttributes buffer = W::Buffer(image);
        return NormalizeBuffer(buffer, nullptr, nullptr, &buffer);
    });
    addFor(labels, {}, CALL(InvertGray, image, nullptr, nullptr, nullptr, &image));
    addFor(labels, {}, CALL(InvertMaskImage, image, nullptr, nullptr, nullptr, &image));
    addFor(counted, {5, 999},
           CALL(GetIntegerHistogram, image, nullptr, nullptr, nullptr, nullptr, nullptr, &p.counts));
    addFor(real, {999}, CALL(GetRealHistogram, image, nullptr, nullptr, nullptr, 9, 0, 99, &p.counts));
    for (int const padding : {0, 1, 2, 3}) add({1, 999}, CALL(smoothHistogram, p.floats, n, 2, padding));

    add({1}, CALL(rect_flat_top_filtering_ushort, p.words, p.To<Word>(), w, h, 3, 5));
    add({1}, CALL(rectFlatTopFilter, p.words, p.To<Word>(), w, h, 3, 5));
    add({1}, CALL(rect_flat_top_filtering_short, p.From<short>(), p.To<short>(), w, h, 3, 5));
    add({1}, CALL(rect_flat_top_filtering_double, p.doubles, p.moreDoubles, w, h, 3, 5));
    add({1}, CALL(rectFlatTopFilteringWithMask_ushort, p.words, p.To<Word>(), p.weights, w, h, 3, 3));
    add({1}, CALL(rectFlatTopFilteringWithMask_short, p.From<short>(), p.To<short>(), p.weights, w, h, 3, 3));
    add({1}, CALL(rectFlatTopFilteringWithMask_double, p.doubles, p.moreDoubles, p.weights, w, h, 3, 3));
    constexpr int halfW = w / 2, halfH = h / 2;
    add({}, CALL(blockAverageDownSample_ushort, p.words, p.To<Word>(), w, h, halfW, halfH, 2));
    add({}, CALL(blockAverage, p.words, p.To<Word>(), w, h, halfW, halfH, 2));
    add({}, CALL(blockAverageDownSample_short, p.From<short>(), p.To<short>(), w, h, halfW, halfH, 2));
    add({}, CALL(blockAverageDownSample_double, p.doubles, p.moreDoubles, w, h, halfW, halfH, 2));
    add({}, CALL(blockAverageDownSampleCodedMask_ushort, p.words, p.To<Word>(), w, h, halfW, halfH, 2, 3));
    add({}, CALL(blockAverageDownSampleCodedMask_short, p.From<short>(), p.To<short>(), w, h, halfW, halfH, 2,
                 3));
    add({}, CALL(blockAverageDownSampleCodedMask_double, p.doubles, p.moreDoubles, w, h, halfW, halfH, 2, 3));
    add({1}, "subsample", [](W& p, Image) {
        Image const source = p.Words();
        return subsample(&source, &p.made, 2, 0, 1);
    });
    addFor(measured, {999}, CALL(AnisotropicGaussian, image, &p.made, 3, 2, 30, 1, 1));
    addFor(stretched, {999}, CALL(HomoFilter, image, 3, &p.made));
    addFor(counted, {1, 5, 999}, "Filter2D", [](W& p, Image image) {
        int weights[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1}, divisor = 16;
        return Filter2D(image, nullptr, &p.made, nullptr, {eInt32, weights, 3, 3, 3, 32, 0}, &divisor);
    });
    addFor(real, {1, 5, 999}, "Filter2D", [](W& p, Image image) {
        Image const kernel(image.type, p.moreDoubles, 5, 5, 5, 64, 0);
        return Filter2D(image, nullptr, &p.made, nullptr, kernel, nullptr);
    });
    addFor(all, {1, 999}, CALL(FilterBufferSimple, W::Buffer(image), {eSingle, p.floats, 3}, &p.counts));
    for (auto const kind : {"average", "gaussian", "laplacian", "sobel"})
        add({}, CALL(fspecial, p.Doubles(), kind, 2));
    addFor(all, {}, "TransposeImage", [](W& p, Image image) {
        Image to(image.type, p.moreDoubles, h, w, h, 8, 0);
        return TransposeImage(image, &to);
    });

    add({999}, "strel", [](W& p, Image) {
        double center[2];
        double const angle = 0;
        int const code = strel_GetBufferSize("line", 5, &angle, 0, p.numbers, p.numbers + 1);
        if (code != 0) return code;
        return int{strel({eByte, p.bytes, 7, 1, 7, 8, 0}, center, "line", 5, &angle, 0)};
    });
    addFor(labels, {1, 5}, CALL(Dilate, image, &p.made, p.Element(), 1, 1));
    addFor(labels, {1, 5}, CALL(Erode, image, &p.made, p.Element(), 1, 1));
    addFor(labels, {1, 5}, CALL(ImOpen, image, &p.made, p.Element(), 1, 1));
    addFor(labels, {1, 5}, CALL(ImClose, image, &p.made, p.Element(), 1, 1));
    for (bool const inPlace : {false, true}) {
        addFor(labels, {1, 5}, CALL(Dilate3x3, image, inPlace ? nullptr : &p.made, 2));
        addFor(labels, {1, 5}, CALL(Erode3x3, image, inPlace ? nullptr : &p.made, 2));
    }
    addFor(labels, {1, 5}, CALL(FloodFill, image, 2, 2, 9, 4));
    addFor(labels, {5}, CALL(FillHoles, image, 4));
    addFor(labels, {1, 5}, CALL(LabelMarkers, image, 8, p.numbers));
    add({0, 999}, CALL(LabelMarkers2, p.maskImage, 4, p.numbers, &p.made));

    add({1}, "alloc_vector", [](W&, Image) {
        float* const v = alloc_vector(1, 9);
        return delete_vector(v, 1), v ? 0 : 1;
    });
    add({kLost}, "alloc_matrix", [](W&, Image) {
        float** const m = alloc_matrix(1, 3, 1, 4);
        return delete_matrix(m, 1, 3, 1), m ? 0 : kLost;
    });
    for (auto const factor : {ludcmp, ludcmp_DBL})
        add({1}, "ludcmp", [=](W& p, Image) {
            double sign = 0;
            factor(p.doubles, 65, p.numbers, &sign);
            return sign == 0;
        });
    for (auto const solve : {lubksb, lubksb_DBL})
        run("lubksb", [=](W& p) { solve(p.doubles, 9, p.numbers, p.moreDoubles); });
    for (auto const solve : {sollequ, sollequ_DBL})
        run("sollequ", [=](W& p) { solve(p.doubles, 41, p.moreDoubles); });
    run("invmatrix_DBL", [](W& p) { invmatrix_DBL(p.doubles, p.doubles + 41 * 41, 41); });
    add({1, 5}, CALL(svdcmp, OffsetMatrix<float, 5, 3>(p.floats), 5, 3, p.floats + 99,
                     OffsetMatrix<float, 3, 3>(p.floats + 50)));
    add({1, 5}, CALL(svbksb, OffsetMatrix<float, 5, 3>(p.floats), p.floats + 99,
                     OffsetMatrix<float, 3, 3>(p.floats + 50), 5, 3, p.floats + 199, p.floats + 299));
    add({999}, CALL(dsvdcmp_DBL, OffsetMatrix<double, 5, 3>(p.doubles), 5, 3, p.doubles + 99,
                    OffsetMatrix<double, 3, 3>(p.doubles + 50)));
    auto const addTransforms = [&](auto data, auto fft, auto realFft, auto two, auto back) {
        run("FFT", [=](W& p) { fft(p.*data, 4096, 1); });
        run("realFFT", [=](W& p) { realFft(p.*data, 4096, -1); });
        run("realFFT2", [=](W& p) {
            auto* const d = p.*data;
            two(d, d + 1024, d + 2048, d + 4096, 1024);
            back(d + 2048, d + 4096, d, d + 1024, 1024);
        });
    };
    addTransforms(&W::floats, FFT, realFFT, realFFT2, realIFFT2);
    addTransforms(&W::doubles, FFT_DBL, realFFT_DBL, realFFT2_DBL, realIFFT2_DBL);
    run("FFT2d_DBL", [](W& p) { FFT2d_DBL(p.doubles, 64, 1); });
    run("correl", [](W& p) { correl(p.floats, p.floats + 2048, 2048, p.floats + 4096, nullptr); });
    run("correl_DBL", [](W& p) { correl_DBL(p.doubles, p.doubles + 2048, 2048, p.doubles + 4096); });
    run("convlv_DBL", [](W& p) { convlv_DBL(p.doubles, p.doubles + 4096, 4096); });

    add({5}, "ParseTypeCode", [](W&, Image) { return ParseTypeCode("Unsigned Short") == eUInt16 ? 0 : 5; });
    add({999}, CALL(ParseImageFactoryString, "image.8.5.4.0.12.0", &p.made));
    add({999}, CALL(ParseBufferFactoryString, "buffer.14.9", &p.counts));
    using Object = std::unique_ptr<ISolvane_Object>;
    for (char const* const id : {"image.8.5.4.0.12.0", "buffer.14.9"}) {
        add({999}, "ZPA_Create", [=](W&, Image) { return Object(ZPA_Create(id)) ? 0 : 999; });
        add({999}, "ZPA_CreateEx", [=](W&, Image) {
            ISolvane_Object* object = nullptr;
            int const code = ZPA_CreateEx(id, &object);
            delete object;
            return code;
        });
    }
    add({0, 999}, "GetHistogram", [](W& p, Image) -> int {
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
    add({1, 999}, CALL(ReadRawFile, p.scan.c_str(), &p.made));
    add({1, 999}, "ReadRawBuffer", [](W& p, Image) {
        int const code = ReadRawBuffer(p.curve.c_str(), &p.counts);
        return p.counts.size /= 2, code;  // it counts bytes
    });
    add({1, 999}, CALL(ReadRaw, p.scan.c_str(), &p.made.buffer, eUInt16, 4, 3, 4, false));
    add({999}, CALL(dumpRaw, p.words, 2 * n, p.dump.c_str()));
    add({999}, CALL(DumpRawMask, p.mask, w, h, 3, p.dump.c_str()));
    add({999}, CALL(DumpRawImage, p.words, w, h, 3, p.dump.c_str()));
    add({999}, CALL(dumpPgm8bit, p.words, w, h, p.picture.c_str()));
    add({999}, CALL(dumpPgm8bit_uchar, p.bytes, w, h, p.picture.c_str()));
    add({999}, CALL(dumpPgm8bit_double, p.doubles, w, h, p.picture.c_str()));
    add({0, 1, 5, kLost}, CALL(Load, p));
    add({0, 1, 5}, CALL(Save, p));
    add({0, 1}, CALL(UseBags, p));
    return calls;
}

#undef CALL

}  // namespace

std::vector<OperationCall> const& EveryOperation() {
    static std::vector<OperationCall> const calls = MakeCalls();
    return calls;
}

}  // namespace ZPA::Testing
