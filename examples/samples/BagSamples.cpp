// The samples of docs/bags.md.
#include <Basics/ZPA.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TemporaryFolder.h"

namespace {

using ZPA::Testing::TemporaryFolder;

// [sample]
using BagPtr = ZPA::ZPA_Ptr<ZPA::Bag>;
using Image = ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned short>>;

BagPtr Parameters() {
    BagPtr const tube(new ZPA::Bag);
    tube->Set("KiloVolts", 70.5);
    tube->Set("Grid", true);

    BagPtr const bag(new ZPA::Bag);
    bag->Set("Name", "thorax");
    bag->Set("Tube", tube);  // both bags share the one below from now on
    bag->Set("Gain", ZPA::ZPA_Ptr<short>(new short[3]{7, 8, 9}), 3);
    bag->Set("Frame", Image(new ZPA::ZPA_Image<unsigned short>(nullptr, 64, 48, 0, 16, 0, true, true)));
    return bag;
}
// [sample]

TEST(BagSamples, SetAndGet) {
    BagPtr const bag = Parameters();
    // [sample]
    double const kiloVolts = bag->Get("Tube/KiloVolts");  // exactly a double: nothing is converted
    std::string const name = bag->Get("Name");
    ZPA::ZPA_Ptr<short> const gain = bag->Get("Gain");
    int const gains = bag->GetSize("Gain");  // the only record of the array's length
    bool const filtered = bag->Has("Filter");
    // [sample]
    EXPECT_EQ(kiloVolts, 70.5);
    EXPECT_EQ(name, "thorax");
    EXPECT_EQ(gain.GetPointer()[gains - 1], 9);
    EXPECT_FALSE(filtered);

    // [sample]
    std::string refusal;
    try {
        int const volts = bag->Get("Tube/KiloVolts");
        refusal = std::to_string(volts);
    } catch (char const* message) {  // not a std::exception
        refusal = message;           // "Can't cast to integer"
    }
    // [sample]
    EXPECT_EQ(refusal, "Can't cast to integer");
}

TEST(BagSamples, WholeBags) {
    BagPtr bag = Parameters();
    // [sample]
    BagPtr const overrides(new ZPA::Bag), tube(new ZPA::Bag);
    tube->Set("KiloVolts", 81.0);
    overrides->Set("Tube", tube);

    BagPtr copy = ZPA::BagQuery(bag, {"Name", "Tube", "Gain"});  // shares the values with `bag`
    copy = ZPA::BagClone(copy);                                  // shares nothing; images cannot be cloned
    ZPA::BagAddition(copy, overrides);                           // bags within bags are added entry by entry
    // [sample]
    double const old = bag->Get("Tube/KiloVolts"), now = copy->Get("Tube/KiloVolts");
    EXPECT_EQ(old, 70.5);
    EXPECT_EQ(now, 81);
    EXPECT_TRUE(copy->Has("Tube/Grid"));
}

TEST(BagSamples, Documents) {
    TemporaryFolder const folder;
    BagPtr const bag = Parameters();
    std::string const document = folder.Path("scan.xml");
    // [sample]
    ZPA::ZPA_BagIO io;
    bool const saved = io.SaveBag(bag, document);
    BagPtr const loaded = io.LoadBag(document);  // what could be read; an empty bag if nothing could
    // [sample]
    EXPECT_TRUE(saved);
    EXPECT_EQ(loaded->Key(), bag->Key());
    EXPECT_EQ(folder.Names(), (std::set<std::string>{"scan.xml", "Bag.Frame.64.48.raw"}));
}

}  // namespace
