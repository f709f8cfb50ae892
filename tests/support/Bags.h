// Bags for tests: made in one expression, and in words.
#ifndef ZPA_TESTS_SUPPORT_BAGS_H
#define ZPA_TESTS_SUPPORT_BAGS_H

#include <Basics/Bag.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

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

inline std::string Text(bool value) { return value ? "true" : "false"; }
inline std::string Text(std::string const& value) { return '"' + value + '"'; }
template <typename T> std::string Text(T value) { return std::to_string(value); }
inline std::string Describe(Bag const& bag);

template <typename T> std::string DescribeAs(char const* name, AnyHandle const& value, int size) {
    if (value->Type() == typeid(T)) return name + (' ' + Text(value.Get<T>()));
    if (value->Type() != typeid(ZPA_Ptr<T>)) return "";
    auto const array = value.Get<ZPA_Ptr<T>>();
    std::string text = name + std::string("[") + std::to_string(size) + "]";
    for (int i = 0; i < size && i < 4; ++i) text += ' ' + Text(array.GetPointer()[i]);
    return text;
}

inline std::string DescribeValue(AnyHandle const& value, int size) {
    if (value->Type() == typeid(BagPtr)) {
        auto const bag = value.Get<BagPtr>();
        return bag.GetPointer() ? '{' + Describe(*bag) + '}' : "null";
    }
    std::string text;
    if (value->Type() == typeid(std::string)) text = Text(value.Get<std::string>());
    if (value->Type() == typeid(std::vector<std::string>))
        for (auto const& each : value.Get<std::vector<std::string>>()) text += '|' + Text(each);
    if (value->Type() == typeid(std::vector<BagPtr>))
        for (auto const& each : value.Get<std::vector<BagPtr>>()) text += '|' + Describe(*each);
    return text + DescribeAs<bool>("b", value, size) + DescribeAs<char>("i8", value, size) +
           DescribeAs<unsigned char>("u8", value, size) + DescribeAs<short>("i16", value, size) +
           DescribeAs<unsigned short>("u16", value, size) + DescribeAs<int>("i32", value, size) +
           DescribeAs<unsigned>("u32", value, size) + DescribeAs<float>("f32", value, size) +
           DescribeAs<double>("f64", value, size);
}

// The entries of a bag in one line, elements of arrays up to the fourth.
inline std::string Describe(Bag const& bag) {
    std::string text;
    int at = 0;
    for (auto const& key : bag.Key()) {
        text += (at ? ", " : "") + key + ": " + DescribeValue(bag.Get(at), bag.GetSize(at));
        ++at;
    }
    return text;
}

}  // namespace ZPA::Testing

#endif
