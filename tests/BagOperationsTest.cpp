// Copies, merges and selections of whole bags.
#include <Basics/BagOperations.h>
#include <gtest/gtest.h>

#include <string>

#include "support/Bags.h"
#include "support/Thrown.h"

namespace ZPA {
namespace {

using namespace Testing;
using Keys = std::vector<std::string>;
using Texts = std::vector<std::string>;
using Bags = std::vector<BagPtr>;
using Bytes = ZPA_Image<unsigned char>;

template <typename T> void ExpectScalarCloned(T const& value) {
    BagPtr const bag = NewBag({{"k", value}});
    bag->SetSize("k", 7);
    bag->ClearDirty("");
    BagPtr const clone = BagClone(bag);
    EXPECT_EQ(clone->Get("k").Get<T>(), value);
    EXPECT_EQ(clone->GetSize("k"), 1);
    EXPECT_TRUE(clone->IsDirty("k"));
}

template <typename T> void ExpectArrayCloned() {
    ZPA_Ptr<T> const source(new T[3]{T(1), T(0), T(1)});
    BagPtr const clone =
        BagClone(NewBag({{"full", source, 3}, {"none", source, 0}, {"null", ZPA_Ptr<T>(), 2}}));
    ZPA_Ptr<T> const full = clone->Get("full"), none = clone->Get("none"), null = clone->Get("null");
    EXPECT_EQ(clone->GetSize("full"), 3);
    EXPECT_EQ(clone->GetSize("none"), 0);
    EXPECT_EQ(clone->GetSize("null"), 2);
    ASSERT_NE(full.GetPointer(), source.GetPointer());
    EXPECT_NE(none.GetPointer(), source.GetPointer());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(full.GetPointer()[i], source.GetPointer()[i]);
    EXPECT_EQ(null.GetPointer()[1], T(0));
}

template <typename... T> void ExpectEachCloned() {
    (ExpectScalarCloned(static_cast<T>(1)), ...);
    (ExpectArrayCloned<T>(), ...);
}

TEST(BagClone, CopiesScalarsTextsAndArrays) {
    ExpectEachCloned<unsigned int, int, char, unsigned char, unsigned short, short, float, double, bool>();
    ExpectScalarCloned(std::string("a\0b", 3));
}

TEST(BagClone, SharesNothingWithBagsInTheBag) {
    BagPtr const inner = NewBag({{"x", 1}});
    BagPtr const clone = BagClone(NewBag({{"first", inner}, {"second", inner}, {"null", BagPtr()}}));
    inner->Set("x", 2);
    EXPECT_EQ(Describe(*clone), "first: {x: i32 1}, second: {x: i32 1}, null: null");
    BagPtr const first = clone->Get("first"), second = clone->Get("second");
    EXPECT_NE(first.GetPointer(), second.GetPointer());
    EXPECT_EQ(BagClone(BagPtr()).GetPointer(), nullptr);
}

TEST(BagClone, TakesEntriesAsTheyStand) {
    BagPtr const bag = NewBag({{"a", 1}, {"b", "two"}, {"", 3}, {"x/y", 4}});
    bag->Rename("b", "a");
    EXPECT_EQ(Describe(*BagClone(bag)), "a: i32 1, a: \"two\", : i32 3, x/y: i32 4");
}

TEST(BagClone, LeavesATextInThePlaceOfWhatItCannotCopy) {
    BagPtr const clone = BagClone(NewBag(
        {{"image", ZPA_Ptr<Bytes>(new Bytes)}, {"images", std::vector<ZPA_Ptr<Bytes>>(2)}, {"after", 1}}));
    std::string const image = clone->Get("image"), images = clone->Get("images");
    EXPECT_EQ(image, "Unsupported clone type: ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned char> >");
    EXPECT_EQ(images.find("Unsupported clone type: std::vector<ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned char> >"),
              0u);
    EXPECT_TRUE(clone->Has("after"));
}

TEST(BagClone, StopsAtTheFirstVectorOfTextsOrBags) {
    ZPA_Ptr<int> const array(new int[4]());
    BagPtr const textsFirst =
        NewBag({{"inner", NewBag({{"array", array, 4}, {"v", Texts{"a"}}})}, {"w", Bags(1)}});
    BagPtr const bagsFirst =
        NewBag({{"inner", NewBag({{"array", array, 4}, {"v", Bags()}})}, {"w", Texts()}});
    EXPECT_EQ(Thrown<char const*>([&] { (void)BagClone(textsFirst); }),
              "can't cast to std::vector<string> in a 32-bit process.");
    EXPECT_EQ(Thrown<char const*>([&] { (void)BagClone(bagsFirst); }),
              "can't cast to std::vector<ZPA_Ptr<Bag>> in a 32-bit process.");
}

TEST(BagClone, RefusesWhatHasNoEnd) {
    BagPtr const inner = NewBag(), bag = NewBag({{"inner", inner}});
    inner->Set("bag", bag);
    EXPECT_THROW((void)BagClone(bag), std::runtime_error);
    inner->Clear();
    bag->Set("array", ZPA_Ptr<int>(new int[1]()), -1);
    EXPECT_THROW((void)BagClone(bag), std::bad_alloc);
}

TEST(BagAddition, KeepsPlacesAndLetsTheSourceWin) {
    BagPtr const bag = NewBag();
    BagPtr target = NewBag({{"kept", 1}, {"number", 1}, {"array", 1}, {"bag", bag}, {"toBag", 1}});
    target->ClearDirty("");
    ZPA_Ptr<int> const array(new int[2]());
    BagPtr const source = NewBag({{"new", 1},
                                  {"toBag", bag},
                                  {"bag", 2},
                                  {"array", array, 2},
                                  {"number", "text"},
                                  {"twice", 3},
                                  {"two", 4}});
    source->Rename("two", "twice");
    source->ClearDirty("");
    BagAddition(target, source);
    EXPECT_EQ(Describe(*target),
              "kept: i32 1, number: \"text\", array: i32[2] 0 0, bag: i32 2, toBag: {}, new: i32 1, "
              "twice: i32 3, twice: i32 4");
    for (char const* key : {"number", "array", "bag", "new", "twice"}) EXPECT_TRUE(target->IsDirty(key));
    EXPECT_FALSE(target->IsDirty("kept"));
    EXPECT_FALSE(source->IsDirty(""));
    EXPECT_EQ(target->Get("array").GetPointer(), source->Get("array").GetPointer());
    EXPECT_EQ(target->Get("new").GetPointer(), source->Get("new").GetPointer());
}

TEST(BagAddition, ToManyKeysFindsTheNewOnes) {
    ZPA_Ptr<Bag> target = NewBag();
    ZPA_Ptr<Bag> const source = NewBag();
    for (int i = 0; i < 100; ++i) target->Set("key" + std::to_string(i), i);
    for (char const* key : {"key7", "one", "two"}) source->Set(key, 200);
    for (int i = 0; i < 2; ++i) {
        BagAddition(target, source);
        EXPECT_EQ(target->Key().size(), 102u);
        for (char const* key : {"key7", "one", "two"}) EXPECT_EQ(target->Get(key).Get<int>(), 200);
        EXPECT_EQ(target->Get("key99").Get<int>(), 99);
    }
    source->Rename("two", "one");  // stands twice, and is new
    target->Remove("one");
    source->Remove("key7");
    BagAddition(target, source);
    EXPECT_EQ(target->Key().size(), 103u);
    target->Remove("one");
    EXPECT_EQ(target->Get("one").Get<int>(), 200);
}

TEST(BagAddition, MergesBagsAtEveryDepth) {
    BagPtr const c = NewBag({{"old", 1}, {"both", 1}}), b = NewBag({{"c", c}});
    BagPtr target = NewBag({{"b", b}, {"null", BagPtr()}});
    BagPtr const otherC = NewBag({{"both", 2}, {"new", 2}});
    BagPtr const source = NewBag({{"b", NewBag({{"c", otherC}})}, {"null", otherC}});
    source->SetSize("b", 9);
    BagAddition(target, source);
    EXPECT_EQ(Describe(*target),
              "b: {c: {old: i32 1, both: i32 2, new: i32 2}}, null: {both: i32 2, new: i32 2}");
    EXPECT_EQ(Describe(*otherC), "both: i32 2, new: i32 2");
    EXPECT_EQ(target->GetSize("b"), 9);
    BagPtr const made = target->Get("null"), sameB = target->Get("b"), sameC = target->Get("b/c");
    EXPECT_NE(made.GetPointer(), otherC.GetPointer());
    EXPECT_EQ(sameB.GetPointer(), b.GetPointer());
    EXPECT_EQ(sameC.GetPointer(), c.GetPointer());
}

TEST(BagAddition, OfNothingChangesNothing) {
    BagPtr target = NewBag({{"x", 1}}), none;
    target->ClearDirty("");
    BagAddition(target, NewBag());
    BagAddition(target, none);
    EXPECT_FALSE(target->IsDirty(""));
    BagAddition(none, NewBag());
    EXPECT_EQ(none.GetPointer(), nullptr);
    BagAddition(none, target);
    EXPECT_EQ(none->Key(), Keys{"x"});
}

TEST(BagAddition, EndsWhereBagsContainEachOther) {
    BagPtr source = NewBag(), target = NewBag({{"s", source}});
    source->Set("s", source);
    source->Set("t", target);
    source->Set("x", 1);
    BagAddition(target, source);
    BagAddition(source, target);
    BagAddition(target, target);
    EXPECT_EQ(target->Key(), (Keys{"s", "t", "x"}));
    EXPECT_EQ(source->Key(), (Keys{"s", "t", "x"}));
    target->Clear();
    source->Clear();
}

// More levels than a stack of usual size would survive.
TEST(BagOperations, TakeDeepNesting) {
    BagPtr bag = NewBag(), inVectors = NewBag();
    std::string path;
    for (int level = 0; level < 100000; ++level) {
        bag = NewBag({{"x", level}, {"a", bag}});
        inVectors = NewBag({{"v", Bags{inVectors}}});
        if (level > 0) path += "a/";
    }
    BagPtr const clone = BagClone(bag);
    bag->ClearDirty("");
    EXPECT_FALSE(bag->IsDirty("a"));
    BagAddition(bag, clone);
    EXPECT_TRUE(bag->IsDirty("a"));
    EXPECT_EQ(static_cast<int>(clone->Get(path + "x")), 0);
}

TEST(BagQuery, PicksInTheOrderAsked) {
    ZPA_Ptr<int> const array(new int[2]());
    BagPtr none;
    BagPtr source = NewBag({{"a", NewBag({{"x", 1}})}, {"array", array, 2}, {"x/y", 1}, {"clean", 1}});
    source->ClearDirty("clean");
    BagPtr const picked = BagQuery(source, {"clean", "a/x", "x/y", "array", "", "clean", "none"});
    EXPECT_EQ(Describe(*picked), "clean: i32 1, x/y: i32 1, array: i32[2] 0 0, clean: i32 1");
    EXPECT_FALSE(picked->IsDirty("clean"));
    EXPECT_TRUE(picked->IsDirty("array"));
    EXPECT_EQ(picked->Get("array").GetPointer(), source->Get("array").GetPointer());
    EXPECT_TRUE(BagQuery(source, {})->Key().empty());
    EXPECT_TRUE(BagQuery(none, {"a"})->Key().empty());
}

}  // namespace
}  // namespace ZPA
