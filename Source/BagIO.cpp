// BagIO's hooks, what it offers to those who derive from it, and the dump of a bag.
#include <Basics/BagIO.h>

#include <cstdio>
#include <unordered_set>
#include <vector>

#include "Source/Internal/BagElements.h"
#include "Source/Internal/BagEntries.h"

namespace ZPA {
namespace {

template <typename... T> std::string StorageNameOf(std::type_info const& type, Types<T...>) {
    std::string name = kStorageName<void>;
    (void)((type == typeid(T) && (name = kStorageName<T>, true)) || ...);
    return name;
}

std::string TextOf(BagEntry const& entry) {
    try {
        char text[1024];
        return AnyHandle(entry.value).toString(text, sizeof text);
    } catch (char const* message) {
        return message;
    }
}

}  // namespace

BagIO::BagIO() {}

bool BagIO::SaveSpecialType(TiXmlElement*, ZPA_Ptr<Bag>, std::string const&, std::string const&,
                            std::string const&) {
    return false;
}

bool BagIO::LoadSpecialType(ZPA_Ptr<Bag>, TiXmlNode const*, std::string const&) { return false; }

void BagIO::AddChildElement(TiXmlElement* parent, std::string name, std::string type, std::string value) {
    if (parent) AddTextElement(*parent, name, type, value);
}

std::string BagIO::GetStorageTypeName(std::type_info const& type, bool isArray) {
    return StorageNameOf(type, ScalarsAndText()) + (isArray ? "[]" : "");
}

void BagIO::Scan(ZPA_Ptr<Bag> const& bag) {
    if (!bag.GetPointer()) return;
    // Bags nest deeper than calls do.
    struct Level {
        std::string key;
        Bag const* bag;
        BagEntries::Iterator next;
    };
    std::vector<Level> levels;
    std::unordered_set<Bag const*> open;
    auto const enter = [&](std::string const& key, Bag const& inner) {
        levels.push_back({key, &inner, BagEntries(inner).begin()});
        open.insert(&inner);
    };
    enter("", *bag);
    while (true) {
        Level& level = levels.back();
        if (level.next == BagEntries(*level.bag).end()) {
            if (levels.size() == 1) return;
            std::printf("-- %s end   --\n", level.key.c_str());
            open.erase(level.bag);
            levels.pop_back();
            continue;
        }
        BagEntry const entry = *level.next;
        ++level.next;
        if (entry.value->Type() != typeid(ZPA_Ptr<Bag>)) {
            std::printf("%s %s\n", entry.key.c_str(), TextOf(entry).c_str());
            continue;
        }
        std::printf("-- %s start --\n", entry.key.c_str());
        Bag const* const inner = HeldBag(*entry.value);
        if (inner && open.count(inner) == 0) {
            enter(entry.key, *inner);
        } else {
            std::printf("-- %s end   --\n", entry.key.c_str());
        }
    }
}

}  // namespace ZPA
