// ZPA_BagIO: how images become elements and raw files, and come back.
#include <Basics/RawFile.h>
#include <Basics/ZPA_BagIO.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "Source/Internal/BagElements.h"
#include "Source/Internal/BagEntries.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Memory.h"
#include "Source/Internal/Numbers.h"
#include "Source/Internal/RawBlock.h"
#include "Source/Internal/SideFile.h"
#include "Source/Internal/TypeName.h"

namespace ZPA {
namespace {

constexpr char kZpaType[] = "ZPA_Type";
constexpr char kWidth[] = "Width";
constexpr char kHeight[] = "Height";
constexpr char kPixelSpacing[] = "PixelSpacing";
constexpr char kBitsPerPixel[] = "BitsPerPixel";
constexpr char kBuffer[] = "Buffer";
constexpr char kStructArray[] = "StructArray";

template <typename T> using ImagePtr = ZPA_Ptr<ZPA_Image<T>>;
template <typename T> using ImageVector = std::vector<ImagePtr<T>>;

// What separates a folder and a file's name where images are read.
#if defined(_WIN32)
constexpr char kSeparator[] = "\\";
#else
constexpr char kSeparator[] = "/";
#endif

char const* Suffix(eTypeCode type) {
    switch (type) {
        case eSByte:
            return "u8";
        case eByte:
            return "mask";
        case eInt16:
            return "i16";
        case eInt32:
            return "i32";
        case eDouble:
            return "f64";
        default:
            return "raw";
    }
}

// Bytes of a pixel as its bits tell, but no more than the image has memory.
std::uint64_t DumpedBytes(ImageAttributes const& image, std::size_t elementSize) {
    if (image.width < 1 || image.height < 1 || image.stride < 1 || image.bitsperpixel < 1) return 0;
    auto const height = static_cast<std::uint64_t>(image.height);
    auto const width = static_cast<std::uint64_t>(image.width);
    auto const stride = static_cast<std::uint64_t>(image.stride);
    auto const pixels = width * height;
    // The last row of a view has no padding, and rows narrower than they are wide have no room beyond.
    auto const elements = (height - 1) * stride + std::min(stride, width);
    std::uint64_t const bytesPerPixel = (static_cast<std::uint64_t>(image.bitsperpixel) + 7) / 8;
    std::uint64_t const memory = BlockBytes(elements, elementSize);
    return pixels > memory / bytesPerPixel ? memory : pixels * bytesPerPixel;
}

// Adds what describes an image to its element, and writes its pixels.
template <typename T>
void SaveImage(TiXmlElement& element, ZPA_Image<T> const& image, std::string const& base,
               std::string const& directory) {
    ImageAttributes const attributes = image;
    std::string const width = std::to_string(attributes.width);
    std::string const height = std::to_string(attributes.height);
    std::string const file = base + '.' + width + '.' + height + '.' + Suffix(attributes.type);
    std::string const path = SideFilePath(directory, "/", file);
    if (!path.empty()) (void)WriteBlock(attributes.buffer, DumpedBytes(attributes, sizeof(T)), path.c_str());

    AddTextElement(element, kZpaType, kStorageName<std::string>, TypeName(typeid(ImagePtr<T>)));
    AddTextElement(element, kWidth, kStorageName<int>, width);
    AddTextElement(element, kHeight, kStorageName<int>, height);
    AddTextElement(element, kPixelSpacing, kStorageName<int>, std::to_string(attributes.pixelspacing));
    AddTextElement(element, kBitsPerPixel, kStorageName<int>, std::to_string(attributes.bitsperpixel));
    TiXmlElement* const buffer = AddElement(element, kBuffer, ArrayOf(kStorageName<unsigned char>));
    buffer->SetAttribute(kSize, std::to_string(std::int64_t{attributes.width} * attributes.height));
    buffer->SetAttribute(kBufferFile, file);
}

// Where the document keeps an entry, and what its files would be called.
struct Place {
    TiXmlElement& parent;
    std::string const& prefix;
    std::string const& directory;
};

template <typename T> bool SavedAsImage(Place const& place, BagEntry const& entry) {
    auto const* const image = HeldAs<ImagePtr<T>>(*entry.value);
    if (!image || !image->GetPointer()) return false;
    SaveImage(*AddElement(place.parent, entry.key, kBag), **image, place.prefix + '.' + entry.key,
              place.directory);
    return true;
}

template <typename T> bool SavedAsImageVector(Place const& place, BagEntry const& entry) {
    auto const* const images = HeldAs<ImageVector<T>>(*entry.value);
    if (!images) return false;
    AddTextElement(place.parent, kZpaType, kStorageName<std::string>, TypeName(typeid(ImagePtr<T>)));
    TiXmlElement* const vector = AddElement(place.parent, entry.key, kBagArray);
    for (std::size_t n = 0; n < images->size(); ++n) {
        TiXmlElement* const item = AddElement(*vector, kItem, kBag);
        std::string const base = place.prefix + '.' + entry.key + '.' + std::to_string(n) + '.' + entry.key;
        if ((*images)[n].GetPointer()) SaveImage(*item, *(*images)[n], base, place.directory);
    }
    return true;
}

bool Contains(std::string const& text, char const* word) { return text.find(word) != text.npos; }

// Empty if the first child is no text.
std::string FirstChildText(TiXmlNode const& element) {
    TiXmlNode const* const child = element.FirstChild();
    return child && child->ToText() ? child->ValueStr() : std::string();
}

// The type's name of an image element; empty for any other element.
std::string ImageTypeName(TiXmlNode const* node) {
    if (!node) return {};
    for (auto const* child = node->FirstChildElement(kZpaType); child;
         child = child->NextSiblingElement(kZpaType)) {
        std::string text = FirstChildText(*child);
        if (Contains(text, "ZPA_Image")) return text;
    }
    return {};
}

// The image that the attributes describe, with the pixels of its file.
template <typename T>
ImagePtr<T> ReadImage(ImageAttributes const& described, std::string const& bufferFile,
                      std::string const& directory) {
    std::string const path = SideFilePath(directory, kSeparator, bufferFile);
    if (described.width > 0 && described.height > 0)
        RequireBacked(
            BlockBytes(ElementsSpanned(described.width, described.height, described.width), sizeof(T)), path,
            SideFileLength(path));

    // Not by ReadRawFile: a name with numbers in it would overrule the document.
    void* read = nullptr;
    if (!path.empty())
        (void)ReadRaw(path.c_str(), &read, TypeCodeOf<T>, described.width, described.height, described.width,
                      false);
    std::unique_ptr<T[]> pixels(static_cast<T*>(read));
    auto image =
        std::make_unique<ZPA_Image<T>>(pixels.get(), described.width, described.height, described.width,
                                       described.bitsperpixel, described.pixelspacing, true, true);
    (void)pixels.release();
    return ImagePtr<T>(image.release());
}

}  // namespace

bool ZPA_BagIO::SaveSpecialType(TiXmlElement* parent, ZPA_Ptr<Bag> bag, std::string const& key,
                                std::string const& prefix, std::string const& directory) {
    if (!parent || !bag.GetPointer()) return false;
    BagEntries const entries(*bag);
    auto const found = entries.Find(key);
    if (found == entries.end()) return false;
    Place const place{*parent, prefix, directory};
    BagEntry const entry = *found;
    return SavedAsImage<unsigned char>(place, entry) || SavedAsImageVector<unsigned char>(place, entry) ||
           SavedAsImage<unsigned short>(place, entry) || SavedAsImageVector<unsigned short>(place, entry) ||
           SavedAsImage<short>(place, entry) || SavedAsImage<int>(place, entry) ||
           SavedAsImage<double>(place, entry);
}

bool ZPA_BagIO::LoadSpecialType(ZPA_Ptr<Bag> bag, TiXmlNode const* node, std::string const& directory) {
    if (!bag.GetPointer() || !IsImageNode(node)) return false;
    LoadImageBag(bag, node, node->ValueStr(), directory);
    return true;
}

void ZPA_BagIO::LoadImageBag(ZPA_Ptr<Bag>& bag, TiXmlNode const* node, std::string const& key,
                             std::string const& directory) {
    eTypeCode const type = GetImageType(node);
    auto const read = [&](auto element, TiXmlNode const* described) {
        ImageAttributes attributes;
        std::string bufferFile;
        GetImageAttributes(described, attributes, bufferFile);
        return ReadImage<typename decltype(element)::type>(attributes, bufferFile, directory);
    };
    auto const nothing = [] { return SOLVANE_UNSUPPORTED_TYPE; };
    if (!IsStructArray(node)) {
        auto const load = [&](auto element) {
            bag->Set(key, read(element, node));
            return SOLVANE_OK;
        };
        (void)Dispatch<unsigned char, unsigned short, short, int, double>(type, load, nothing);
        return;
    }

    ZPA_Ptr<Bag> const list(new Bag);
    auto const loadAll = [&](auto element) {
        ImageVector<typename decltype(element)::type> images;
        for (auto const* child = node->FirstChildElement(); child; child = child->NextSiblingElement())
            if (child->ValueStr() != kStructArray && child->ValueStr() != kZpaType)
                images.push_back(read(element, child));
        list->Set(kStructArray, images);
        return SOLVANE_OK;
    };
    (void)Dispatch<unsigned char, unsigned short>(type, loadAll, nothing);
    if (type != eUnknown) bag->Set(key, list);
}

bool ZPA_BagIO::IsImageNode(TiXmlNode const* node) { return !ImageTypeName(node).empty(); }

bool ZPA_BagIO::IsStructArray(TiXmlNode const* node) { return node->FirstChildElement(kStructArray); }

eTypeCode ZPA_BagIO::GetImageType(TiXmlNode const* node) {
    // Longer names ahead of those that they contain.
    static constexpr std::pair<char const*, eTypeCode> kNames[] = {{"unsigned char", eByte},
                                                                   {"unsigned short", eUInt16},
                                                                   {"short", eInt16},
                                                                   {"int", eInt32},
                                                                   {"double", eDouble}};
    std::string const name = ImageTypeName(node);
    for (auto const& each : kNames)
        if (Contains(name, each.first)) return each.second;
    return eUnknown;
}

void ZPA_BagIO::GetImageAttributes(TiXmlNode const* node, ImageAttributes& attributes,
                                   std::string& bufferFile) {
    attributes.type = GetImageType(node);
    for (auto const* child = node->FirstChildElement(); child; child = child->NextSiblingElement()) {
        std::string const& name = child->ValueStr();
        if (name == kBuffer && child->NoChildren()) {
            NodeAttribute read;
            readNodeAttribute(child, read);
            bufferFile = read.bufferFile;
        }
        int* const number = name == kWidth          ? &attributes.width
                            : name == kHeight       ? &attributes.height
                            : name == kPixelSpacing ? &attributes.pixelspacing
                            : name == kBitsPerPixel ? &attributes.bitsperpixel
                                                    : nullptr;
        if (number) *number = ParseInt(FirstChildText(*child));
    }
    attributes.stride = attributes.width;
}

}  // namespace ZPA
