// What is written to files, and read from them.
#include <Basics/RawFile.h>
#include <Basics/ZPA_BagIO.h>

#include "digest/Cases.h"
#include "support/TemporaryFolder.h"

namespace ZPA::Testing {
namespace {

void RawFiles(Digest& digest) {
    TemporaryFolder const folder;
    auto image = Sample<unsigned short>({53, 29, 53}, 70);
    auto bytes = Sample<unsigned char>({53, 29, 53}, 71);
    auto real = Sample<double>({53, 29, 53}, 72);
    digest.Add(int{dumpRaw(image.Pixels(), 53 * 29 * 2, folder.Path("a").c_str())});
    digest.Add(int{DumpRawImage(image.Pixels(), 53, 29, 7, folder.Path("b").c_str())});
    digest.Add(int{DumpRawMask(bytes.Pixels(), 53, 29, -1, folder.Path("c").c_str())});
    digest.Add(int{dumpPgm8bit(image.Pixels(), 53, 29, folder.Path("d").c_str())});
    digest.Add(int{dumpPgm8bit_uchar(bytes.Pixels(), 53, 29, folder.Path("e").c_str())});
    digest.Add(int{dumpPgm8bit_double(real.Pixels(), 53, 29, folder.Path("f").c_str())});
    for (std::string const& name : folder.Names()) {
        digest.Add(name);
        digest.Add(folder.Read(name));
    }
}

void Reading(Digest& digest) {
    TemporaryFolder const folder;
    std::string const bytes(7 * 6, 'x');
    for (char const* const name : {"words.7.3.raw", "mask.7.6.mask", "line.42.raw", "plain"}) {
        std::string const path = folder.Write(name, bytes);
        ImageAttributes image(eInt16, nullptr, 7, 3, 7, 12, 5);
        BufferAttributes buffer(eDouble, nullptr, 42);
        void* block = nullptr;
        digest.Add(int{ReadRawFile(path.c_str(), &image)});
        digest.Add(int{ReadRawBuffer(path.c_str(), &buffer)});
        digest.Add(int{ReadRaw(path.c_str(), &block, eInt16, 7, 3, 7, false)});
        for (int const each : {int{image.type}, image.width, image.height, image.stride, image.bitsperpixel,
                               image.pixelspacing, int{buffer.type}, buffer.size})
            digest.Add(each);
        for (void* const read : {image.buffer, buffer.buffer, block}) {
            if (read) digest.Add(static_cast<unsigned char const*>(read), bytes.size());
            FreePixels(read);
        }
    }
}

void Documents(Digest& digest) {
    TemporaryFolder const folder;
    ZPA_Ptr<Bag> const bag(new Bag), inner(new Bag);
    ZPA_Ptr<ZPA_Image<unsigned short>> const image(
        new ZPA_Image<unsigned short>(nullptr, 9, 5, 0, 12, 1, true, true));
    inner->Set("Text", std::string("<a & \"b\">"));
    inner->Set("Image", image);
    bag->Set("Inner", inner);
    bag->Set("Int", -7);
    bag->Set("Double", 0.1);
    bag->Set("Bool", true);
    bag->Set("Words", std::vector<std::string>{"one", "", "three"});
    digest.Add(ZPA_BagIO().SaveBag(bag, folder.Path("bag.xml")));
    for (std::string const& name : folder.Names()) {
        digest.Add(name);
        digest.Add(folder.Read(name));
    }
    digest.Add(ZPA_BagIO().LoadBag(folder.Path("bag.xml"))->Get("Double").Get<double>());
}

}  // namespace

std::vector<Case> FileCases() {
    return {{"Raw and PGM files", RawFiles},
            {"ReadRaw, ReadRawFile, ReadRawBuffer", Reading},
            {"Bag documents", Documents}};
}

}  // namespace ZPA::Testing
