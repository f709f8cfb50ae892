// Bag documents read back: with tolerance, within bounds, and whatever a hostile one holds.
#include <Basics/BagIO.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "support/BagDocuments.h"

namespace ZPA {
namespace {

using namespace Testing;

struct Reading {
    char const* name;
    char const* elements;
    char const* loaded;
    char const* printed;
};
Reading const kReadings[] = {
    {"Nothing", "", "", ""},
    {"TextsOfNumbers",
     "<a Type='System.Int16'> +12.9x</a><b Type='System.Byte'>-1</b><c Type='System.SByte'>200</c>"
     "<d Type='System.Int32'>abc</d><e Type='System.Single'> 1e2z</e><f Type='System.Double'>.5.5</f>",
     "a: i16 12, b: u8 255, c: i8 -56, d: i32 0, e: f32 100.000000, f: f64 0.500000", ""},
    {"NumbersSaturate",
     "<a Type='System.Int32'>99999999999999999999</a><b Type='System.UInt32'>4294967295</b>"
     "<c Type='System.UInt32'>-1</c><d Type='System.Int16'>4294967295</d><e "
     "Type='System.Int32'>-3000000000</e>",
     "a: i32 2147483647, b: u32 2147483647, c: u32 4294967295, d: i16 -1, e: i32 -2147483648", ""},
    {"OnlyTrueIsTrue",
     "<a Type='System.Boolean'>true</a><b Type='System.Boolean'>TRUE</b><c Type='System.Boolean'>1</c>"
     "<d Type='System.Boolean'> true </d>",
     "a: b true, b: b false, c: b false, d: b true", ""},
    {"Strings",
     "<a Type='System.String'/><b Type='System.String'></b><c Type='System.String'> x \n y </c>"
     "<d Type='System.String'><![CDATA[ <x> ]]></d><e Type='System.String'>%s%n&lt;&#65;&#x42;</e>"
     "<f Type='System.String'><x/></f>",
     "a: \"\", b: \"\", c: \"x y\", d: \" <x> \", e: \"%s%n<AB\"", ""},
    {"TheFirstTextCounts",
     "<a Type='System.Int32'><!-- 1 --><x>2</x>3<y/>4</a><b Type='System.Int32'><!-- 5 --></b>", "a: i32 3",
     ""},
    {"WithoutTextNothing",
     "<a Type='System.Int32'/><b Type='What'/><c/><d Type='System.Boolean'> </d><e Type='System.Int32'>1</e>",
     "e: i32 1", ""},
    {"UnknownTypes",
     "<a Type='What%s'>x</a><b>y</b><c Type='What[]'><item>1</item></c>"
     "<d Type='What[]' BufferFile='f'/><e Type='System.Boolean[]' BufferFile='f'/>"
     "<f Type='System.String[]' BufferFile='f'/><g Type='[]System.Int32'/><h Type='bag'>x</h>"
     "<i Type='System.int32'>1</i><j Type='System.Int32'>1</j>",
     "j: i32 1",
     "DataIO: unsupported data type for parsing: What%s.\n"
     "DataIO: unsupported data type for parsing: .\n"
     "DataIO: unsupported data type: What[].\n"
     "DataIO: unspported binary array type: What[].\n"
     "DataIO: unspported binary array type: System.Boolean[].\n"
     "DataIO: unspported binary array type: System.String[].\n"
     "DataIO: unsupported data type: []System.Int32.\n"
     "DataIO: unsupported data type for parsing: bag.\n"
     "DataIO: unsupported data type for parsing: System.int32.\n"},
    {"AttributesInAnyOrder", "<a Other='1' Size='2' Type='System.Int32' type='Bag'>5</a>", "a: i32 5", ""},
    {"Items",
     "<a Type='System.Int32[]' Size='9'>x<item Type='Bag'>1</item><other>2</other><item/><item><x/></item>"
     "<item><x/>3</item></a><b Type='System.Boolean[]'><item>true</item><item>no</item></b>"
     "<c Type='System.Double[]'><item/></c><d Type='System.Single[]'/>"
     "<e Type='System.Byte[]' BufferFile=''><item>7</item></e>",
     "a: i32[2] 1 3, b: b[2] true false, e: u8[1] 7", ""},
    {"VectorsOfTexts",
     "<a Type='System.String[]'><item>x</item><item/><other>y</other><item><z/></item></a>"
     "<b Type='System.String[]'/>",
     "a: |\"x\"|\"\", b: ", ""},
    {"VectorsOfBags",
     "<a Type='Bag[]' BufferFile='f'><item><x Type='System.Int32'>1</x></item><other/><item Type='Bag'/></a>"
     "<b Type='Bag[]'/>",
     "a: |x: i32 1|, b: ", ""},
    {"TheLaterOneWins",
     "<a Type='System.Int32'>1</a><b Type='System.Int32'>2</b><a Type='System.String'>3</a>",
     "a: \"3\", b: i32 2", ""},
    {"NoWayOut",
     "<a Type='System.Byte[]' Size='2' BufferFile='../secret'/>"
     "<b Type='System.Byte[]' Size='2' BufferFile='sub/secret'/>"
     "<c Type='System.Byte[]' Size='2' BufferFile='sub\\secret'/>"
     "<d Type='System.Byte[]' Size='2' BufferFile='/etc/passwd'/>"
     "<e Type='System.Byte[]' Size='2' BufferFile='C:secret'/>"
     "<f Type='System.Byte[]' Size='2' BufferFile='..'/>"
     "<g Type='System.Byte[]' Size='2' BufferFile='sub'/>"
     "<h Type='System.Byte[]' Size='2' BufferFile='&#x2e;./secret'/>"
     "<i Type='System.Byte[]' Size='2' BufferFile='beside'/>",
     "a: u8[2] 0 0, b: u8[2] 0 0, c: u8[2] 0 0, d: u8[2] 0 0, e: u8[2] 0 0, f: u8[2] 0 0, g: u8[2] 0 0, "
     "h: u8[2] 0 0, i: u8[2] 115 101",
     ""},
    {"Sizes",
     "<a Type='System.Int16[]' BufferFile='beside'/><b Type='System.Int16[]' Size='' BufferFile='beside'/>"
     "<c Type='System.Int16[]' Size='x3' BufferFile='beside'/><d Type='System.Int16[]' Size=' 4x' "
     "BufferFile='beside'/><e Type='System.Int16[]' Size='0' BufferFile='beside'/>"
     "<f Type='System.Double[]' Size='3' BufferFile='missing'/>"
     "<g Type='System.Double[]' Size='8388600' BufferFile='missing'/>",
     "a: i16[1] 25971, b: i16[1] 25971, c: i16[1] 25971, d: i16[4] 25971 29283 29797 0, e: i16[0], f: f64[3] "
     "0.000000 0.000000 0.000000, g: f64[8388600] 0.000000 0.000000 0.000000 0.000000",
     ""},
    {"NegativeSizeEndsItsLevel",
     "<x Type='Bag'><a Type='System.Int32'>1</a><b Type='System.Int16[]' Size='-1' BufferFile='beside'/>"
     "<c Type='System.Int32'>2</c></x><d Type='System.Int32'>3</d>",
     "x: {a: i32 1}, d: i32 3", ""},
    {"UnbackedSizeEndsItsLevel",
     "<x Type='Bag'><b Type='System.Double[]' Size='8388609' BufferFile='beside'/><c "
     "Type='System.Int32'>2</c>"
     "</x><y Type='Bag'><b Type='System.SByte[]' Size='99999999999' BufferFile='missing'/></y>",
     "x: {}, y: {}", ""},
};

TEST_F(BagIOTest, ReadsWithTolerance) {
    std::filesystem::create_directory(folder.Path("sub"));
    folder.Write("sub/secret", "secret");
    folder.Write("beside", "secret");
    for (Reading const& each : kReadings) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(Load(each.elements), each.loaded);
        EXPECT_EQ(printed, each.printed);
    }
    std::filesystem::resize_file(folder.Write("large", ""), (64 << 20) + 8);
    EXPECT_EQ(Load("<a Type='System.Double[]' Size='8388609' BufferFile='large'/>").substr(0, 15),
              "a: f64[8388609]");
}

// A file counts once, and the zeros of all arrays together, at any depth and in each document anew.
TEST_F(BagIOTest, ADocumentHasOneAllowanceOfMemory) {
    folder.Write("f", std::string(100, 'x'));
    std::string const arrays =
        "<a Type='System.Byte[]' Size='33554532' BufferFile='f'/>"
        "<x Type='Bag'><b Type='System.Byte[]' Size='33554332' BufferFile='missing'/>"
        "<c Type='System.Byte[]' Size='100' BufferFile='f'/></x>";
    std::string const more = "<d Type='System.Byte[]' Size='1' BufferFile='missing'/>";
    for (int i = 0; i < 2; ++i) {
        std::string const loaded =
            Load("<y Type='Bag'>" + arrays + more + "</y><after Type='System.Byte'>1</after>");
        EXPECT_NE(loaded.find("x: {b: u8[33554332] 0 0 0 0, c: u8[100] 120"), loaded.npos) << loaded;
        EXPECT_NE(loaded.find("}}, after: u8 1"), loaded.npos) << loaded;
    }
}

TEST_F(BagIOTest, ManyKeysAreReadInTimeThatGrowsWithThem) {
    auto const seconds = [&](int count) {
        std::string elements;
        for (int i = 0; i < count; ++i) {
            std::string const key = 'k' + std::to_string(i);
            elements += '<' + key + " Type='System.Byte'>1</" + key + '>';
        }
        folder.Write("many.xml", "<Bag>" + elements + "</Bag>");
        // The best of some, since a busy machine counts its pauses too.
        double best = HUGE_VAL;
        for (int i = 0; i < 3; ++i) {
            std::clock_t const start = std::clock();
            EXPECT_EQ(BagIO().LoadBag(folder.Path("many.xml"))->Key().size(),
                      static_cast<std::size_t>(count));
            best = std::min(best, static_cast<double>(std::clock() - start));
        }
        return best;
    };
    // In the square it would be the hundredfold.
    EXPECT_LT(seconds(40000), 40 * seconds(4000));
}

TEST_F(BagIOTest, ReadsAnyRootAndAnyBytes) {
    constexpr char kOne[] = "<R><a Type='System.String'>x</a></R>";
    std::string const latin = std::string(kHead) + "<R><a Type='System.String'>\xE9</a></R>";
    std::string attributes;
    for (int i = 0; i < 256; ++i) attributes += " a" + std::to_string(i) + "='1'";
    std::pair<std::string, std::string> const readable[] = {
        {kOne, "a: \"x\""},
        {std::string("\xEF\xBB\xBF") + kOne, "a: \"x\""},
        {"<!DOCTYPE R><!-- <Bag> -->" + std::string(kOne) + "<R/> trailing", "a: \"x\""},
        {"<R>\r\n<a Type='System.String'>x\ry</a>\r</R>", "a: \"x y\""},
        {kOne + std::string("\0<", 2), "a: \"x\""},
        {latin, "a: \"\xE9\""},
        {std::string(kHead) + "<R><a Type='System.String'>\xC3\xA9\xF0\x9F\x98\x80&#xE9;</a></R>",
         "a: \"\xC3\xA9\xF0\x9F\x98\x80\xC3\xA9\""},
        {"<R Type='&bad;'><a Type='System.String'>&#x41;&unknown;</a></R>", "a: \"Aunknown;\""},
        {"<R>" + Repeated("<![CDATA[<a>]]><!--<a>--><b c='<a>'/>", 1000) + "</R>", ""},
        {"<R a='" + std::string(1 << 22, 'x') + "'/>", ""},
        {"<R>" + Repeated("&#x41;", 200000) + "</R>", ""},
        {"<R" + attributes + "/>", ""},
        {Repeated("<b>", 256) + Repeated("</b>", 256), ""},
    };
    std::string const unreadable[] = {
        "", std::string(100, '\0'), "no document", "<R><a Type='System.String'>x</a>",
        "<R><a Type='System.String>x</a></R>", "<R><a Type='System.String'>x</b></R>", "<R a='\xF0", "<R>&#",
        "<R><!--", "<R><![CDATA[", "<?xml ", std::string(kHead) + "<R>\xEF\xBB", "<R a b='1'/>",
        Repeated("<a>", 100000), Repeated("<a>", 100000) + Repeated("</a>", 100000),
        Repeated("<a b='<!--'>", 100000) + Repeated("<!-- -->", 100000),
        "<R>" + Repeated("&#", 200000) + "</R>", "<R" + attributes + " b='1'/>",
        Repeated("<b>", 256) + "<b/>" + Repeated("</b>", 256),
        // One part too many: elements, attributes, texts and comments count alike.
        "<R>" + Repeated("<a b='1'>x<!-- --></a>", 1 << 19) + "</R>"};
    for (auto const& [document, loaded] : readable) {
        SCOPED_TRACE(document.substr(0, 60));
        EXPECT_EQ(LoadDocument(document), loaded);
        EXPECT_EQ(printed, "");
    }
    for (std::string const& document : unreadable) {
        SCOPED_TRACE(document.substr(0, 60));
        EXPECT_EQ(LoadDocument(document), "");
        EXPECT_EQ(printed, Failed(folder.Path("loaded.xml")));
    }
}

TEST_F(BagIOTest, WhatIsNoRegularFileCannotBeRead) {
    std::vector<std::string> paths = {folder.Path(), folder.Path("missing"), "", "%s%n", "/dev/zero"};
#if !defined(_WIN32)
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    paths.push_back(folder.Path("pipe"));
#endif
    for (std::string const& path : paths) {
        EXPECT_EQ(LoadPath(path), "");
        EXPECT_EQ(printed, Failed(path));
    }
#if !defined(_WIN32)
    EXPECT_EQ(Load("<a Type='System.Byte[]' Size='1' BufferFile='pipe'/>"), "a: u8[1] 0");
#endif
    std::filesystem::resize_file(folder.Write("huge", "<R/>"), std::uint64_t{1} << 32);
    EXPECT_EQ(LoadPath(folder.Path("huge")), "");
    EXPECT_EQ(printed, Failed(folder.Path("huge")));
}

}  // namespace
}  // namespace ZPA
