// How documents are read from files that nobody vouches for.
#ifndef ZPA_SOURCE_INTERNAL_XMLDOCUMENT_H
#define ZPA_SOURCE_INTERNAL_XMLDOCUMENT_H

#include <string>

class TiXmlDocument;

namespace ZPA {

// Parses a file into an empty document. False for what is no regular file of at most 256 MiB, what the parser
// must not be given, and what it cannot read.
bool LoadDocument(std::string const& path, TiXmlDocument& document);

}  // namespace ZPA

#endif
