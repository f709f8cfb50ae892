// Entries by key: look-up, paths, order and dirty flags.
#include <Basics/Bag.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <unordered_set>

#include "Source/Internal/BagEntries.h"

namespace ZPA {
namespace {

using Values = std::list<ZPA_Ptr<Any>>;

// Where a bag that dies within another one leaves its values: the outermost one releases them, one by one,
// so that deep nesting does not deepen the stack. Null while no bag of this thread dies.
thread_local Values* released = nullptr;

bool IsBag(BagEntry const& entry) { return HeldAs<ZPA_Ptr<Bag>>(*entry.value) != nullptr; }

// The bag and all bags within it, each once, however often they contain each other.
std::vector<Bag const*> WithAllWithin(Bag const& bag) {
    std::vector<Bag const*> bags{&bag};
    std::unordered_set<Bag const*> known{&bag};
    for (std::size_t i = 0; i < bags.size(); ++i)
        for (BagEntry const entry : BagEntries(*bags[i])) {
            Bag const* const inner = HeldBag(*entry.value);
            if (inner && known.insert(inner).second) bags.push_back(inner);
        }
    return bags;
}

// A bag among the entries is as dirty as its contents, so its own flag is neither read nor written.
bool IsAnyDirty(Bag const& bag) {
    for (Bag const* const each : WithAllWithin(bag))
        for (BagEntry const entry : BagEntries(*each))
            if (entry.dirty && !IsBag(entry)) return true;
    return false;
}

void ClearAllDirty(Bag const& bag) {
    for (Bag const* const each : WithAllWithin(bag))
        for (BagEntry const entry : BagEntries(*each))
            if (!IsBag(entry)) entry.dirty = false;
}

}  // namespace

Bag::Bag()
    : keys_(std::make_unique<std::list<std::string>>()),
      values_(std::make_unique<Values>()),
      sizes_(std::make_unique<std::list<int>>()),
      dirty_(std::make_unique<std::list<bool>>()) {}

Bag::~Bag() {
    if (released) {
        released->splice(released->end(), *values_);
        return;
    }
    Values waiting;
    waiting.swap(*values_);
    released = &waiting;
    while (!waiting.empty()) {
        Values dying;  // a list of their own, as the one that waits grows while they die
        dying.swap(waiting);
    }
    released = nullptr;
}

void Bag::Store(std::string const& key, ZPA_Ptr<Any> const& value, int size) {
    BagEntries const entries(*this);
    auto const found = entries.Find(key);
    if (found == entries.end()) return entries.Append(key, value, size, true);
    BagEntry const entry = *found;
    ZPA_Ptr<Any> const replaced(entry.value);  // released last: this bag may live in it
    entry.value = value;
    entry.size = size;
    entry.dirty = true;
}

AnyHandle Bag::Get(std::string const& path) const {
    std::string_view rest = path;
    Bag const* bag = this;
    while (bag) {
        rest.remove_prefix(std::min(rest.find_first_not_of('/'), rest.size()));
        auto const head = rest.substr(0, rest.find('/'));
        if (head.empty()) break;
        rest.remove_prefix(std::min(head.size() + 1, rest.size()));

        BagEntries const entries(*bag);
        auto const found = entries.Find(head);
        if (found == entries.end()) break;
        auto const& value = (*found).value;
        if (rest.empty()) return value;
        bag = HeldBag(*value);
    }
    return AnyHandle();
}

ZPA_Ptr<Any> Bag::Get(int index) const {
    BagEntries const entries(*this);
    auto const found = entries.At(index);
    return found == entries.end() ? ZPA_Ptr<Any>(new Any) : (*found).value;
}

bool Bag::Has(std::string const& path) const { return GetType(path) != typeid(void); }
std::type_info const& Bag::GetType(std::string const& path) const { return GetType(Get(path)); }
std::type_info const& Bag::GetType(AnyHandle const& handle) const {
    return handle.GetPointer() ? handle->Type() : typeid(void);
}

int Bag::GetSize(std::string const& key) const {
    BagEntries const entries(*this);
    auto const found = entries.Find(key);
    return found == entries.end() ? 0 : (*found).size;
}

int Bag::GetSize(int index) const {
    BagEntries const entries(*this);
    auto const found = entries.At(index);
    return found == entries.end() ? 0 : (*found).size;
}

bool Bag::SetSize(std::string const& key, int size) {
    BagEntries const entries(*this);
    auto const found = entries.Find(key);
    if (found == entries.end()) return false;
    (*found).size = size;
    return true;
}

const std::vector<std::string> Bag::Key() const { return {keys_->begin(), keys_->end()}; }

void Bag::Remove(std::string const& key) {
    BagEntries const entries(*this);
    auto const found = entries.Find(key);
    if (found == entries.end()) return;
    ZPA_Ptr<Any> const removed((*found).value);  // released last: this bag may live in it
    entries.Remove(found);
}

bool Bag::Rename(std::string const& from, std::string const& to) {
    BagEntries const entries(*this);
    auto const found = entries.Find(from);
    if (found == entries.end()) return false;
    entries.Rename(found, to);
    return true;
}

void Bag::Clear() {
    Values removed;  // released last: this bag may live in them
    removed.swap(*values_);
    table_.reset();
    keys_->clear();
    sizes_->clear();
    dirty_->clear();
}

void Bag::ClearDirty(std::string key) {
    if (key.empty()) return ClearAllDirty(*this);
    BagEntries const entries(*this);
    auto const found = entries.Find(key);
    if (found == entries.end()) throw std::runtime_error("Bag.ClearDirty() key not found : " + key);
    BagEntry const entry = *found;
    if (!IsBag(entry))
        entry.dirty = false;
    else if (Bag const* const bag = HeldBag(*entry.value))
        ClearAllDirty(*bag);
}

bool Bag::IsDirty(std::string key) const {
    if (key.empty()) return IsAnyDirty(*this);
    BagEntries const entries(*this);
    auto const found = entries.Find(key);
    if (found == entries.end()) throw std::runtime_error("Bag.IsDirty() key not found : " + key);
    BagEntry const entry = *found;
    if (!IsBag(entry)) return entry.dirty;
    Bag const* const bag = HeldBag(*entry.value);
    return bag && IsAnyDirty(*bag);
}

}  // namespace ZPA
