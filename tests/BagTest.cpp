// Keys, paths, order, sizes and dirty flags.
#include <Basics/Bag.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace ZPA {
namespace {

ZPA_Ptr<Bag> NewBag() { return ZPA_Ptr<Bag>(new Bag); }

template <typename T, typename = void> struct IsSettable : std::false_type {};
template <typename T>
struct IsSettable<T, decltype(std::declval<Bag&>().Set(std::string(), std::declval<T>()))> : std::true_type {
};
static_assert(!IsSettable<long>::value && !IsSettable<signed char>::value && !IsSettable<wchar_t>::value &&
                  !IsSettable<long double>::value && !IsSettable<wchar_t const*>::value &&
                  !IsSettable<void*>::value && !IsSettable<AnyHandle>::value &&
                  !IsSettable<ZPA_Ptr<int>>::value && IsSettable<ZPA_Ptr<Bag>>::value,
              "nothing is stored as another type than it has, and no array without its size");

// A bag as a plain vector.
struct Model {
    struct Entry {
        std::string key;
        int value, size;
        bool dirty;
    };
    std::vector<Entry> entries;

    std::vector<Entry>::iterator Find(std::string const& key) {
        return std::find_if(entries.begin(), entries.end(),
                            [&](Entry const& each) { return each.key == key; });
    }
    void Set(Entry const& entry) {
        auto const found = Find(entry.key);
        if (found == entries.end())
            entries.push_back(entry);
        else
            *found = entry;
    }
};

void ExpectSame(Bag const& bag, Model& model) {
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < model.entries.size(); ++i) {
        Model::Entry const& entry = model.entries[i];
        keys.push_back(entry.key);
        auto const index = static_cast<int>(i);
        EXPECT_EQ(bag.GetSize(index), entry.size);
        AnyHandle const handle = bag.Get(index);
        ZPA_Ptr<int> const array =
            handle->Type() == typeid(int) ? ZPA_Ptr<int>(new int[1]{handle}) : handle.Get<ZPA_Ptr<int>>();
        EXPECT_EQ(*array, entry.value);
        EXPECT_EQ(bag.Get(entry.key).GetPointer(),
                  bag.Get(static_cast<int>(model.Find(entry.key) - model.entries.begin())).GetPointer());
        EXPECT_EQ(bag.IsDirty(entry.key), model.Find(entry.key)->dirty);
    }
    EXPECT_EQ(bag.Key(), keys);
    EXPECT_EQ(bag.Get(static_cast<int>(keys.size()))->Type(), typeid(void));
    EXPECT_EQ(bag.GetSize(static_cast<int>(keys.size())), 0);
    EXPECT_EQ(bag.IsDirty(""), std::any_of(model.entries.begin(), model.entries.end(),
                                           [](Model::Entry const& each) { return each.dirty; }));
}

void DoWhatAPlainVectorDoes(std::vector<std::string> const& names, int steps) {
    std::mt19937 random(1);
    Bag bag;
    Model model;
    for (std::string const& name : names) {
        bag.Set(name, 0);
        model.Set({name, 0, 1, true});
    }
    for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        std::string const key = names[random() % names.size()];
        auto const found = model.Find(key);
        bool const known = found != model.entries.end();
        switch (random() % 12) {
            case 0:
            case 1:
                bag.Set(key, step);
                model.Set({key, step, 1, true});
                break;
            case 2:
            case 3:
                bag.Set(key, ZPA_Ptr<int>(new int[1]{step}), step);
                model.Set({key, step, step, true});
                break;
            case 4:
                bag.Remove(key);
                if (known) model.entries.erase(found);
                break;
            case 5: {
                std::string const to = names[random() % names.size()];
                EXPECT_EQ(bag.Rename(key, to), known);
                if (known) found->key = to;
                break;
            }
            case 6:
                EXPECT_EQ(bag.SetSize(key, -step), known);
                if (known) found->size = -step;
                break;
            case 7:
            case 8:
                if (known) {
                    bag.ClearDirty(key);
                    found->dirty = false;
                }
                break;
            case 9:
                bag.ClearDirty("");
                for (Model::Entry& entry : model.entries) entry.dirty = false;
                break;
            case 10:
                EXPECT_EQ(bag.GetSize(key), known ? found->size : 0);
                EXPECT_EQ(bag.Has(key), known);
                break;
            default:
                if (random() % 20) break;
                bag.Clear();
                model.entries.clear();
        }
        ExpectSame(bag, model);
    }
}

TEST(Bag, DoesWhatAPlainVectorDoes) {
    DoWhatAPlainVectorDoes({"a", "b", "c", "A", "a ", "dd"}, 3000);
    // So many that they are looked up in a table; around that number, too.
    for (int const count : {67, 160}) {
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) names.push_back("key" + std::to_string(i));
        DoWhatAPlainVectorDoes(names, 150);
    }
}

