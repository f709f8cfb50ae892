// Images in bag documents: their elements and raw files, what is read back, and what is refused.
#include <Basics/ZPA_BagIO.h>
#include <gtest/gtest.h>

#include <climits>
#include <regex>

#include "support/Bags.h"
#include "support/CapturedLog.h"
#include "support/TemporaryFolder.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> using ImagePtr = ZPA_Ptr<ZPA_Image<T>>;

template <typename T> ImagePtr<T> NewImage(int width, int height, int bits = 8 * sizeof(T), int stride = 0) {
    ImagePtr<T> const image(new ZPA_Image<T>(nullptr, width, height, stride, bits, 17, true, true));
    for (int i = 0; i < image->GetStride() * height; ++i)
        image->GetBufferPtr()[i] = static_cast<T>(i * 31 - 50);
    return image;
}

template <typename T> std::string Bytes(ZPA_Image<T> const& image) {
    return {reinterpret_cast<char const*>(image.GetBufferPtr()),
            sizeof(T) * static_cast<std::size_t>(image.GetWidth() * image.GetHeight())};
}

// All but the name of the type, which differs between compilers.
std::string WithoutTypeName(std::string const& document) {
    return std::regex_replace(document, std::regex("(<ZPA_Type Type=\"System.String\">)[^<]*"), "$1");
}

std::string ImageLines(std::string const& indent, int width, int height, int bits, std::string const& file) {
    std::string const size = std::to_string(width * height);
    return indent + "<ZPA_Type Type=\"System.String\"></ZPA_Type>\n" + indent +
           "<Width Type=\"System.Int32\">" + std::to_string(width) + "</Width>\n" + indent +
           "<Height Type=\"System.Int32\">" + std::to_string(height) + "</Height>\n" + indent +
           "<PixelSpacing Type=\"System.Int32\">17</PixelSpacing>\n" + indent +
           "<BitsPerPixel Type=\"System.Int32\">" + std::to_string(bits) + "</BitsPerPixel>\n" + indent +
           "<Buffer Type=\"System.Byte[]\" Size=\"" + size + "\" BufferFile=\"" + file + "\" />\n";
}

std::string ImageElement(std::string const& key, std::string const& type, std::string const& width,
                         std::string const& height, std::string const& file) {
    return '<' + key + " Type='Bag'><ZPA_Type Type='System.String'>ZPA_Ptr&lt;ZPA_Image&lt;" + type +
           "&gt;&gt;</ZPA_Type><Width>" + width + "</Width><Height>" + height +
           "</Height><BitsPerPixel>12</BitsPerPixel><Buffer BufferFile='" + file + "'/></" + key + '>';
}

class ZPA_BagIOTest : public testing::Test {
protected:
    std::string Save(BagPtr const& bag) {
        EXPECT_TRUE(ZPA_BagIO().SaveBag(bag, folder.Path("a.xml")));
        return WithoutTypeName(folder.Read("a.xml"));
    }
    BagPtr Load(std::string const& elements) {
        return ZPA_BagIO().LoadBag(folder.Write("b.xml", "<Bag>" + elements + "</Bag>"));
    }

    TemporaryFolder folder;
};

template <typename T> class ZPA_BagIOOf : public ZPA_BagIOTest {};
using ImageElements = testing::Types<unsigned char, unsigned short, short, int, double>;
TYPED_TEST_SUITE(ZPA_BagIOOf, ImageElements, );

template <typename T> constexpr char const* kSuffix = "raw";
template <> constexpr char const* kSuffix<unsigned char> = "mask";
template <> constexpr char const* kSuffix<short> = "i16";
template <> constexpr char const* kSuffix<int> = "i32";
template <> constexpr char const* kSuffix<double> = "f64";

