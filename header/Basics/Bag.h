// The keyed store in which parameters and results pass between processing steps.
#ifndef ZPA_BASICS_BAG_H
#define ZPA_BASICS_BAG_H

#include <Basics/Any.h>

#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace ZPA {

/// Values of the types that Any holds, by key, in the order in which the keys were first set. Beside each
/// value stand an element count, which is the only record of an array's length, and a dirty flag, which tells
/// that the value was set since the flag was cleared last.
///
/// Keys are any text and compare byte by byte. Only Get by key, Has, and GetType by key follow paths: "a/b"
/// is the value "b" of the bag that stands under "a", at any depth. All other operations take the whole text
/// as one key, Set included: a key that is set with a "/" in it is listed by Key and found by position, and
/// is out of reach for paths. Every operation looks keys up one by one: bags are small.
///
/// A bag is held through a ZPA_Ptr. It shares its values with the handles that it gives out, and takes no
/// locks: one thread at a time. A null `ZPA_Ptr<Bag>` as a value reads as an empty bag. A bag that contains
/// itself, at any depth, is never deleted unless that entry is removed. Bags may be nested to any depth.
///
/// Running out of memory throws std::bad_alloc and leaves the bag as it was; a value that Any has no memory
/// to hold is stored as nothing.
class ZPA_API Bag {
public:
    /// An empty bag.
    Bag();
    Bag(Bag const&) = delete;
    Bag& operator=(Bag const&) = delete;
    /// Releases the values.
    virtual ~Bag();

    /// Stores a copy of a value with size 1, marked dirty: in the place of the present value if the key
    /// exists, else behind all others. T is a scalar, `std::string`, `ZPA_Ptr<Bag>`, or an image or vector
    /// type that Any holds; the compiler refuses any other.
    /// @throws std::length_error "list<T> too long" where a list cannot grow any more.
    template <typename T, typename = typename std::enable_if<Detail::IsHeldSingly<T>::value>::type>
    void Set(std::string const& key, T const& value) {
        Store(key, ZPA_Ptr<Any>(new Any(value)), 1);
    }
    /// Stores a text as `std::string`; a null pointer counts as the empty text.
    void Set(std::string const& key, char const* text) { Set(key, std::string(text ? text : "")); }
    /// Stores a reference to an array in the same way, with its number of elements, which nothing checks. T
    /// is a scalar that Any holds.
    template <typename T, typename = typename std::enable_if<Detail::IsHeldScalar<T>::value>::type>
    void Set(std::string const& key, ZPA_Ptr<T> const& array, int size) {
        Store(key, ZPA_Ptr<Any>(new Any(array)), size);
    }
    /// Numbers of other types are not held; a literal zero among them must not become a text.
    template <typename T, typename std::enable_if<
                              std::is_arithmetic<T>::value && !Detail::IsHeldScalar<T>::value, int>::type = 0>
    void Set(std::string const& key, T value) = delete;

    /// The value under a path. Slashes ahead of a key do not count, so "/a", "a" and "a/" are the same, as
    /// are "a/b" and "a//b"; "a//" leads nowhere.
    /// @return a handle to the stored value; to nothing if a key is missing or what is on the way is no bag.
    AnyHandle Get(std::string const& path) const;
    /// The value at a position, counted from 0; a pointer to an Any that holds nothing if out of range.
    ZPA_Ptr<Any> Get(int index) const;
    /// Whether Get finds a value under the path that holds something.
    bool Has(std::string const& path) const;
    /// The type of the value that Get finds under the path; that of `void` if there is none.
    std::type_info const& GetType(std::string const& path) const;
    /// The type of a handle's value; that of `void` if there is none.
    std::type_info const& GetType(AnyHandle const& handle) const;

    /// The element count under a key; 0 if it is missing.
    int GetSize(std::string const& key) const;
    /// The element count at a position, counted from 0; 0 if out of range.
    int GetSize(int index) const;
    /// Changes the element count under a key, and nothing else. Whoever reads an array trusts it.
    /// @return false if the key is missing.
    bool SetSize(std::string const& key, int size);

    /// The keys in their order.
    const std::vector<std::string> Key() const;
    /// Removes a key with its value; a missing one is ignored.
    void Remove(std::string const& key);
    /// Gives a key a new text; position, value, size and dirty flag stay. Nothing checks whether the new text
    /// is in use: then it stands twice, and the first one wins every look-up.
    /// @return false if the key `from` is missing.
    bool Rename(std::string const& from, std::string const& to);
    /// Removes all keys.
    void Clear();

    /// Marks the value under a key as clean. Where the value is a bag all the values in it, at any depth, are
    /// marked, and the flag of the entry itself stays, as no look-up ever asks for it. An empty key stands
    /// for all entries of this bag.
    /// @throws std::exception (a std::runtime_error) "Bag.ClearDirty() key not found : " and the key.
    void ClearDirty(std::string key);
    /// Whether the value under a key is dirty; where the value is a bag, whether any value in it is, at any
    /// depth. An empty key asks all entries of this bag; an empty bag is clean.
    /// @throws std::exception (a std::runtime_error) "Bag.IsDirty() key not found : " and the key.
    bool IsDirty(std::string key) const;

private:
    friend class BagEntries;

    void Store(std::string const& key, ZPA_Ptr<Any> const& value, int size);

    // Always of the same length: the n-th nodes belong together.
    std::unique_ptr<std::list<std::string>> keys_;
    std::unique_ptr<std::list<ZPA_Ptr<Any>>> values_;
    std::unique_ptr<std::list<int>> sizes_;
    std::unique_ptr<std::list<bool>> dirty_;

    struct Table;
    mutable std::unique_ptr<Table> table_;  // null in a small bag
};

}  // namespace ZPA

#endif
