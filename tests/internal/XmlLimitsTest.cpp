// The walk over a document's tags agrees with the parser on how deep they nest, whatever the document hides.
#include "Source/Internal/XmlLimits.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace ZPA {
namespace {

int Depth(TiXmlNode const& node) {
    int depth = 0;
    for (auto const* child = node.FirstChildElement(); child; child = child->NextSiblingElement())
        depth = std::max(depth, 1 + Depth(*child));
    return depth;
}

TEST(XmlLimits, HoldForWhateverTheParserMakesOfADocument) {
    std::istringstream words(
        "<a > /> </a> <b </b> <a> <a> </a> <a/> <!-- --> -- <![CDATA[ ]]> <?xml <?XML ?> version encoding "
        "standalone = \" ' &# &#x x 41; ; &lt; & # <! < / <? 1 a _ - . : \xEF\xBB\xBF \xEF\xBF\xBE \xC3\xA9 "
        "\xE9 \xF0 \xEF =\"v\" ='w' b=\"<a>\" UTF-8 \x7f");
    std::vector<std::string> pieces = {" ", "\n", "\t"};
    for (std::string word; words >> word;) pieces.push_back(word);
    std::mt19937 random(1);
    int deep = 0;
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string text = i % 2 ? "<?xml version=\"1.0\" ?>" : "";
        for (auto count = random() % 40; count > 0; --count) {
            text += pieces[random() % pieces.size()];
            if (random() % 16 == 0)
                for (auto levels = random() % 200; levels > 0; --levels) text += "<a>";
        }
        TiXmlEncoding const encoding = IsUtf8(text) ? TIXML_DEFAULT_ENCODING : TIXML_ENCODING_LEGACY;
        text.append(16, '\0');
        TiXmlDocument document;
        document.Parse(text.c_str(), nullptr, encoding);
        // One more is there where the parser stopped within a tag.
        bool const tooDeep = Depth(document) > kDeepestElement + 1;
        bool const fits = FitsParser(text.c_str());
        deep += tooDeep;
        refused += !fits;
        ASSERT_FALSE(tooDeep && fits) << text.c_str();
    }
    EXPECT_GT(deep, 100);
    EXPECT_LT(refused, 4 * deep);
}

TEST(XmlLimits, Utf8HasAsManyBytesAsItAnnounces) {
    for (char const* text : {"", "a", "\xC2\x80", "\xE1\x80\x80", "\xF4\x80\x80\x80z", "a\xC3\xA9"})
        EXPECT_TRUE(IsUtf8(text));
    for (char const* text : {"\x80", "\xC1\x80", "\xC2", "\xC2z", "\xE1\x80", "\xE1\x80z", "\xF0\x80\x80",
                             "\xF5\x80\x80\x80", "\xFF"})
        EXPECT_FALSE(IsUtf8(text)) << text;
}

}  // namespace
}  // namespace ZPA
