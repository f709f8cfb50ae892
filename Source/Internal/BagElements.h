// The words of bag documents, and the elements that they are made of.
#ifndef ZPA_SOURCE_INTERNAL_BAGELEMENTS_H
#define ZPA_SOURCE_INTERNAL_BAGELEMENTS_H

#include <tinyxml.h>

#include <memory>
#include <string>

namespace ZPA {

inline constexpr char kType[] = "Type";
inline constexpr char kSize[] = "Size";
inline constexpr char kBufferFile[] = "BufferFile";
inline constexpr char kBag[] = "Bag";
inline constexpr char kBagArray[] = "Bag[]";
inline constexpr char kItem[] = "item";

// The scalars that bags hold, as the document calls them.
template <typename T> inline constexpr char const* kStorageName = "System.Unknown";
template <> inline constexpr char const* kStorageName<std::string> = "System.String";
template <> inline constexpr char const* kStorageName<char> = "System.SByte";
template <> inline constexpr char const* kStorageName<unsigned char> = "System.Byte";
template <> inline constexpr char const* kStorageName<short> = "System.Int16";
template <> inline constexpr char const* kStorageName<unsigned short> = "System.UInt16";
template <> inline constexpr char const* kStorageName<int> = "System.Int32";
template <> inline constexpr char const* kStorageName<unsigned int> = "System.UInt32";
template <> inline constexpr char const* kStorageName<double> = "System.Double";
template <> inline constexpr char const* kStorageName<float> = "System.Single";
template <> inline constexpr char const* kStorageName<bool> = "System.Boolean";

inline std::string ArrayOf(char const* storageName) { return std::string(storageName) + "[]"; }

// Lists of types, to be tried in their order.
template <typename... T> struct Types {};
using Numbers = Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double>;
using Scalars = Types<bool, char, unsigned char, short, unsigned short, int, unsigned int, float, double>;
using ScalarsAndText =
    Types<bool, char, unsigned char, short, unsigned short, int, unsigned int, float, double, std::string>;

// A new element behind the other children. It belongs to `parent`.
inline TiXmlElement* AddElement(TiXmlNode& parent, std::string const& name, std::string const& type) {
    auto element = std::make_unique<TiXmlElement>(name);
    element->SetAttribute(kType, type);
    parent.LinkEndChild(element.get());
    return element.release();
}

// The same with a text, which may be empty.
inline void AddTextElement(TiXmlNode& parent, std::string const& name, std::string const& type,
                           std::string const& text) {
    AddElement(parent, name, type)->LinkEndChild(new TiXmlText(text));
}

}  // namespace ZPA

#endif
