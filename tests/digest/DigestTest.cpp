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
    for (auto const family : {PixelCases, MeasureCases, FilterCases, RegionCases, NumericCases, FileCases}) {
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
    // These free what others make, have no result but the log's line, or copy what they are given.
    std::set<std::string> exempt = {"LogMemoryError", "alloc_matrix",       "alloc_vector",
                                    "copyBuffer",     "copyImage",          "delete_matrix",
                                    "delete_vector",  "ValidateImageBuffer"};
    // These tell of names and texts, for which their tests list every answer.
    exempt.insert({"ParseBufferFactoryString", "ParseImageFactoryString", "ParseTypeCode", "SizeOfTypeCode",
                   "ZPA_Create", "ZPA_CreateEx"});
    EXPECT_EQ(ForgottenExports({"digest/Pixels.cpp", "digest/Measures.cpp", "digest/Filters.cpp",
                                "digest/Regions.cpp", "digest/Numerics.cpp", "digest/Files.cpp"},
                               exempt),
              std::vector<std::string>());
}

}  // namespace
}  // namespace ZPA::Testing
