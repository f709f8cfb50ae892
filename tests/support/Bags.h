// Bags for tests, each with its entries in one expression.
#ifndef ZPA_TESTS_SUPPORT_BAGS_H
#define ZPA_TESTS_SUPPORT_BAGS_H

#include <Basics/Bag.h>

#include <functional>
#include <initializer_list>

namespace ZPA::Testing {

using BagPtr = ZPA_Ptr<Bag>;

// A key with what is set to it. Dies with the expression that it stands in, since it only refers to its value.
struct BagEntry {
    template <typename T> BagEntry(char const* key, T const& value) {
        set = [key, &value](Bag& bag) { bag.Set(key, value); };
    }
    template <typename T> BagEntry(char const* key, ZPA_Ptr<T> const& array, int size) {
        set = [=, &array](Bag& bag) { bag.Set(key, array, size); };
    }
    std::function<void(Bag&)> set;
};

inline BagPtr NewBag(std::initializer_list<BagEntry> entries = {}) {
    BagPtr const bag(new Bag);
    for (BagEntry const& each : entries) each.set(*bag);
    return bag;
}

}  // namespace ZPA::Testing

#endif
