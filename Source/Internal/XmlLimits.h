// What a document may demand of the XML parser.
#ifndef ZPA_SOURCE_INTERNAL_XMLLIMITS_H
#define ZPA_SOURCE_INTERNAL_XMLLIMITS_H

#include <string_view>

namespace ZPA {

// The parser calls itself for every level of elements, and walks up all of them for every node.
inline constexpr int kDeepestElement = 256;
// The parser compares each attribute with all others of its element.
inline constexpr int kMostAttributes = 256;
// In memory each element, attribute, text and comment takes a hundred bytes and more, however short it is.
inline constexpr int kMostParts = 1 << 21;

// Whether the parser may be given a document, which ends in a zero: one past the limits could use up the
// stack or take for ever. Text that is no XML is fine as long as the parser sees that by itself.
bool FitsParser(char const* text);

// Whether all characters have as many bytes as their first one announces in UTF-8. Else the parser would step
// over the beginning of a tag, or the end of the text; it must be told that the document has another
// encoding.
bool IsUtf8(std::string_view text);

}  // namespace ZPA

#endif
