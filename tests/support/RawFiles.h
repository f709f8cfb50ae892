// Files of raw pixels for tests, in a folder of their own.
#ifndef ZPA_TESTS_SUPPORT_RAWFILES_H
#define ZPA_TESTS_SUPPORT_RAWFILES_H

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace ZPA::Testing {

inline std::wstring Wide(std::string const& text) { return {text.begin(), text.end()}; }

class RawFile : public testing::Test {
protected:
    std::string Path(std::string const& name) const { return folder.Path(name); }
    std::string Write(std::string const& name, std::size_t bytes) const {
        std::string content;
        for (std::size_t i = 0; i < bytes; ++i) content += static_cast<char>(i * 7);
        return folder.Write(name, content);
    }
    TemporaryFolder folder;
};

}  // namespace ZPA::Testing

#endif
