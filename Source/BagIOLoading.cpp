// BagIO: how a document becomes a bag.
#include <Basics/BagIO.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

#include "Source/Internal/BagElements.h"
#include "Source/Internal/DecimalText.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Numbers.h"
#include "Source/Internal/SideFile.h"
#include "Source/Internal/XmlDocument.h"

namespace ZPA {
namespace {

// Null if the element has no text.
std::string const* FirstText(TiXmlNode const& element) {
    for (TiXmlNode const* child = element.FirstChild(); child; child = child->NextSibling())
        if (child->ToText()) return &child->ValueStr();
    return nullptr;
}

template <typename T> T Parse(std::string const& text) {
    if constexpr (std::is_same_v<T, bool>) {
        return text == "true";
    } else if constexpr (std::is_same_v<T, std::string>) {
        return text;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(ParseDecimal(text));
    } else {
        return static_cast<T>(ParseInt(text));
    }
}

bool IsJoined(std::string_view text, std::string_view front, std::string_view back) {
    return text.size() == front.size() + back.size() && text.substr(0, front.size()) == front &&
           text.substr(front.size()) == back;
}

// Runs load(Element<T>) for the T whose name, with `suffix` behind it, is `type`. False if there is none.
template <typename... T, typename Load>
bool LoadAsOneOf(Types<T...>, std::string const& type, char const* suffix, Load const& load) {
    return ((IsJoined(type, kStorageName<T>, suffix) && (load(Element<T>{}), true)) || ...);
}

template <typename Work> void ForEachItem(TiXmlNode const& node, Work const& work) {
    for (auto const* item = node.FirstChildElement(kItem); item; item = item->NextSiblingElement(kItem))
        work(*item);
}

}  // namespace

ZPA_Ptr<Bag> BagIO::LoadBag(std::string const& path) {
    ZPA_Ptr<Bag> bag(new Bag);
    try {
        DocumentAllowance const allowance;
        TiXmlDocument document;
        if (LoadDocument(path, document)) {
            loadAllChildrenNodes(document.FirstChildElement(), bag, FolderOf(path));
            return bag;
        }
    } catch (...) {  // without memory for the document
    }
    std::printf("Failed to load file \"%s\"\n", path.c_str());
    return bag;
}

bool BagIO::loadAllChildrenNodes(TiXmlNode const* node, ZPA_Ptr<Bag>& bag, std::string const& directory) {
    if (!node) return true;
    try {
        for (auto const* child = node->FirstChildElement(); child; child = child->NextSiblingElement()) {
            NodeAttribute attribute;
            attribute.directory = directory;
            readNodeAttribute(child, attribute);
            if (attribute.type == kBag) {
                if (LoadSpecialType(bag, child, directory)) continue;
                ZPA_Ptr<Bag> inner(new Bag);
                loadAllChildrenNodes(child, inner, directory);
                bag->Set(attribute.name, inner);
            } else if (attribute.type == kBagArray) {
                loadDataArrayFromItemList(bag, attribute, child);
            } else if (attribute.type.find("[]") == std::string::npos) {
                loadValueNode(child, bag, attribute);
            } else if (attribute.bufferFile.empty()) {
                loadArrayNodeFromItemList(bag, attribute, child);
            } else {
                loadArrayNodeFromBufferFile(bag, attribute);
            }
        }
    } catch (...) {
        return false;
    }
    return true;
}

bool BagIO::readNodeAttribute(TiXmlElement const* element, NodeAttribute& attribute) {
    if (!element) return false;
    attribute.name = element->ValueStr();
    return readAttribute(element, attribute.type, attribute.size, attribute.bufferFile);
}

bool BagIO::readAttribute(TiXmlElement const* element, std::string& type, int& size,
                          std::string& bufferFile) {
    bool typed = false;
    for (auto const* attribute = element->FirstAttribute(); attribute; attribute = attribute->Next()) {
        std::string const& name = attribute->NameTStr();
        std::string const& value = attribute->ValueStr();
        if (name == kType) {
            type = value;
            typed = true;
        } else if (name == kSize) {
            if (BeginsWithNumber(value)) size = ParseInt(value);
        } else if (name == kBufferFile) {
            bufferFile = value;
        }
    }
    return typed;
}

void BagIO::loadValueNode(TiXmlNode const* node, ZPA_Ptr<Bag>& bag, NodeAttribute& attribute) {
    if (node->NoChildren() && attribute.type == kStorageName<std::string>) {
        bag->Set(attribute.name, "");
        return;
    }
    std::string const* const text = FirstText(*node);
    if (!text) return;
    bool const known = LoadAsOneOf(ScalarsAndText(), attribute.type, "", [&](auto element) {
        bag->Set(attribute.name, Parse<typename decltype(element)::type>(*text));
    });
    if (!known) std::printf("DataIO: unsupported data type for parsing: %s.\n", attribute.type.c_str());
}

void BagIO::loadArrayNodeFromBufferFile(ZPA_Ptr<Bag>& bag, NodeAttribute& attribute) {
    bool const known = LoadAsOneOf(Numbers(), attribute.type, "[]", [&](auto element) {
        using T = typename decltype(element)::type;
        bag->Set(attribute.name, ReadSideFile<T>(attribute.directory, attribute.bufferFile, attribute.size),
                 attribute.size);
    });
    if (!known) std::printf("DataIO: unspported binary array type: %s.\n", attribute.type.c_str());
}

void BagIO::loadArrayNodeFromItemList(ZPA_Ptr<Bag>& bag, NodeAttribute const& attribute,
                                      TiXmlNode const* node) {
    if (attribute.type == ArrayOf(kStorageName<std::string>)) {
        loadStringArrayFromItemList(bag, attribute, node);
        return;
    }
    bool const known = LoadAsOneOf(Scalars(), attribute.type, "[]", [&](auto element) {
        using T = typename decltype(element)::type;
        std::vector<T> values;
        ForEachItem(*node, [&](TiXmlElement const& item) {
            if (std::string const* const text = FirstText(item)) values.push_back(Parse<T>(*text));
        });
        if (values.empty()) return;
        ZPA_Ptr<T> const array(new T[values.size()]);
        std::copy(values.begin(), values.end(), array.GetPointer());
        bag->Set(attribute.name, array, static_cast<int>(values.size()));
    });
    if (!known) std::printf("DataIO: unsupported data type: %s.\n", attribute.type.c_str());
}

void BagIO::loadStringArrayFromItemList(ZPA_Ptr<Bag>& bag, NodeAttribute const& attribute,
                                        TiXmlNode const* node) {
    std::vector<std::string> texts;
    ForEachItem(*node, [&](TiXmlElement const& item) {
        std::string const* const text = FirstText(item);
        if (item.NoChildren()) {
            texts.emplace_back();
        } else if (text) {
            texts.push_back(*text);
        }
    });
    bag->Set(attribute.name, texts);
}

void BagIO::loadDataArrayFromItemList(ZPA_Ptr<Bag>& bag, NodeAttribute& attribute, TiXmlNode const* node) {
    std::vector<ZPA_Ptr<Bag>> bags;
    ForEachItem(*node, [&](TiXmlElement const& item) {
        ZPA_Ptr<Bag> inner(new Bag);
        loadAllChildrenNodes(&item, inner, attribute.directory);
        bags.push_back(inner);
    });
    bag->Set(attribute.name, bags);
}

}  // namespace ZPA