TYPED_TEST(ZPA_BagIOOf, AnImageIsABagAndARawFile) {
    using T = TypeParam;
    auto const image = NewImage<T>(7, 5);
    std::string const file = std::string("Bag.inner.Scan.7.5.") + kSuffix<T>;
    EXPECT_EQ(this->Save(NewBag({{"inner", NewBag({{"Scan", image}, {"after", 1}})}})),
              "<?xml version=\"1.0\" ?>\n<Bag Type=\"Bag\">\n    <inner Type=\"Bag\">\n"
              "        <Scan Type=\"Bag\">\n" +
                  ImageLines("            ", 7, 5, 8 * sizeof(T), file) +
                  "        </Scan>\n        <after Type=\"System.Int32\">1</after>\n"
                  "    </inner>\n</Bag>\n");
    EXPECT_EQ(this->folder.Read(file), Bytes(*image));
    EXPECT_EQ(this->folder.Names().size(), 2u);

    BagPtr const loaded = ZPA_BagIO().LoadBag(this->folder.Path("a.xml"));
    EXPECT_EQ(int(loaded->Get("inner/after")), 1);
    ImagePtr<T> const back = loaded->Get("inner/Scan");
    EXPECT_EQ(Bytes(*back), Bytes(*image));
    EXPECT_EQ(back->GetStride(), 7);
    EXPECT_EQ(back->GetBitsPerPixel(), static_cast<int>(8 * sizeof(T)));
    EXPECT_EQ(back->GetPixelSpacing(), 17);
    EXPECT_TRUE(back->IsOwner());

    BagPtr const plain = BagIO().LoadBag(this->folder.Path("a.xml"));
    EXPECT_EQ(int(plain->Get("inner/Scan/Width")), 7);
    EXPECT_EQ(int(plain->Get("inner/Scan/BitsPerPixel")), static_cast<int>(8 * sizeof(T)));
    ZPA_Ptr<unsigned char> const bytes = plain->Get("inner/Scan/Buffer");
    EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetPointer()), 35), Bytes(*image).substr(0, 35));
    BagPtr const scan = plain->Get("inner/Scan");
    EXPECT_EQ(scan->GetSize("Buffer"), 35);
}

TEST_F(ZPA_BagIOTest, DumpsTheBitsOfItsPixelsAndNoMoreThanThereIs) {
    struct Case {
        char const* name;
        int width, height, stride, bits;
        std::size_t bytes;
    };
    Case const cases[] = {
        {"Padded", 3, 2, 5, 16, 12},       {"FewBits", 3, 2, 0, 8, 6},    {"NoBits", 3, 2, 0, 0, 0},
        {"NegativeBits", 3, 2, 0, -99, 0}, {"ManyBits", 3, 2, 0, 17, 12}, {"AllBits", 3, 2, 0, INT_MAX, 12},
        {"TwelveBits", 3, 2, 0, 12, 12},   {"Narrow", 4, 2, 3, 8, 8},     {"Narrower", 9, 2, 2, 8, 8},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        auto const image = NewImage<unsigned short>(each.width, each.height, each.bits, each.stride);
        Save(NewBag({{each.name, image}}));
        std::string const block(reinterpret_cast<char const*>(image->GetBufferPtr()), each.bytes);
        EXPECT_EQ(folder.Read("Bag." + std::string(each.name) + '.' + std::to_string(each.width) + ".2.raw"),
                  block);
    }
}

TEST_F(ZPA_BagIOTest, DumpsNothingBehindTheLastRowOfAView) {
    std::vector<unsigned char> block(20, 'x');
    ImagePtr<unsigned char> const view(
        new ZPA_Image<unsigned char>(block.data() + 4, 6, 2, 10, 16, 0, false, false));
    Save(NewBag({{"view", view}}));
    EXPECT_EQ(folder.Read("Bag.view.6.2.mask"), std::string(16, 'x'));
}

TEST_F(ZPA_BagIOTest, WhatIsNoImageIsNotSavedAsOne) {
    ImagePtr<short> const null, empty(new ZPA_Image<short>);
    CapturedLog const log;
    std::string const saved =
        Save(NewBag({{"null", null}, {"empty", empty}, {"a/b", NewImage<short>(2, 2)}, {"after", 1}}));
    EXPECT_EQ(saved.find("<null"), saved.npos);
    EXPECT_NE(saved.find("BufferFile=\"Bag.empty.0.0.i16\""), saved.npos);
    EXPECT_NE(saved.find("BufferFile=\"Bag.a/b.2.2.i16\""), saved.npos);
    EXPECT_NE(saved.find("<after"), saved.npos);
    EXPECT_EQ(log.Text(), L"dumpRaw() - NULL input pointer.");
    EXPECT_EQ(folder.Names(), std::set<std::string>{"a.xml"});
}

