// Every operation gives the same bits on every platform, instruction set and number of threads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>

#include "digest/Cases.h"
#include "support/EveryExport.h"
#include "support/SimdTargets.h"

namespace ZPA::Testing {
namespace {

std::map<std::string, std::uint64_t> const kTable = {
#include "digest/Table.inc"
};

std::vector<Case> AllCases() {
    std::vector<Case> all;
    for (auto const family :
         {PixelCases, MeasureCases, FilterCases, RegionCases, NumericCases, FileCases, ObjectCases}) {
        auto const cases = family();
        all.insert(all.end(), cases.begin(), cases.end());
    }
    return all;
}

std::uint64_t DigestOf(Case const& each) {
    Digest digest;
    each.run(digest);
    return digest.Value();
}

class DigestTest : public testing::TestWithParam<Case> {};

TEST_P(DigestTest, IsThatOfTheTable) {
    auto const row = kTable.find(GetParam().name);
    ASSERT_NE(row, kTable.end());
    auto const isTheSame = [&] { EXPECT_EQ(DigestOf(GetParam()), row->second); };
    ForEachSimdTarget([&] {
        if (!GetParam().fused || Fuses()) isTheSame();
    });
    if (!GetParam().fused || Fuses()) ForEachThreadCount(isTheSame);
}
INSTANTIATE_TEST_SUITE_P(Operations, DigestTest, testing::ValuesIn(AllCases()));

// With ZPA_RENEW_DIGESTS=FILE the table is written anew, to be looked at and kept if it is to change.
TEST(DigestTable, NamesEveryCaseAndNoOther) {
    auto const cases = AllCases();
    EXPECT_EQ(kTable.size(), cases.size());
    char const* const path = std::getenv("ZPA_RENEW_DIGESTS");
    if (!path) return;
    std::ofstream table(path);
    table << "// Digests by case; see DigestTest.cpp for how to renew them.\n" << std::hex;
    for (Case const& each : cases) table << "{\"" << each.name << "\", 0x" << DigestOf(each) << "},\n";
    EXPECT_TRUE(table.good());
}

TEST(DigestTable, CoversEveryExport) {
    // These free what others make, or have no result but the log's line.
    std::set<std::string> const exempt = {"LogMemoryError", "alloc_matrix", "alloc_vector", "delete_matrix",
                                          "delete_vector"};
    std::vector<std::string> files;
    for (char const* const family :
         {"Pixels", "Measures", "Filters", "Regions", "Numerics", "Files", "Objects"})
        files.push_back(std::string("digest/") + family + ".cpp");
    EXPECT_EQ(ForgottenExports(files, exempt), std::vector<std::string>());
}

}  // namespace
}  // namespace ZPA::Testing
