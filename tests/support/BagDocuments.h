// Bag documents for tests: saved to a folder, loaded from one, and bags in words.
#ifndef ZPA_TESTS_SUPPORT_BAGDOCUMENTS_H
#define ZPA_TESTS_SUPPORT_BAGDOCUMENTS_H

#include <Basics/BagIO.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "support/Bags.h"
#include "support/TemporaryFolder.h"

namespace ZPA::Testing {

inline constexpr char kHead[] = "<?xml version=\"1.0\" ?>\n";

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
    if (value->Type() == typeid(BagPtr)) return '{' + Describe(*value.Get<BagPtr>()) + '}';
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

inline std::string Repeated(char const* text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

// What a call prints. Failures inside would be taken for it.
template <typename Call> std::string Printed(Call const& call) {
    testing::internal::CaptureStdout();
    call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

class BagIOTest : public testing::Test {
protected:
    // What is loaded from a document with these elements in its root; keeps what is printed.
    std::string Load(std::string const& elements) {
        return LoadDocument(kHead + ("<Bag Type=\"Bag\">" + elements + "</Bag>"));
    }
    std::string LoadDocument(std::string const& document) {
        return LoadPath(folder.Write("loaded.xml", document));
    }
    std::string LoadPath(std::string const& path) {
        BagPtr bag;
        printed = Printed([&] { bag = BagIO().LoadBag(path); });
        return Describe(*bag);
    }
    std::string Save(BagPtr const& bag) {
        EXPECT_TRUE(BagIO().SaveBag(bag, folder.Path("saved.xml")));
        return folder.Read("saved.xml");
    }
    static std::string Failed(std::string const& path) { return "Failed to load file \"" + path + "\"\n"; }

    TemporaryFolder folder;
    std::string printed;
};

}  // namespace ZPA::Testing

#endif
