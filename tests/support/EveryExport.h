// Whether tests that go through every exported function with C linkage forget one.
#ifndef ZPA_TESTS_SUPPORT_EVERYEXPORT_H
#define ZPA_TESTS_SUPPORT_EVERYEXPORT_H

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace ZPA::Testing {

// The functions that no code of these files, in the folder of the tests, names. Those that are `exempt` may
// not be named, or they would need no exemption.
inline std::vector<std::string> ForgottenExports(std::vector<std::string> const& files,
                                                 std::set<std::string> const& exempt) {
    std::string const tests = ZPA_SOURCES "/tests/";
    std::regex const textOrComment(R"("[^"\n]*"|//[^\n]*)"), word("\\w+");
    std::set<std::string> named;
    for (std::string const& each : files) {
        std::ifstream file(tests + each);
        std::string const whole{std::istreambuf_iterator<char>(file), {}};
        std::string const code = std::regex_replace(whole, textOrComment, "");
        named.insert(std::sregex_token_iterator(code.begin(), code.end(), word), {});
    }
    std::vector<std::string> forgotten;
    std::ifstream exports(tests + "exports.txt");
    if (!exports) forgotten.push_back("exports.txt itself");
    for (std::string name; std::getline(exports, name);)
        if (std::regex_match(name, word) && named.count(name) == exempt.count(name))
            forgotten.push_back(name);
    return forgotten;
}

}  // namespace ZPA::Testing

#endif
