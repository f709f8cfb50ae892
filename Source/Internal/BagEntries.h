// The entries of a bag by position, for operations on whole bags.
#ifndef ZPA_SOURCE_INTERNAL_BAGENTRIES_H
#define ZPA_SOURCE_INTERNAL_BAGENTRIES_H

#include <Basics/Bag.h>

#include <map>
#include <string_view>
#include <utility>

namespace ZPA {

// One entry, as it stands in the four lists. The value always points at an Any.
struct BagEntry {
    std::string& key;
    ZPA_Ptr<Any>& value;
    int& size;
    bool& dirty;
};

// Walks the lists of a bag in step: for (BagEntry entry : BagEntries(*bag)). Owns nothing and, like a
// pointer, reaches the entries of a constant bag too. Entries may be added during a walk, which then sees
// them.
class BagEntries {
public:
    class Iterator {
    public:
        BagEntry operator*() const { return {*key_, *value_, *size_, *dirty_}; }
        Iterator& operator++() {
            ++key_, ++value_, ++size_, ++dirty_;
            return *this;
        }
        Iterator& operator--() {
            --key_, --value_, --size_, --dirty_;
            return *this;
        }
        bool operator==(Iterator const& other) const { return key_ == other.key_; }
        bool operator!=(Iterator const& other) const { return key_ != other.key_; }

    private:
        friend class BagEntries;
        Iterator(std::list<std::string>::iterator key, std::list<ZPA_Ptr<Any>>::iterator value,
                 std::list<int>::iterator size, std::list<bool>::iterator dirty)
            : key_(key), value_(value), size_(size), dirty_(dirty) {}

        std::list<std::string>::iterator key_;
        std::list<ZPA_Ptr<Any>>::iterator value_;
        std::list<int>::iterator size_;
        std::list<bool>::iterator dirty_;
    };

    explicit BagEntries(Bag const& bag) : bag_(bag) {}

    Iterator begin() const {
        return {bag_.keys_->begin(), bag_.values_->begin(), bag_.sizes_->begin(), bag_.dirty_->begin()};
    }
    Iterator end() const {
        return {bag_.keys_->end(), bag_.values_->end(), bag_.sizes_->end(), bag_.dirty_->end()};
    }

    // The first entry with exactly this key, or end().
    Iterator Find(std::string_view key) const;
    // The entry at a position counted from 0, or end().
    Iterator At(int index) const;

    // Adds an entry behind the others, whether or not the key is in use: all of it, or nothing if this
    // throws.
    void Append(std::string const& key, ZPA_Ptr<Any> const& value, int size, bool dirty) const;
    // Moves all entries of another bag behind those of this one: all of them, or none if this throws.
    void AppendAll(Bag& other) const;
    // Gives the entry another key, whether or not that is in use.
    void Rename(Iterator entry, std::string const& key) const;
    // Takes the entry out.
    void Remove(Iterator entry) const;

private:
    // Makes the table of a large bag, if there is none and memory for it. False without one.
    bool HasTable() const;
    // Adds the last entries, from this one on, to the table if there is one, unless their keys are there; without
    // memory the table goes.
    void EnterFrom(Iterator first) const;
    // Whether there is a table, of a bag without two entries of one key.
    bool HasEachKeyOnce() const;
    // Throws where the lists cannot grow by so many.
    void RequireRoom(std::size_t more) const;

    Bag const& bag_;
};

// The first entry of each key, for look-ups in a large bag, which a walk over all keys would make too slow: a
// document may have any number of keys. Sorted, as keys that share a hash could be chosen on purpose.
struct Bag::Table {
    std::map<std::string_view, BagEntries::Iterator> firsts;
};

// The value if it is a T, or null.
template <typename T> T const* HeldAs(Any const& value) {
    return value.Type() == typeid(T) ? &value.Get<T>() : nullptr;
}

// The bag that a value holds; null if it holds another type, and also for a null ZPA_Ptr<Bag>.
inline Bag* HeldBag(Any const& value) {
    auto const* const held = HeldAs<ZPA_Ptr<Bag>>(value);
    return held ? held->GetPointer() : nullptr;
}

}  // namespace ZPA

#endif
