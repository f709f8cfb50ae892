// BagClone, BagAddition and BagQuery: what each copies and what it shares. Bags within bags are kept on lists
// of the operation's own, so that deep nesting does not deepen the stack.
#include <Basics/BagOperations.h>

#include <cstring>
#include <list>
#include <optional>
#include <set>
#include <stdexcept>
#include <unordered_set>

#include "Source/Internal/BagEntries.h"
#include "Source/Internal/GuardedVector.h"
#include "Source/Internal/TypeName.h"

namespace ZPA {
namespace {

template <typename T> ZPA_Ptr<Any> NewAny(T const& value) { return ZPA_Ptr<Any>(new Any(value)); }

template <typename T> ZPA_Ptr<T> CloneOf(ZPA_Ptr<T> const& array, int size) {
    if (size < 0) throw std::bad_array_new_length();
    auto const count = static_cast<std::size_t>(size);
    ZPA_Ptr<T> clone(new T[count]);
    if (array.GetPointer())
        std::memcpy(clone.GetPointer(), array.GetPointer(), count * sizeof(T));
    else
        std::memset(clone.GetPointer(), 0, count * sizeof(T));
    return clone;
}

// Appends a copy of the entry if its value is an array of one of these elements.
template <typename... Elements> bool AppendedArray(BagEntries const& target, BagEntry const& entry) {
    auto const append = [&](auto const* array) {
        if (array) target.Append(entry.key, NewAny(CloneOf(*array, entry.size)), entry.size, true);
        return array != nullptr;
    };
    return (append(HeldAs<ZPA_Ptr<Elements>>(*entry.value)) || ...);
}

template <typename... Held> bool IsOneOf(Any const& value) { return ((value.Type() == typeid(Held)) || ...); }

// Appends a copy of an entry that is no bag.
void AppendCopy(BagEntries const& target, BagEntry const& entry) {
    Any const& value = *entry.value;
    if (IsOneOf<unsigned int, int, char, unsigned char, unsigned short, short, float, double, std::string,
                bool>(value))
        return target.Append(entry.key, ZPA_Ptr<Any>(new Any(value)), 1, true);
    if (AppendedArray<bool, unsigned char, char, unsigned short, short, unsigned int, int, float, double>(
            target, entry))
        return;
    // Neither of the two gets past its guard.
    if (IsOneOf<std::vector<std::string>>(value))
        (void)ReadGuardedVector<std::vector<std::string>>(entry.value);
    if (IsOneOf<std::vector<ZPA_Ptr<Bag>>>(value))
        (void)ReadGuardedVector<std::vector<ZPA_Ptr<Bag>>>(entry.value);
    target.Append(entry.key, NewAny("Unsupported clone type: " + TypeName(value.Type())), 1, true);
}

// A bag that is being copied, as far as the entry ahead of `next`.
struct Cloning {
    Bag const* source;
    BagEntries::Iterator next;
    ZPA_Ptr<Bag> clone;
};

// An addition that is under way, as far as the entry ahead of `next`. Holds on to its bags, as an addition
// within may take them out of where they stand.
struct Adding {
    Adding(ZPA_Ptr<Bag> const& itsTarget, ZPA_Ptr<Bag> const& itsSource)
        : target(itsTarget), source(itsSource), next(BagEntries(*itsSource).begin()) {}

    ZPA_Ptr<Bag> target, source;
    BagEntries::Iterator next;
    std::optional<Bag> added;  // keys that the target lacks, if any
    ZPA_Ptr<Bag> inner;        // the target's bag under the key of `next`,
    bool merged = false;       // once that of the source has been added to it
};

bool IsEmpty(ZPA_Ptr<Bag> const& bag) {
    return !bag.GetPointer() || BagEntries(*bag).begin() == BagEntries(*bag).end();
}

}  // namespace

ZPA_Ptr<Bag> BagClone(ZPA_Ptr<Bag> const& source) {
    std::vector<Cloning> levels;
    std::unordered_set<Bag const*> entered;
    auto const enter = [&](ZPA_Ptr<Bag> const& bag) {
        if (!bag.GetPointer()) return bag;
        if (!entered.insert(bag.GetPointer()).second)
            throw std::runtime_error("BagClone() a bag contains itself.");
        levels.push_back({bag.GetPointer(), BagEntries(*bag).begin(), ZPA_Ptr<Bag>(new Bag)});
        return levels.back().clone;
    };

    ZPA_Ptr<Bag> const clone = enter(source);
    while (!levels.empty()) {
        Cloning& level = levels.back();
        if (level.next == BagEntries(*level.source).end()) {
            entered.erase(level.source);
            levels.pop_back();
            continue;
        }
        BagEntry const entry = *level.next;
        ++level.next;
        BagEntries const target(*level.clone);
        if (auto const* const bag = HeldAs<ZPA_Ptr<Bag>>(*entry.value))
            target.Append(entry.key, NewAny(enter(*bag)), 1, true);  // is filled next
        else
            AppendCopy(target, entry);
    }
    return clone;
}

void BagAddition(ZPA_Ptr<Bag>& target, ZPA_Ptr<Bag> const& source) {
    if (IsEmpty(source)) return;
    if (!target.GetPointer()) target = ZPA_Ptr<Bag>(new Bag);

    std::list<Adding> levels;
    std::set<std::pair<Bag*, Bag*>> entered;
    // An addition that is under way is not begun again within itself: bags may contain each other.
    auto const enter = [&](ZPA_Ptr<Bag> const& to, ZPA_Ptr<Bag> const& from) {
        if (entered.emplace(to.GetPointer(), from.GetPointer()).second) levels.emplace_back(to, from);
    };

    enter(target, source);
    while (!levels.empty()) {
        Adding& level = levels.back();
        BagEntries const entries(*level.target);
        if (level.next == BagEntries(*level.source).end()) {
            if (level.added) entries.AppendAll(*level.added);
            entered.erase({level.target.GetPointer(), level.source.GetPointer()});
            levels.pop_back();
            continue;
        }

        BagEntry const from = *level.next;
        auto const found = entries.Find(from.key);
        if (found == entries.end()) {
            if (!level.added) level.added.emplace();
            BagEntries(*level.added).Append(from.key, from.value, from.size, true);
            ++level.next;
            continue;
        }
        BagEntry const to = *found;
        auto const* const inner = HeldAs<ZPA_Ptr<Bag>>(*to.value);
        auto const* const more = inner ? HeldAs<ZPA_Ptr<Bag>>(*from.value) : nullptr;
        if (level.merged) {
            to.value = NewAny(level.inner);
            to.size = from.size;
            to.dirty = from.dirty;
            level.merged = false;
        } else if (more) {
            level.inner = inner->GetPointer() || IsEmpty(*more) ? *inner : ZPA_Ptr<Bag>(new Bag);
            level.merged = true;
            if (!IsEmpty(*more)) enter(level.inner, *more);
            continue;  // and comes back to this entry
        } else {
            to.value = from.value;
            to.size = from.size;
            to.dirty = true;
        }
        ++level.next;
    }
}

ZPA_Ptr<Bag> BagQuery(ZPA_Ptr<Bag>& source, std::vector<std::string> keys) {
    ZPA_Ptr<Bag> const picked(new Bag);
    if (!source.GetPointer()) return picked;
    BagEntries const entries(*source);
    for (std::string const& key : keys) {
        auto const found = entries.Find(key);
        if (found == entries.end()) continue;
        BagEntry const entry = *found;
        BagEntries(*picked).Append(entry.key, entry.value, entry.size, entry.dirty);
    }
    return picked;
}

}  // namespace ZPA
