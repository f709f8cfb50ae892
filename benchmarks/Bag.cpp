// What keys cost: a bag filled, read, copied, picked from and merged, of as many keys as a step has parameters, and
// of more. The peer walks one list of keys and shared values, without sizes, flags or paths.
#include <Basics/Bag.h>
#include <Basics/BagOperations.h>

#include <algorithm>
#include <any>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "support/Benchmark.h"

namespace ZPA::Benchmarks {
namespace {

using Pairs = std::list<std::pair<std::string, std::shared_ptr<std::any const>>>;

std::vector<std::string> Keys(int count) {
    std::vector<std::string> keys;
    for (int i = 0; i < count; ++i) keys.push_back("Parameter" + std::to_string(i));
    return keys;
}

void SetAll(Bag& bag, std::vector<std::string> const& keys) {
    for (std::string const& key : keys) bag.Set(key, 1);
}

void SetAll(Pairs& pairs, std::vector<std::string> const& keys) {
    for (std::string const& key : keys) {
        auto value = std::make_shared<std::any const>(1);
        auto const found =
            std::find_if(pairs.begin(), pairs.end(), [&](auto const& pair) { return pair.first == key; });
        if (found != pairs.end())
            found->second = std::move(value);
        else
            pairs.emplace_back(key, std::move(value));
    }
}

struct Scene {
    explicit Scene(int count) : keys(Keys(count)) {
        SetAll(bag, keys);
        SetAll(pairs, keys);
    }
    std::vector<std::string> keys;
    Bag bag;
    Pairs pairs;
    int ours = 0, theirs = 0;
};

Contenders Fill(int count) {
    auto const scene = std::make_shared<Scene>(count);
    return {[scene] {
                Bag bag;
                SetAll(bag, scene->keys);
            },
            "std::list of std::any",
            [scene] {
                Pairs pairs;
                SetAll(pairs, scene->keys);
            },
            {}};
}

Contenders Replace(int count) {
    auto const scene = std::make_shared<Scene>(count);
    return {[scene] { SetAll(scene->bag, scene->keys); },
            "std::list of std::any",
            [scene] { SetAll(scene->pairs, scene->keys); },
            {}};
}

Contenders Read(int count) {
    auto const scene = std::make_shared<Scene>(count);
    return {[scene] {
                scene->ours = 0;
                for (std::string const& key : scene->keys)
                    scene->ours += static_cast<int>(scene->bag.Get(key));
            },
            "std::list of std::any",
            [scene] {
                scene->theirs = 0;
                for (std::string const& key : scene->keys) {
                    auto const found = std::find_if(scene->pairs.begin(), scene->pairs.end(),
                                                    [&](auto const& pair) { return pair.first == key; });
                    auto const value = found->second;
                    scene->theirs += std::any_cast<int>(*value);
                }
            },
            [scene] { return scene->ours == scene->theirs; }};
}

struct Whole {
    explicit Whole(int count) : keys(Keys(count)), bag(new Bag) {
        SetAll(*bag, keys);
        SetAll(pairs, keys);
    }
    std::vector<std::string> keys;
    ZPA_Ptr<Bag> bag;
    Pairs pairs;
};

Contenders Clone(int count) {
    auto const scene = std::make_shared<Whole>(count);
    return {[scene] { BagClone(scene->bag); },
            "std::list of std::any",
            [scene] {
                Pairs copy;
                for (auto const& [key, value] : scene->pairs)
                    copy.emplace_back(key, std::make_shared<std::any const>(*value));
            },
            {}};
}

Contenders Pick(int count) {
    auto const scene = std::make_shared<Whole>(count);
    return {[scene] { BagQuery(scene->bag, scene->keys); },
            "std::list of std::any",
            [scene] {
                Pairs picked;
                for (std::string const& key : scene->keys)
                    picked.push_back(*std::find_if(scene->pairs.begin(), scene->pairs.end(),
                                                   [&](auto const& pair) { return pair.first == key; }));
            },
            {}};
}

// To a bag that has the keys already.
Contenders Merge(int count) {
    auto const scene = std::make_shared<Whole>(count), other = std::make_shared<Whole>(count);
    return {[=] { BagAddition(scene->bag, other->bag); },
            "std::list of std::any",
            [=] {
                for (auto const& [key, value] : other->pairs)
                    std::find_if(scene->pairs.begin(), scene->pairs.end(), [&name = key](auto const& pair) {
                        return pair.first == name;
                    })->second = value;
            },
            {}};
}

// A row's "pixels" are keys.
Registration const rows([] {
    for (int const count : {10, 100, 1000}) {
        Register({"Bag::Set new keys", "int", count, 1, {0, 0}, [count] { return Fill(count); }});
        Register({"Bag::Set known keys", "int", count, 1, {0, 0}, [count] { return Replace(count); }});
        Register({"Bag::Get", "int", count, 1, {0, 0}, [count] { return Read(count); }});
        Register({"BagClone", "int", count, 1, {0, 0}, [count] { return Clone(count); }});
        Register({"BagQuery", "int", count, 1, {0, 0}, [count] { return Pick(count); }});
        Register({"BagAddition", "int", count, 1, {0, 0}, [count] { return Merge(count); }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
