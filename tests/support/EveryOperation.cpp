// A call of every operation that succeeds, for tests of what becomes of it when something fails around it.
#include "support/EveryOperation.h"

#include <Basics/ZPA.h>

#include <numeric>
#include <stdexcept>

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

std::vector<OperationCall> MakeCalls() {
    using W = Workplace;
    using Image = ImageAttributes;
    constexpr int w = W::kWidth, h = W::kHeight, n = W::kPixels;
    std::vector<OperationCall> calls;
    auto const add = [&](std::string const& name, std::vector<int> const& withoutMemory,
                         std::function<int(W&)> const& call) {
        calls.push_back({name, withoutMemory, call});
    };
    // A call for each element type, with an image of it.
    auto const addFor = [&](std::vector<eTypeCode> const& types, std::string const& name,
                            std::vector<int> const& withoutMemory,
                            std::function<int(W&, Image)> const& call) {
        for (eTypeCode const type : types)
            add(name + " of type " + std::to_string(type), withoutMemory,
                [=](W& p) { return call(p, p.Of(type)); });
    };
    // One of a function without a result, which tells the log of a failure.
    auto const run = [&](std::string const& name, std::function<void(W&)> const& call) {
        add(name, {0}, [=](W& p) { return call(p), 0; });
    };
    std::vector<eTypeCode> const all = {eSByte, eByte, eInt16, eUInt16, eInt32, eUInt32, eSingle, eDouble};
    std::vector<eTypeCode> const real = {eSingle, eDouble}, labels = {eByte, eUInt16};
    std::vector<eTypeCode> const measured = {eByte, eInt16, eUInt16, eDouble};

    addFor(all, "ValidateImageBuffer", {1},
           [](W& p, Image image) { return ValidateImageBuffer(image, &p.made); });
    for (eTypeCode const to : {eByte, eUInt16, eDouble})
        addFor({eByte, eInt16, eUInt16, eInt32, eSingle, eDouble}, "CopyPixels", {999},
               [to](W& p, Image image) { return p.made.type = to, CopyPixels(image, &p.made); });
    addFor({eByte, eUInt16, eSingle, eDouble}, "SetPixels", {}, [](W& p, Image image) {
        Image const mask = p.Mask();
        return SetPixels(nullptr, &mask, nullptr, -1, 3, image);
    });
    addFor({eByte, eUInt16, eDouble}, "copyImage", {1},
           [](W& p, Image image) { return copyImage(image, &p.made); });
    add("copyBuffer", {1}, [](W& p) { return copyBuffer(W::Buffer(eUInt16, p.words), &p.counts); });
    addFor(labels, "ApplyMask", {}, [](W& p, Image image) { return ApplyMask(image, p.Mask()); });
    add("compare", {}, [](W& p) { return compare(p.Words(), p.Words()); });
    addFor({eByte, eInt16, eUInt16, eSingle, eDouble}, "DecimateAndCompare", {}, [](W& p, Image image) {
        bool equal = false;
        Image const mask = p.Mask();
        return DecimateAndCompare(image, image, nullptr, &mask, nullptr, 2, 2, 1, &equal);
    });
    for (eTypeCode const type : {eByte, eInt16, eInt32})
        add("DiffBuffer", {}, [type](W& p) {
            BufferAttributes output = W::Buffer(type, p.moreDoubles);
            return DiffBuffer(W::Buffer(type, p.doubles), &output);
        });
    run("ClipImage", [](W& p) { ClipImage(p.From<short>(), n, -9, 9); });
    for (auto const& [name, operation] :
         {std::pair{"Add", &Add}, {"Sub", Sub}, {"MulP", MulP}, {"Mul", Mul}, {"ipp_mul", ipp_mul}}) {
        bool const matrices = operation == Mul || operation == ipp_mul;
        addFor(matrices ? real : all, name, {1, 5}, [operation = operation](W& p, Image image) {
            image.width = image.stride = h;
            return operation(image, image, &p.made);
        });
    }
    addFor(real, "DivP", {5}, [](W& p, Image image) { return DivP(image, image, &p.made); });
    add("DivP", {5}, [](W& p) { return DivP(p.Words(), p.Words(), &p.made); });
    addFor({eByte, eInt16, eUInt16, eSingle}, "ipp_add", {5},
           [](W& p, Image image) { return ipp_add(image, image, &p.made, false); });
    for (auto const& [name, operation] :
         {std::pair{"AddC", &AddC}, {"SubC", SubC}, {"MulC", MulC}, {"DivC", DivC}})
        addFor(all, name, {5}, [operation = operation](W& p, Image image) {
            return operation(image, p.numbers + 2, &p.made);  // not zero in any type
        });
    addFor(all, "Abs", {5}, [](W& p, Image image) { return Abs(image, &p.made); });
    addFor({eByte, eInt16, eUInt16, eInt32, eUInt32}, "LogicalPixelOp", {999}, [](W& p, Image image) {
        unsigned char table[] = {0, 1, 1, 0};
        return LogicalPixelOp(image, p.Bytes(), table, &p.made);
    });

    addFor(measured, "CalculateImageStats", {}, [](W& p, Image image) {
        Image const mask = p.Mask();
        auto* const found = p.moreDoubles;
        return CalculateImageStats(image, nullptr, &mask, nullptr, found, found + 1, found + 2, found + 3);
    });
    addFor({eByte, eUInt16, eSingle, eDouble}, "CalculateBufferStats", {}, [](W& p, Image image) {
        auto* const found = p.moreDoubles;
        return CalculateBufferStats({image.type, image.buffer, n}, nullptr, nullptr, found, found + 1,
                                    found + 2, found + 3);
    });
    addFor({eByte, eInt16, eUInt16}, "ImageCountOfN", {}, [](W& p, Image image) {
        return ImageCountOfN(image, nullptr, nullptr, nullptr, 3, p.numbers, p.numbers + 1);
    });
    addFor(labels, "RowCountOfN", {999}, [](W& p, Image image) {
        return RowCountOfN(image, nullptr, nullptr, nullptr, 3, &p.counts, nullptr);
    });
    addFor(labels, "ColumnCountOfN", {999}, [](W& p, Image image) {
        return ColumnCountOfN(image, nullptr, nullptr, nullptr, 3, nullptr, &p.counts);
    });
    addFor({eByte, eUInt16, eDouble}, "NormalizeImage", {},
           [](W&, Image image) { return NormalizeImage(image, nullptr, nullptr, nullptr, &image); });
    addFor({eByte, eUInt16, eSingle, eDouble}, "NormalizeBuffer", {}, [](W&, Image image) {
        BufferAttributes buffer(image.type, image.buffer, n);
        return NormalizeBuffer(buffer, nullptr, nullptr, &buffer);
    });
    for (auto const& [name, operation] :
         {std::pair{"InvertGray", &InvertGray}, {"InvertMaskImage", InvertMaskImage}})
        addFor(labels, name, {}, [operation = operation](W&, Image image) {
            return operation(image, nullptr, nullptr, nullptr, &image);
        });
    addFor({eByte, eInt16, eUInt16}, "GetIntegerHistogram", {5, 999}, [](W& p, Image image) {
        return GetIntegerHistogram(image, nullptr, nullptr, nullptr, nullptr, nullptr, &p.counts);
    });
    addFor(real, "GetRealHistogram", {999}, [](W& p, Image image) {
        return GetRealHistogram(image, nullptr, nullptr, nullptr, 9, 0, 99, &p.counts);
    });
    for (int const padding : {0, 1, 2, 3})
        add("smoothHistogram", {1, 999}, [=](W& p) { return smoothHistogram(p.floats, n, 2, padding); });

    auto const addReductions = [&](auto element, std::string const& type, auto flatTop, auto masked,
                                   auto average, auto coded) {
        using T = decltype(element);
        add("flat top of " + type, {1}, [=](W& p) { return flatTop(p.From<T>(), p.To<T>(), w, h, 3, 5); });
        add("masked flat top of " + type, {1}, [=](W& p) {
            char weights[n] = {1, 0, 1};
            return masked(p.From<T>(), p.To<T>(), weights, w, h, 3, 3);
        });
        add("block average of " + type, {},
            [=](W& p) { return average(p.From<T>(), p.To<T>(), w, h, w / 2, h / 2, 2); });
        add("coded block average of " + type, {},
            [=](W& p) { return coded(p.From<T>(), p.To<T>(), w, h, w / 2, h / 2, 2, T{3}); });
    };
    using Word = unsigned short;
    addReductions(Word{}, "ushort", rect_flat_top_filtering_ushort, rectFlatTopFilteringWithMask_ushort,
                  blockAverageDownSample_ushort, blockAverageDownSampleCodedMask_ushort);
    addReductions(Word{}, "any", rectFlatTopFilter, rectFlatTopFilteringWithMask_ushort, blockAverage,
                  blockAverageDownSampleCodedMask_ushort);
    addReductions(short{}, "short", rect_flat_top_filtering_short, rectFlatTopFilteringWithMask_short,
                  blockAverageDownSample_short, blockAverageDownSampleCodedMask_short);
    addReductions(double{}, "double", rect_flat_top_filtering_double, rectFlatTopFilteringWithMask_double,
                  blockAverageDownSample_double, blockAverageDownSampleCodedMask_double);
    add("subsample", {1}, [](W& p) {
        Image const source = p.Words();
        return subsample(&source, &p.made, 2, 0, 1);
    });
    addFor(measured, "AnisotropicGaussian", {999},
           [](W& p, Image image) { return AnisotropicGaussian(image, &p.made, 3, 2, 30, 1, 1); });
    addFor({eByte, eUInt16, eDouble}, "HomoFilter", {999},
           [](W& p, Image image) { return HomoFilter(image, 3, &p.made); });
    addFor({eByte, eInt16, eUInt16}, "Filter2D", {1, 5, 999}, [](W& p, Image image) {
        int weights[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1}, divisor = 16;
        return Filter2D(image, nullptr, &p.made, nullptr, {eInt32, weights, 3, 3, 3, 32, 0}, &divisor);
    });
    addFor(real, "Filter2D", {1, 5, 999}, [](W& p, Image image) {
        Image const kernel(image.type, p.moreDoubles, 5, 5, 5, 64, 0);
        return Filter2D(image, nullptr, &p.made, nullptr, kernel, nullptr);
    });
    addFor(all, "FilterBufferSimple", {1, 999}, [](W& p, Image image) {
        return FilterBufferSimple({image.type, image.buffer, n}, {eSingle, p.floats, 3}, &p.counts);
    });
    for (auto const kind : {"average", "gaussian", "laplacian", "sobel"})
        add("fspecial", {}, [=](W& p) { return fspecial(p.Doubles(), kind, 2); });
    addFor(all, "TransposeImage", {}, [](W& p, Image image) {
        Image to(image.type, p.moreDoubles, h, w, h, 8, 0);
        return TransposeImage(image, &to);
    });

    add("strel", {999}, [](W& p) {
        double center[2];
        double const angle = 0;
        int const code = strel_GetBufferSize("line", 5, &angle, 0, p.numbers, p.numbers + 1);
        if (code != 0) return code;
        return int{strel({eByte, p.bytes, 7, 1, 7, 8, 0}, center, "line", 5, &angle, 0)};
    });
    for (auto const& [name, operation] :
         {std::pair{"Dilate", &Dilate}, {"Erode", Erode}, {"ImOpen", ImOpen}, {"ImClose", ImClose}})
        addFor(labels, name, {1, 5}, [operation = operation](W& p, Image image) {
            return operation(image, &p.made, p.Element(), 1, 1);
        });
    for (auto const& [name, operation] : {std::pair{"Dilate3x3", &Dilate3x3}, {"Erode3x3", Erode3x3}})
        for (bool const inPlace : {false, true})
            addFor(labels, name, {1, 5}, [operation = operation, inPlace](W& p, Image image) {
                return operation(image, inPlace ? nullptr : &p.made, 2);
            });
    addFor(labels, "FloodFill", {1, 5}, [](W&, Image image) { return FloodFill(image, 2, 2, 9, 4); });
    addFor(labels, "FillHoles", {5}, [](W&, Image image) { return FillHoles(image, 4); });
    addFor(labels, "LabelMarkers", {1, 5},
           [](W& p, Image image) { return LabelMarkers(image, 8, p.numbers); });
    add("LabelMarkers2", {0, 999}, [](W& p) { return LabelMarkers2(p.Mask(), 4, p.numbers, &p.made); });

    add("alloc_vector", {1}, [](W&) {
        float* const v = alloc_vector(1, 9);
        return delete_vector(v, 1), v ? 0 : 1;
    });
    add("alloc_matrix", {kLost}, [](W&) {
        float** const m = alloc_matrix(1, 3, 1, 4);
        return delete_matrix(m, 1, 3, 1), m ? 0 : kLost;
    });
    for (auto const factor : {ludcmp, ludcmp_DBL})
        add("ludcmp", {1}, [=](W& p) {
            double sign = 0;
            factor(p.doubles, 65, p.numbers, &sign);
            return sign == 0;
        });
    for (auto const solve : {lubksb, lubksb_DBL})
        run("lubksb", [=](W& p) { solve(p.doubles, 9, p.numbers, p.moreDoubles); });
    for (auto const solve : {sollequ, sollequ_DBL})
        run("sollequ", [=](W& p) { solve(p.doubles, 41, p.moreDoubles); });
    run("invmatrix_DBL", [](W& p) { invmatrix_DBL(p.doubles, p.doubles + 41 * 41, 41); });
    add("svdcmp", {1, 5}, [](W& p) {
        OffsetMatrix<float, 5, 3> a(p.floats);
        OffsetMatrix<float, 3, 3> v(p.floats + 50);
        return svdcmp(a, 5, 3, p.floats + 99, v);
    });
    add("svbksb", {1, 5}, [](W& p) {
        OffsetMatrix<float, 5, 3> u(p.floats);
        OffsetMatrix<float, 3, 3> v(p.floats + 50);
        return svbksb(u, p.floats + 99, v, 5, 3, p.floats + 199, p.floats + 299);
    });
    add("dsvdcmp_DBL", {999}, [](W& p) {
        OffsetMatrix<double, 5, 3> a(p.doubles);
        OffsetMatrix<double, 3, 3> v(p.doubles + 50);
        return dsvdcmp_DBL(a, 5, 3, p.doubles + 99, v);
    });
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

    add("ParseTypeCode", {5}, [](W&) { return ParseTypeCode("Unsigned Short") == eUInt16 ? 0 : 5; });
    add("ParseImageFactoryString", {999},
        [](W& p) { return ParseImageFactoryString("image.8.5.4.0.12.0", &p.made); });
    add("ParseBufferFactoryString", {999},
        [](W& p) { return ParseBufferFactoryString("buffer.14.9", &p.counts); });
    for (char const* const id : {"image.8.5.4.0.12.0", "buffer.14.9"}) {
        add("ZPA_Create", {999}, [=](W&) {
            ISolvane_Object* const object = ZPA_Create(id);
            delete object;
            return object ? 0 : 999;
        });
        add("ZPA_CreateEx", {999}, [=](W&) {
            ISolvane_Object* object = nullptr;
            int const code = ZPA_CreateEx(id, &object);
            delete object;
            return code;
        });
    }
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
    add("ReadRawBuffer", {1, 999}, [](W& p) {
        int const code = ReadRawBuffer(p.curve.c_str(), &p.counts);
        return p.counts.size /= 2, code;  // it counts bytes
    });
    add("ReadRaw", {1, 999},
        [](W& p) { return ReadRaw(p.scan.c_str(), &p.made.buffer, eUInt16, 4, 3, 4, false); });
    add("dumpRaw", {999}, [](W& p) { return dumpRaw(p.words, 2 * n, p.dump.c_str()); });
    add("DumpRawMask", {999}, [](W& p) { return DumpRawMask(p.mask, w, h, 3, p.dump.c_str()); });
    add("DumpRawImage", {999}, [](W& p) { return DumpRawImage(p.words, w, h, 3, p.dump.c_str()); });
    add("dumpPgm8bit", {999}, [](W& p) { return dumpPgm8bit(p.words, w, h, p.picture.c_str()); });
    add("dumpPgm8bit_uchar", {999}, [](W& p) { return dumpPgm8bit_uchar(p.bytes, w, h, p.picture.c_str()); });
    add("dumpPgm8bit_double", {999},
        [](W& p) { return dumpPgm8bit_double(p.doubles, w, h, p.picture.c_str()); });
    add("LoadBag", {0, 1, 5, kLost}, Load);
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
