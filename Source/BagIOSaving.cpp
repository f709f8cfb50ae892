// BagIO: how a bag becomes a document.
#include <Basics/BagIO.h>

#include "Source/Internal/BagElements.h"
#include "Source/Internal/BagEntries.h"
#include "Source/Internal/DecimalText.h"
#include "Source/Internal/GuardedVector.h"
#include "Source/Internal/SideFile.h"
#include "Source/Internal/XmlLimits.h"
#include "Source/Platform/File.h"

namespace ZPA {
namespace {

// In the deepest bag of a document that can be read there is room for images: a vector, its items, and what
// describes each.
constexpr int kDeepestBag = kDeepestElement - 6;

// Longer arrays go to side files.
constexpr int kMostItems = 100;

bool NestsWithin(Bag const& bag, int levels) {
    if (levels == 0) return false;
    for (BagEntry const entry : BagEntries(bag)) {
        Bag const* const inner = HeldBag(*entry.value);
        if (inner && !NestsWithin(*inner, levels - 1)) return false;
    }
    return true;
}

std::string Text(bool value) { return value ? "true" : "false"; }
std::string Text(std::string const& value) { return value; }
template <typename T> std::string Text(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        return DecimalText(value);
    } else {
        return std::to_string(value);
    }
}

template <typename T> bool SavedAs(TiXmlElement& parent, BagEntry const& entry) {
    T const* const value = HeldAs<T>(*entry.value);
    if (value) AddTextElement(parent, entry.key, kStorageName<T>, Text(*value));
    return value;
}
template <typename... T> bool SavedAsOneOf(Types<T...>, TiXmlElement& parent, BagEntry const& entry) {
    return (SavedAs<T>(parent, entry) || ...);
}

// Where the document keeps an array, and what its side file would be called.
struct ArrayPlace {
    TiXmlElement& parent;
    std::string const& prefix;
    std::string const& directory;
};

template <typename T> bool SavedAsArrayOf(ArrayPlace const& place, BagEntry const& entry) {
    auto const* const array = HeldAs<ZPA_Ptr<T>>(*entry.value);
    if (!array) return false;
    T const* const elements = array->GetPointer();
    TiXmlElement* const element = AddElement(place.parent, entry.key, ArrayOf(kStorageName<T>));
    if (entry.size > kMostItems && !std::is_same_v<T, bool>) {
        std::string const file = place.prefix + '.' + entry.key + ".buffer";
        WriteSideFile(place.directory, file, elements, sizeof(T) * static_cast<std::uint64_t>(entry.size));
        element->SetAttribute(kSize, entry.size);
        element->SetAttribute(kBufferFile, file);
    } else if (elements) {
        for (int i = 0; i < entry.size; ++i)
            AddTextElement(*element, kItem, kStorageName<T>, Text(elements[i]));
    }
    return true;
}
template <typename... T>
bool SavedAsArrayOfOneOf(Types<T...>, ArrayPlace const& place, BagEntry const& entry) {
    return (SavedAsArrayOf<T>(place, entry) || ...);
}

// A vector of texts or of bags stops the writing of its bag.
void StopAtGuardedVector(BagEntry const& entry) {
    if (HeldAs<std::vector<ZPA_Ptr<Bag>>>(*entry.value))
        ReadGuardedVector<std::vector<ZPA_Ptr<Bag>>>(entry.value);
    if (HeldAs<std::vector<std::string>>(*entry.value))
        ReadGuardedVector<std::vector<std::string>>(entry.value);
}

// The bag itself, if a look-up of the key finds the entry in it, or else a bag with this entry alone.
ZPA_Ptr<Bag> BagToFindIn(ZPA_Ptr<Bag> const& bag, BagEntry const& entry) {
    if (bag->Get(entry.key).GetPointer() == entry.value.GetPointer()) return bag;
    ZPA_Ptr<Bag> const alone(new Bag);
    BagEntries(*alone).Append(entry.key, entry.value, entry.size, entry.dirty);
    return alone;
}

}  // namespace

bool BagIO::SaveBag(ZPA_Ptr<Bag> const& bag, std::string const& path) { return SaveBag(bag, path, kBag); }

bool BagIO::SaveBag(ZPA_Ptr<Bag> const& bag, std::string const& path, std::string const& rootName) {
    try {
        if (bag.GetPointer() && !NestsWithin(*bag, kDeepestBag)) return false;
        TiXmlDocument document;
        document.LinkEndChild(new TiXmlDeclaration("1.0", "", ""));
        SaveBagHelper(bag, AddElement(document, rootName, kBag), rootName, FolderOf(path));
        // In binary: the same bytes on every platform.
        if (File const file{std::fopen(path.c_str(), "wb")}) document.SaveFile(file.get());
        return true;
    } catch (...) {
        return false;
    }
}

bool BagIO::SaveBagHelper(ZPA_Ptr<Bag> const& bag, TiXmlElement* parent, std::string const& prefix,
                          std::string const& directory) {
    if (!bag.GetPointer()) return true;
    bool result = true;
    try {
        for (BagEntry const entry : BagEntries(*bag)) {
            if (SavedAsOneOf(ScalarsAndText(), *parent, entry)) continue;
            if (auto const* const inner = HeldAs<ZPA_Ptr<Bag>>(*entry.value)) {
                SaveBagHelper(*inner, AddElement(*parent, entry.key, kBag), prefix + '.' + entry.key,
                              directory);
                continue;
            }
            if (SavedAsArrayOfOneOf(Scalars(), {*parent, prefix, directory}, entry)) continue;
            StopAtGuardedVector(entry);
            result = SaveSpecialType(parent, BagToFindIn(bag, entry), entry.key, prefix, directory);
        }
    } catch (...) {
        return false;
    }
    return result;
}

}  // namespace ZPA
