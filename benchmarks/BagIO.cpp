// Bags saved to documents and loaded from them, and their images beside a file of the same bytes.
#include <Basics/ZPA_BagIO.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "support/Benchmark.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

using BagPtr = ZPA_Ptr<Bag>;

// A folder for files, which goes with all that is in it.
class Folder {
public:
    Folder() : path_(std::filesystem::temp_directory_path() / ("zpa-bench-" + std::to_string(next_++))) {
        std::filesystem::create_directories(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    std::string Path(char const* name) const { return (path_ / name).string(); }

private:
    static inline int next_ = 0;
    std::filesystem::path path_;
};

BagPtr Scalars(int count) {
    BagPtr const bag(new Bag);
    for (int i = 0; i < count; ++i) bag->Set("Value" + std::to_string(i), 0.25 * i);
    return bag;
}

// Half of them in the document, half in side files.
BagPtr Arrays(int count) {
    BagPtr const bag(new Bag);
    for (int i = 0; i < count; ++i) {
        int const size = i % 2 ? 1000 : 100;
        bag->Set("Array" + std::to_string(i), ZPA_Ptr<int>(new int[static_cast<std::size_t>(size)]()), size);
    }
    return bag;
}

// Ten values on each of so many levels.
BagPtr Levels(int count) {
    BagPtr bag = Scalars(10);
    for (int i = 1; i < count; ++i) {
        BagPtr const outer = Scalars(10);
        outer->Set("Inner", bag);
        bag = outer;
    }
    return bag;
}

struct Scene {
    Folder folder;
    BagPtr bag;
};

std::function<Contenders()> Saving(BagPtr (*make)(int), int count) {
    return [=] {
        auto const scene = std::make_shared<Scene>();
        scene->bag = make(count);
        return Contenders{
            [scene] { ZPA_BagIO().SaveBag(scene->bag, scene->folder.Path("bag.xml")); }, "", {}, {}};
    };
}

std::function<Contenders()> Loading(BagPtr (*make)(int), int count) {
    return [=] {
        auto const scene = std::make_shared<Scene>();
        ZPA_BagIO().SaveBag(make(count), scene->folder.Path("bag.xml"));
        return Contenders{
            [scene] { scene->bag = ZPA_BagIO().LoadBag(scene->folder.Path("bag.xml")); }, "", {}, {}};
    };
}

using Pixels = unsigned short;
constexpr int kSide = 2048;
constexpr std::size_t kPixels = std::size_t{kSide} * kSide;

struct ImageScene : Scene {
    ZPA_Ptr<ZPA_Image<Pixels>> image{new ZPA_Image<Pixels>(nullptr, kSide, kSide, 0, 16, 0, true, true)};
    std::string raw = folder.Path("peer.raw");
    std::unique_ptr<Pixels[]> read;

    ImageScene() {
        auto random = RandomImage<Pixels>(kSide, kSide);
        std::copy(random.Row(0), random.Row(0) + kPixels, image->GetBufferPtr());
        bag = BagPtr(new Bag);
        bag->Set("Scan", image);
    }
    void Save() { ZPA_BagIO().SaveBag(bag, folder.Path("bag.xml")); }
    void Write() {
        std::FILE* const file = std::fopen(raw.c_str(), "wb");
        std::fwrite(image->GetBufferPtr(), sizeof(Pixels), kPixels, file);
        std::fclose(file);
    }
    void Read() {
        std::FILE* const file = std::fopen(raw.c_str(), "rb");
        read.reset(new Pixels[kPixels]);
        if (std::fread(read.get(), sizeof(Pixels), kPixels, file) != kPixels) read.reset();
        std::fclose(file);
    }
};

Contenders SavingAnImage() {
    auto const scene = std::make_shared<ImageScene>();
    return {[scene] { scene->Save(); }, "fwrite", [scene] { scene->Write(); },
            [scene] {
                return std::filesystem::file_size(scene->folder.Path("Bag.Scan.2048.2048.raw")) ==
                       std::filesystem::file_size(scene->raw);
            }};
}

Contenders LoadingAnImage() {
    auto const scene = std::make_shared<ImageScene>();
    scene->Save();
    scene->Write();
    return {[scene] { scene->bag = ZPA_BagIO().LoadBag(scene->folder.Path("bag.xml")); }, "fread",
            [scene] { scene->Read(); },
            [scene] {
                ZPA_Ptr<ZPA_Image<Pixels>> const loaded = scene->bag->Get("Scan");
                return scene->read &&
                       std::equal(scene->read.get(), scene->read.get() + kPixels, loaded->GetBufferPtr());
            }};
}

// The size of a row is that of its bag: a row's time divided by its width tells whether the cost is linear.
Registration const rows([] {
    for (int count : {250, 1000, 4000}) {
        Register({"SaveBag scalars", "64f", count, 1, {0, 0}, Saving(Scalars, count)});
        Register({"LoadBag scalars", "64f", count, 1, {0, 0}, Loading(Scalars, count)});
    }
    Register({"SaveBag arrays", "32s", 100, 1, {0, 0}, Saving(Arrays, 100)});
    Register({"LoadBag arrays", "32s", 100, 1, {0, 0}, Loading(Arrays, 100)});
    for (int count : {60, 120, 240}) {
        Register({"SaveBag levels", "64f", count, 1, {0, 0}, Saving(Levels, count)});
        Register({"LoadBag levels", "64f", count, 1, {0, 0}, Loading(Levels, count)});
    }
    Register({"SaveBag image", "16u", kSide, kSide, {2, 2}, SavingAnImage});
    Register({"LoadBag image", "16u", kSide, kSide, {2, 2}, LoadingAnImage});
});

}  // namespace
}  // namespace ZPA::Benchmarks