TEST(Bag, StoresLiteralsByTheirType) {
    Bag bag;
    char text[] = "array";
    bag.Set("literal", "100%");
    bag.Set("array", text);
    bag.Set("pointer", &text[0]);
    bag.Set("null", static_cast<char const*>(nullptr));
    for (char const* key : {"literal", "array", "pointer", "null"})
        EXPECT_EQ(bag.GetType(key), typeid(std::string)) << key;
    EXPECT_EQ(static_cast<std::string>(bag.Get("literal")), "100%");
    bag.Set("truth", true);
    EXPECT_EQ(bag.GetType(bag.Get(4)), typeid(bool));
}

TEST(Bag, FollowsPaths) {
    ZPA_Ptr<Bag> const bag = NewBag(), a = NewBag(), b = NewBag();
    b->Set("c", 3);
    b->Set("", 4);
    a->Set("b", b);
    a->Set("nothing", ZPA_Ptr<Bag>());
    bag->Set("a", a);
    bag->Set("x", 1);
    bag->Set("x/y", 2);
    bag->Set("a/flat", 2);
    bag->Set("", 5);
    struct Case {
        std::type_info const& type;
        std::vector<std::string> paths;
    };
    Case const cases[] = {
        {typeid(int), {"x", "/x", "x/", "//x", "a/b/c", "/a//b/c", "a/b/c/"}},
        {typeid(a), {"a", "a/", "a/nothing"}},
        {typeid(void), {"x//", "x/y", "X", "", "/", "a//", "a/b/c/d", "a/flat", "a/nothing/c"}},
    };
    for (Case const& each : cases)
        for (std::string const& path : each.paths) {
            SCOPED_TRACE(path);
            EXPECT_EQ(bag->GetType(path), each.type);
            EXPECT_EQ(bag->Get(path)->Type(), each.type);
            EXPECT_EQ(bag->Has(path), each.type != typeid(void));
        }
    EXPECT_EQ(bag->GetSize("/x"), 0);
    EXPECT_FALSE(bag->SetSize("/x", 2));
    EXPECT_FALSE(bag->Rename("a/b", "z"));
    bag->Remove("/x");
    EXPECT_TRUE(bag->Has("x"));
    EXPECT_EQ(bag->GetSize("x/y"), 1);
    EXPECT_THROW((void)bag->IsDirty("a/b"), std::exception);
    EXPECT_EQ(bag->Get("missing").IsUnique(), true);
    EXPECT_EQ(bag->Get("x").IsUnique(), false);
    EXPECT_EQ(bag->Get(-1)->Type(), typeid(void));
}

TEST(Bag, IsAsDirtyAsItsContents) {
    ZPA_Ptr<Bag> const bag = NewBag(), inner = NewBag(), innermost = NewBag();
    EXPECT_FALSE(bag->IsDirty(""));
    bag->ClearDirty("");
    bag->Set("inner", inner);
    bag->Set("null", ZPA_Ptr<Bag>());
    EXPECT_FALSE(bag->IsDirty("inner"));
    EXPECT_FALSE(bag->IsDirty("null"));
    EXPECT_FALSE(bag->IsDirty(""));
    inner->Set("innermost", innermost);
    innermost->Set("", 1);
    EXPECT_TRUE(bag->IsDirty("inner"));
    bag->ClearDirty("inner");
    bag->ClearDirty("null");
    EXPECT_FALSE(innermost->IsDirty(""));
    innermost->Set("", 2);
    bag->Set("number", 1);
    bag->ClearDirty("number");
    EXPECT_TRUE(bag->IsDirty(""));
    bag->ClearDirty("");
    EXPECT_FALSE(bag->IsDirty(""));
}

TEST(Bag, NamesTheKeyThatHasNoFlag) {
    auto const refusal = [](auto const& call) -> std::string {
        try {
            call();
        } catch (std::exception const& exception) {
            return exception.what();
        }
        return "";
    };
    Bag bag;
    EXPECT_EQ(refusal([&] { bag.ClearDirty("no%s"); }), "Bag.ClearDirty() key not found : no%s");
    EXPECT_EQ(refusal([&] { (void)bag.IsDirty("a/b"); }), "Bag.IsDirty() key not found : a/b");
}

TEST(Bag, MayContainItself) {
    ZPA_Ptr<Bag> bag = NewBag();
    bag->Set("self", bag);
    bag->Set("x", 1);
    EXPECT_TRUE(bag->IsDirty("self"));
    bag->ClearDirty("self");
    EXPECT_FALSE(bag->IsDirty(""));
    EXPECT_TRUE(bag->Has("self/self/x"));
    bag->Clear();
    // The last pointer to the bag is the one in it, which the call releases.
    for (int way = 0; way < 3; ++way) {
        bag = NewBag();
        bag->Set("self", bag);
        Bag& raw = *bag;
        bag = ZPA_Ptr<Bag>();
        if (way == 0) raw.Clear();
        if (way == 1) raw.Remove("self");
        if (way == 2) raw.Set("self", 1);
    }
}

}  // namespace
}  // namespace ZPA
