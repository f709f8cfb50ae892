// Bags saved to documents and loaded from them, beside the same bytes written and read as they are.
#include <Basics/ZPA_BagIO.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

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
    std::string Path(std::string const& name) const { return (path_ / name).string(); }

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

// One image; the count is its side.
BagPtr Scan(int side) {
    auto random = RandomImage<unsigned short>(side, side);
    ZPA_Ptr<ZPA_Image<unsigned short>> const image(
        new ZPA_Image<unsigned short>(nullptr, side, side, 0, 16, 0, true, false));
    std::copy(random.Elements().begin(), random.Elements().end(), image->GetBufferPtr());
    BagPtr const bag(new Bag);
    bag->Set("Scan", image);
    return bag;
}

// A bag in its document, and the same files once more for the peer.
struct Scene {
    struct Copy {
        std::string path;
        std::unique_ptr<char[]> bytes;
        std::size_t size;
    };
    Folder folder, peers;
    std::string document = folder.Path("bag.xml");
    BagPtr bag;
    std::vector<Copy> copies;

    explicit Scene(BagPtr const& made) : bag(made) {
        Save();
        for (auto const& each : std::filesystem::directory_iterator(folder.Path(""))) {
            copies.push_back({peers.Path(each.path().filename().string()), nullptr, each.file_size()});
            std::filesystem::copy_file(each.path(), copies.back().path);
        }
        ReadCopies();
    }
    void Save() { ZPA_BagIO().SaveBag(bag, document); }
    void Load() { bag = ZPA_BagIO().LoadBag(document); }
    void WriteCopies() {
        for (Copy const& copy : copies) {
            std::FILE* const file = std::fopen(copy.path.c_str(), "wb");
            std::fwrite(copy.bytes.get(), 1, copy.size, file);
            std::fclose(file);
        }
    }
    void ReadCopies() {
        for (Copy& copy : copies) {
            std::FILE* const file = std::fopen(copy.path.c_str(), "rb");
            copy.bytes.reset(new char[copy.size]);
            copy.size = std::fread(copy.bytes.get(), 1, copy.size, file);
            std::fclose(file);
        }
    }
};

std::function<Contenders()> Saving(BagPtr (*make)(int), int count) {
    return [=] {
        auto const scene = std::make_shared<Scene>(make(count));
        return Contenders{[scene] { scene->Save(); }, "fwrite", [scene] { scene->WriteCopies(); }, {}};
    };
}

std::function<Contenders()> Loading(BagPtr (*make)(int), int count) {
    return [=] {
        auto const scene = std::make_shared<Scene>(make(count));
        return Contenders{[scene] { scene->Load(); }, "fread", [scene] { scene->ReadCopies(); }, {}};
    };
}

void RegisterBoth(char const* what, char const* type, int width, int height, Traffic traffic,
                  BagPtr (*make)(int)) {
    Register({std::string("SaveBag ") + what, type, width, height, traffic, Saving(make, width)});
    Register({std::string("LoadBag ") + what, type, width, height, traffic, Loading(make, width)});
}

// The peer moves the same bytes from and to as many files, and knows nothing of what they mean. A row is as
// wide as its bag: times of the same kind tell whether the cost is linear.
Registration const rows([] {
    for (int count : {250, 1000, 4000}) RegisterBoth("scalars", "64f", count, 1, {0, 0}, Scalars);
    RegisterBoth("arrays", "32s", 100, 1, {0, 0}, Arrays);
    for (int count : {60, 120, 240}) RegisterBoth("levels", "64f", count, 1, {0, 0}, Levels);
    RegisterBoth("image", "16u", 2048, 2048, {2, 2}, Scan);
});

}  // namespace
}  // namespace ZPA::Benchmarks
