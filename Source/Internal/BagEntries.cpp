// The entries of a bag by position and by key, and what changes all four lists at once.
#include "Source/Internal/BagEntries.h"

#include <new>
#include <stdexcept>

namespace ZPA {
namespace {

// Up to so many entries, making a table takes longer than it saves (benchmarks/Bag.cpp).
constexpr std::size_t kMostWalked = 64;

// Keys of one bag often begin alike: their last characters tell most of them apart.
bool AreEqual(std::string const& key, std::string_view other) {
    return key.size() == other.size() && (key.empty() || (key.back() == other.back() && key == other));
}

}  // namespace

BagEntries::Iterator BagEntries::Find(std::string_view key) const {
    if (bag_.keys_->size() > kMostWalked && HasTable()) {
        auto const found = bag_.table_->firsts.find(key);
        return found == bag_.table_->firsts.end() ? end() : found->second;
    }
    // In step, so that the processor follows the four chains at the same time: walking the keys first and the
    // other lists to the found position afterwards takes twice as long (benchmarks/Bag.cpp).
    auto at = begin();
    for (auto const last = end(); at != last && !AreEqual((*at).key, key);) ++at;
    return at;
}

BagEntries::Iterator BagEntries::At(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= bag_.keys_->size()) return end();
    auto at = begin();
    for (; index > 0; --index) ++at;
    return at;
}

void BagEntries::Append(std::string const& key, ZPA_Ptr<Any> const& value, int size, bool dirty) const {
    RequireRoom(1);
    try {
        bag_.values_->push_back(value);  // first, as a trace line of it may look into the bag
        bag_.keys_->push_back(key);
        bag_.sizes_->push_back(size);
        bag_.dirty_->push_back(dirty);
    } catch (...) {
        auto const whole = bag_.dirty_->size();  // the last to grow
        bag_.sizes_->resize(whole);
        bag_.keys_->resize(whole);
        bag_.values_->resize(whole);
        throw;
    }
    EnterFrom(--end());
}

void BagEntries::AppendAll(Bag& other) const {
    if (other.keys_->empty()) return;
    RequireRoom(other.keys_->size());
    Iterator const first = BagEntries(other).begin();
    other.table_.reset();
    bag_.values_->splice(bag_.values_->end(), *other.values_);
    bag_.keys_->splice(bag_.keys_->end(), *other.keys_);
    bag_.sizes_->splice(bag_.sizes_->end(), *other.sizes_);
    bag_.dirty_->splice(bag_.dirty_->end(), *other.dirty_);
    EnterFrom(first);
}

void BagEntries::Rename(Iterator entry, std::string const& key) const {
    std::string text = key;
    if (HasEachKeyOnce() && bag_.table_->firsts.count(text) == 0) {
        auto named = bag_.table_->firsts.extract(*entry.key_);
        entry.key_->swap(text);
        named.key() = *entry.key_;
        bag_.table_->firsts.insert(std::move(named));
    } else {
        bag_.table_.reset();
        entry.key_->swap(text);
    }
}

void BagEntries::Remove(Iterator entry) const {
    if (HasEachKeyOnce())
        bag_.table_->firsts.erase(*entry.key_);
    else
        bag_.table_.reset();
    bag_.keys_->erase(entry.key_);
    bag_.values_->erase(entry.value_);
    bag_.sizes_->erase(entry.size_);
    bag_.dirty_->erase(entry.dirty_);
}

bool BagEntries::HasTable() const {
    if (bag_.table_) return true;
    try {
        bag_.table_ = std::make_unique<Bag::Table>();
    } catch (std::bad_alloc const&) {
        return false;
    }
    EnterFrom(begin());
    return bag_.table_ != nullptr;
}

void BagEntries::EnterFrom(Iterator first) const {
    if (!bag_.table_) return;
    try {
        for (auto at = first; at != end(); ++at) bag_.table_->firsts.emplace(*at.key_, at);
    } catch (std::bad_alloc const&) {
        bag_.table_.reset();
    }
}

bool BagEntries::HasEachKeyOnce() const {
    return bag_.table_ && bag_.table_->firsts.size() == bag_.keys_->size();
}

void BagEntries::RequireRoom(std::size_t more) const {
    auto const& keys = *bag_.keys_;  // the list with the largest nodes
    if (more > keys.max_size() - keys.size()) throw std::length_error("list<T> too long");
}

}  // namespace ZPA
