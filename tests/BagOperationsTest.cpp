// Copies, merges and selections of whole bags.
#include <Basics/BagOperations.h>
#include <gtest/gtest.h>

#include <string>

namespace ZPA {
namespace {

using Keys = std::vector<std::string>;
using Texts = std::vector<std::string>;
using Bags = std::vector<ZPA_Ptr<Bag>>;
using Bytes = ZPA_Image<unsigned char>;

ZPA_Ptr<Bag> NewBag() { return ZPA_Ptr<Bag>(new Bag); }

template <typename T> void ExpectScalarCloned(T const& value) {
    ZPA_Ptr<Bag> const bag = NewBag();
    bag->Set("k", value);
    bag->SetSize("k", 7);
    bag->ClearDirty("");
    ZPA_Ptr<Bag> const clone = BagClone(bag);
    EXPECT_EQ(clone->Get("k").Get<T>(), value);
    EXPECT_EQ(clone->GetSize("k"), 1);
    EXPECT_TRUE(clone->IsDirty("k"));
}

template <typename T> void ExpectArrayCloned() {
    ZPA_Ptr<Bag> const bag = NewBag();
    ZPA_Ptr<T> const source(new T[3]{T(1), T(0), T(1)});
    bag->Set("full", source, 3);
    bag->Set("none", source, 0);
    bag->Set("null", ZPA_Ptr<T>(), 2);
    ZPA_Ptr<Bag> const clone = BagClone(bag);
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
    ZPA_Ptr<Bag> const bag = NewBag(), inner = NewBag();
    inner->Set("x", 1);
    bag->Set("first", inner);
    bag->Set("second", inner);
    bag->Set("null", ZPA_Ptr<Bag>());
    ZPA_Ptr<Bag> const clone = BagClone(bag);
    inner->Set("x", 2);
    EXPECT_EQ(clone->Key(), (Keys{"first", "second", "null"}));
    EXPECT_EQ(static_cast<int>(clone->Get("first/x")), 1);
    ZPA_Ptr<Bag> const first = clone->Get("first"), second = clone->Get("second"), null = clone->Get("null");
    EXPECT_NE(first.GetPointer(), second.GetPointer());
    EXPECT_EQ(null.GetPointer(), nullptr);
    EXPECT_EQ(BagClone(ZPA_Ptr<Bag>()).GetPointer(), nullptr);
}

TEST(BagClone, TakesEntriesAsTheyStand) {
    ZPA_Ptr<Bag> const bag = NewBag();
    bag->Set("a", 1);
    bag->Set("b", std::string("two"));
    bag->Set("", 3);
    bag->Set("x/y", 4);
    bag->Rename("b", "a");
    ZPA_Ptr<Bag> const clone = BagClone(bag);
    EXPECT_EQ(clone->Key(), (Keys{"a", "a", "", "x/y"}));
    EXPECT_EQ(clone->GetType(clone->Get(1)), typeid(std::string));
    EXPECT_EQ(clone->Get(3)->Get<int>(), 4);
}

TEST(BagClone, LeavesATextInThePlaceOfWhatItCannotCopy) {
    ZPA_Ptr<Bag> const bag = NewBag();
    bag->Set("image", ZPA_Ptr<Bytes>(new Bytes));
    bag->Set("images", std::vector<ZPA_Ptr<Bytes>>(2));
    bag->Set("after", 1);
    ZPA_Ptr<Bag> const clone = BagClone(bag);
    std::string const image = clone->Get("image"), images = clone->Get("images");
    EXPECT_EQ(image, "Unsupported clone type: ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned char> >");
    EXPECT_EQ(images.find("Unsupported clone type: std::vector<ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned char> >"),
              0u);
    EXPECT_TRUE(clone->Has("after"));
}

TEST(BagClone, StopsAtTheFirstVectorOfTextsOrBags) {
    std::string const texts = "can't cast to std::vector<string> in a 32-bit process.";
    std::string const bags = "can't cast to std::vector<ZPA_Ptr<Bag>> in a 32-bit process.";
    for (bool const textsInside : {true, false}) {
        ZPA_Ptr<Bag> const bag = NewBag(), inner = NewBag();
        inner->Set("array", ZPA_Ptr<int>(new int[4]()), 4);
        bag->Set("inner", inner);
        if (textsInside)
            inner->Set("v", Texts{"a"}), bag->Set("w", Bags(1));
        else
            inner->Set("v", Bags()), bag->Set("w", Texts());
        try {
            (void)BagClone(bag);
            ADD_FAILURE();
        } catch (char const* message) {
            EXPECT_EQ(message, textsInside ? texts : bags);
        }
    }
}

TEST(BagClone, RefusesWhatHasNoEnd) {
    ZPA_Ptr<Bag> const bag = NewBag(), inner = NewBag();
    bag->Set("inner", inner);
    inner->Set("bag", bag);
    EXPECT_THROW((void)BagClone(bag), std::runtime_error);
    inner->Clear();
    bag->Set("array", ZPA_Ptr<int>(new int[1]()), -1);
    EXPECT_THROW((void)BagClone(bag), std::bad_alloc);
}

TEST(BagAddition, KeepsPlacesAndLetsTheSourceWin) {
    ZPA_Ptr<Bag> target = NewBag();
    ZPA_Ptr<Bag> const source = NewBag(), bag = NewBag();
    for (char const* key : {"kept", "number", "array", "bag", "toBag"}) target->Set(key, 1);
    target->Set("bag", bag);
    target->ClearDirty("");
    ZPA_Ptr<int> const array(new int[2]());
    source->Set("new", 1);
    source->Set("toBag", bag);
    source->Set("bag", 2);
    source->Set("array", array, 2);
    source->Set("number", std::string("text"));
    source->Set("twice", 3);
    source->Set("two", 4);
    source->Rename("two", "twice");
    source->ClearDirty("");
    BagAddition(target, source);
    EXPECT_EQ(target->Key(), (Keys{"kept", "number", "array", "bag", "toBag", "new", "twice", "twice"}));
    EXPECT_EQ(target->GetType("number"), typeid(std::string));
    EXPECT_EQ(target->GetType("bag"), typeid(int));
    EXPECT_EQ(target->GetType("toBag"), typeid(ZPA_Ptr<Bag>));
    EXPECT_EQ(target->GetSize("array"), 2);
    EXPECT_EQ(target->Get(7)->Get<int>(), 4);
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
    ZPA_Ptr<Bag> target = NewBag(), b = NewBag(), c = NewBag();
    target->Set("b", b);
    b->Set("c", c);
    c->Set("old", 1);
    c->Set("both", 1);
    target->Set("null", ZPA_Ptr<Bag>());
    ZPA_Ptr<Bag> const source = NewBag(), otherB = NewBag(), otherC = NewBag();
    otherC->Set("both", 2);
    otherC->Set("new", 2);
    otherB->Set("c", otherC);
    source->Set("b", otherB);
    source->SetSize("b", 9);
    source->Set("null", otherC);
    BagAddition(target, source);
    EXPECT_EQ(c->Key(), (Keys{"old", "both", "new"}));
    EXPECT_EQ(static_cast<int>(target->Get("b/c/both")), 2);
    EXPECT_EQ(target->GetSize("b"), 9);
    EXPECT_EQ(otherC->Key(), (Keys{"both", "new"}));
    ZPA_Ptr<Bag> const made = target->Get("null");
    EXPECT_NE(made.GetPointer(), otherC.GetPointer());
    EXPECT_EQ(made->Key(), otherC->Key());
    ZPA_Ptr<Bag> const same = target->Get("b");
    EXPECT_EQ(same.GetPointer(), b.GetPointer());
}

TEST(BagAddition, OfNothingChangesNothing) {
    ZPA_Ptr<Bag> target = NewBag(), none;
    target->Set("x", 1);
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
    ZPA_Ptr<Bag> target = NewBag(), source = NewBag();
    target->Set("s", source);
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
    ZPA_Ptr<Bag> bag = NewBag(), inVectors = NewBag();
    std::string path;
    for (int level = 0; level < 100000; ++level) {
        ZPA_Ptr<Bag> const outer = NewBag(), outerVector = NewBag();
        outer->Set("x", level);
        outer->Set("a", bag);
        outerVector->Set("v", Bags{inVectors});
        bag = outer;
        inVectors = outerVector;
        if (level > 0) path += "a/";
    }
    ZPA_Ptr<Bag> const clone = BagClone(bag);
    bag->ClearDirty("");
    EXPECT_FALSE(bag->IsDirty("a"));
    BagAddition(bag, clone);
    EXPECT_TRUE(bag->IsDirty("a"));
    EXPECT_EQ(static_cast<int>(clone->Get(path + "x")), 0);
}

TEST(BagQuery, PicksInTheOrderAsked) {
    ZPA_Ptr<Bag> source = NewBag(), inner = NewBag(), none;
    inner->Set("x", 1);
    source->Set("a", inner);
    source->Set("array", ZPA_Ptr<int>(new int[2]()), 2);
    source->Set("x/y", 1);
    source->Set("clean", 1);
    source->ClearDirty("clean");
    ZPA_Ptr<Bag> const picked = BagQuery(source, {"clean", "a/x", "x/y", "array", "", "clean", "none"});
    EXPECT_EQ(picked->Key(), (Keys{"clean", "x/y", "array", "clean"}));
    EXPECT_FALSE(picked->IsDirty("clean"));
    EXPECT_TRUE(picked->IsDirty("array"));
    EXPECT_EQ(picked->GetSize("array"), 2);
    EXPECT_EQ(picked->Get("array").GetPointer(), source->Get("array").GetPointer());
    EXPECT_TRUE(BagQuery(source, {})->Key().empty());
    EXPECT_TRUE(BagQuery(none, {"a"})->Key().empty());
}

}  // namespace
}  // namespace ZPA