TEST_F(ZPA_BagIOTest, VectorsAreWrittenAsBagsAndReadAsSuch) {
    auto const image = NewImage<unsigned char>(2, 3);
    std::vector<ImagePtr<unsigned char>> const frames{image, ImagePtr<unsigned char>(), image};
    EXPECT_EQ(
        Save(NewBag({{"frames", frames}, {"none", std::vector<ImagePtr<unsigned short>>()}})),
        "<?xml version=\"1.0\" ?>\n<Bag Type=\"Bag\">\n    <ZPA_Type Type=\"System.String\"></ZPA_Type>\n"
        "    <frames Type=\"Bag[]\">\n        <item Type=\"Bag\">\n" +
            ImageLines("            ", 2, 3, 8, "Bag.frames.0.frames.2.3.mask") +
            "        </item>\n        <item Type=\"Bag\" />\n        <item Type=\"Bag\">\n" +
            ImageLines("            ", 2, 3, 8, "Bag.frames.2.frames.2.3.mask") +
            "        </item>\n    </frames>\n    <ZPA_Type Type=\"System.String\"></ZPA_Type>\n"
            "    <none Type=\"Bag[]\" />\n</Bag>\n");
    EXPECT_EQ(folder.Read("Bag.frames.2.frames.2.3.mask"), Bytes(*image));
    auto const loaded = ZPA_BagIO().LoadBag(folder.Path("a.xml"))->Get("frames").Get<std::vector<BagPtr>>();
    ASSERT_EQ(loaded.size(), 3u);
    EXPECT_EQ(int(loaded[2]->Get("Height")), 3);
    EXPECT_EQ(loaded[2]->GetSize("Buffer"), 6);
}

TEST_F(ZPA_BagIOTest, StructArraysAreReadAsVectors) {
    folder.Write("f", "abcdefgh");
    auto const list = [&](char const* type) {
        return std::string("<list Type='Bag'><ZPA_Type>ZPA_Image ") + type + "</ZPA_Type><StructArray/>" +
               ImageElement("x", "unsigned char", "3", "1", "f") +
               ImageElement("y", "unsigned short", "2", "2", "f") + "</list>";
    };
    BagPtr bag = Load(list("unsigned short"));
    auto const shorts = bag->Get("list/StructArray").Get<std::vector<ImagePtr<unsigned short>>>();
    ASSERT_EQ(shorts.size(), 2u);
    EXPECT_EQ(Bytes(*shorts[0]), std::string(6, '\0'));  // the list's type has no file of this length
    EXPECT_EQ(Bytes(*shorts[1]), "abcdefgh");
    bag = Load(list("unsigned char"));
    EXPECT_EQ(bag->Get("list/StructArray").Get<std::vector<ImagePtr<unsigned char>>>().size(), 2u);
    bag = Load(list("double"));
    BagPtr const empty = bag->Get("list");
    EXPECT_TRUE(empty->Key().empty());
    EXPECT_FALSE(Load(list("float"))->Has("list"));
}

TEST_F(ZPA_BagIOTest, TheDocumentAloneSaysWhatAnImageIs) {
    folder.Write("f.100.100.mask", "abcdefgh");
    BagPtr bag = Load(ImageElement("a", "unsigned short", "2", "2", "f.100.100.mask"));
    ImagePtr<unsigned short> const image = bag->Get("a");
    EXPECT_EQ(Bytes(*image), "abcdefgh");
    EXPECT_EQ(image->GetBitsPerPixel(), 12);

    bag = Load(
        "<a Type='Bag'><ZPA_Type/><ZPA_Type Type='System.String'>other</ZPA_Type></a>"
        "<b Type='Bag'><ZPA_Type Type='System.String'><!-- --> ZPA_Image int</ZPA_Type></b>"
        "<c Type='Bag'><ZPA_Type>ZPA_Image float</ZPA_Type><x Type='System.Int32'>1</x></c>"
        "<d Type='Bag'><Width><!-- --></Width><ZPA_Type>ZPA_Image short</ZPA_Type><Width>+3x</Width>"
        "<Height> 2</Height><Buffer BufferFile='f'>x</Buffer></d>");
    EXPECT_EQ(bag->Key(), (std::vector<std::string>{"a", "b", "d"}));
    EXPECT_EQ(bag->GetType("a"), typeid(BagPtr));
    ImagePtr<short> const zeros = bag->Get("d");
    EXPECT_EQ(Bytes(*zeros), std::string(12, '\0'));
}

