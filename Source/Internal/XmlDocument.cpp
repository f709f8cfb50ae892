// How documents are read from files that nobody vouches for.
#include "Source/Internal/XmlDocument.h"

#include <tinyxml.h>

#include <algorithm>

#include "Source/Internal/XmlLimits.h"
#include "Source/Platform/File.h"

namespace ZPA {
namespace {

// In memory a document takes many times its length.
constexpr std::uint64_t kLongestDocument = 256 << 20;

// The parser passes the end of the text by a few characters where it looks for the end of a comment, of a
// quoted value or of a character in vain.
constexpr std::size_t kBeyondEnd = 16;

// A line ends with one line feed, however it ended in the file.
void NormalizeLineEnds(std::string& text) {
    std::size_t out = std::min(text.find('\r'), text.size());
    for (std::size_t in = out; in < text.size(); ++in) {
        bool const half = text[in] == '\r' && in + 1 < text.size() && text[in + 1] == '\n';
        if (!half) text[out++] = text[in] == '\r' ? '\n' : text[in];
    }
    text.resize(out);
}

}  // namespace

bool LoadDocument(std::string const& path, TiXmlDocument& document) {
    std::uint64_t length = 0;
    File const file = OpenForReading(path.c_str(), length);
    if (!file || length > kLongestDocument) return false;

    std::string text(static_cast<std::size_t>(length), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    text.resize(std::min(text.find('\0'), text.size()));
    NormalizeLineEnds(text);
    TiXmlEncoding const encoding = IsUtf8(text) ? TIXML_DEFAULT_ENCODING : TIXML_ENCODING_LEGACY;
    text.append(kBeyondEnd, '\0');
    if (!FitsParser(text.c_str())) return false;
    document.Parse(text.c_str(), nullptr, encoding);
    return !document.Error();
}

}  // namespace ZPA
