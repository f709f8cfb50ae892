// Bag documents for tests: saved to a folder, and loaded from one.
#ifndef ZPA_TESTS_SUPPORT_BAGDOCUMENTS_H
#define ZPA_TESTS_SUPPORT_BAGDOCUMENTS_H

#include <Basics/BagIO.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "support/Bags.h"
#include "support/TemporaryFolder.h"

namespace ZPA::Testing {

inline constexpr char kHead[] = "<?xml version=\"1.0\" ?>\n";

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