TEST_F(ZPA_BagIOTest, HostileImages) {
    folder.Write("f", "abcd");
    std::filesystem::create_directory(folder.Path("sub"));
    folder.Write("sub/f", "abcd");
    std::filesystem::resize_file(folder.Write("large", ""), (64 << 20) + 2);
    struct Case {
        char const *name, *width, *height, *file;
        int loadedWidth;  // 0: the level ends there
        std::string content;
        wchar_t const* logged;
    };
    std::string const zeros(4, '\0');
    constexpr auto kNoFit = L"does not exist, or does not match requested size.";
    Case const cases[] = {
        {"Whole", "2", "1", "f", 2, "abcd", L""},
        {"Missing", "2", "1", "g", 2, zeros, kNoFit},
        {"Longer", "1", "1", "f", 1, zeros, kNoFit},
        {"Shorter", "3", "1", "f", 3, zeros, kNoFit},
        {"NoName", "2", "1", "", 2, zeros, L""},
        {"Folder", "2", "1", "sub", 2, zeros, kNoFit},
        {"OtherFolder", "2", "1", "sub/f", 2, zeros, L""},
        {"OtherFolderOfWindows", "2", "1", "sub\\f", 2, zeros, L""},
        {"Parent", "2", "1", "..", 2, zeros, L""},
        {"Backed", "33554433", "1", "large", 33554433, zeros, L""},
        {"BackedOfOtherShape", "33554433", "0", "large", 0, "", L""},
        {"Unbacked", "33554435", "1", "f", 0, "", L""},
        {"UnbackedAndMissing", "2147483647", "2147483647", "g", 0, "", L""},
        {"Limit", "33554432", "1", "g", 33554432, zeros, kNoFit},
        {"NoWidth", "0", "1", "f", 0, "", L""},
        {"Negative", "-2", "-1", "f", 0, "", L""},
        {"NoNumber", "x", "1", "f", 0, "", L""},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        CapturedLog const log;
        BagPtr const bag = Load("<before Type='System.Int32'>1</before>" +
                                ImageElement("a", "unsigned short", each.width, each.height, each.file) +
                                "<after Type='System.Int32'>1</after>");
        EXPECT_TRUE(bag->Has("before"));
        EXPECT_EQ(bag->Has("after"), each.loadedWidth > 0);
        ASSERT_EQ(bag->Has("a"), each.loadedWidth > 0);
        if (each.loadedWidth == 0) continue;
        EXPECT_NE(log.Text().find(each.logged), std::wstring::npos);
        EXPECT_EQ(log.Text().empty(), *each.logged == 0);
        ImagePtr<unsigned short> const image = bag->Get("a");
        EXPECT_EQ(image->GetWidth(), each.loadedWidth);
        EXPECT_EQ(Bytes(*image).substr(0, 4), each.content.substr(0, Bytes(*image).size()));
    }

    // A file counts once, and the zeros of all images together.
    BagPtr const bag = Load(ImageElement("a", "unsigned short", "33554433", "1", "large") +
                            ImageElement("b", "unsigned short", "16777216", "1", "large") +
                            ImageElement("c", "unsigned short", "16777216", "1", "g") +
                            ImageElement("d", "unsigned short", "1", "1", "g"));
    EXPECT_EQ(bag->Key(), (std::vector<std::string>{"a", "b", "c"}));
}

}  // namespace
}  // namespace ZPA
