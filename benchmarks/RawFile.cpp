// Raw files and pictures for the eye, beside the C library's own reading and writing of the same bytes.
#include <Basics/RawFile.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

namespace fs = std::filesystem;

// A folder that goes with its last user.
class Scratch {
public:
    Scratch() {
        std::string name = (fs::temp_directory_path() / "zpa-benchmark-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("cannot make a folder for files");
        folder_ = name;
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;

    std::string PathFor(char const* name) const { return (folder_ / name).string(); }

private:
    fs::path folder_;
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File Open(std::string const& path, char const* mode) {
    File file(std::fopen(path.c_str(), mode));
    if (!file) throw std::runtime_error("cannot open " + path);
    return file;
}

void Write(std::string const& path, void const* bytes, std::size_t size) {
    File const file = Open(path, "wb");
    if (std::fwrite(bytes, 1, size, file.get()) != size) throw std::runtime_error("cannot write " + path);
}

// What is written is dropped: how fast the disk takes it is not ours to time.
constexpr char kNowhere[] = "/dev/null";

template <typename T> struct Scene {
    explicit Scene(int side) : Scene(RandomImage<T>(side, side)) {}
    explicit Scene(Image<T> pixels) : image(std::move(pixels)), bytes(image.Elements().size() * sizeof(T)) {}

    Image<T> image;
    std::size_t bytes;
    Scratch scratch;
};

Contenders WriteRaw(int side) {
    auto const scene = std::make_shared<Scene<unsigned short>>(side);
    return {[scene] { Require(dumpRaw(scene->image.Row(0), static_cast<int>(scene->bytes), kNowhere)); },
            "fwrite", [scene] { Write(kNowhere, scene->image.Row(0), scene->bytes); }};
}

// A new block of memory with the bytes of a file.
using Reading = void* (*)(std::string const& path, int side);

template <typename T> Contenders Read(int side, std::string const& name, Reading read) {
    auto const scene = std::make_shared<Scene<T>>(side);
    std::string const path = scene->scratch.PathFor(name.c_str());
    Write(path, scene->image.Row(0), scene->bytes);
    return {[=] { FreePixels(read(path, side)); }, "fread",
            [=] {
                File const file = Open(path, "rb");
                std::unique_ptr<unsigned char[]> const pixels(new unsigned char[scene->bytes]);
                if (std::fread(pixels.get(), 1, scene->bytes, file.get()) != scene->bytes)
                    throw std::runtime_error("cannot read " + path);
            }};
}

void* ReadAsTold(std::string const& path, int side) {
    void* pixels = nullptr;
    Require(ReadRaw(path.c_str(), &pixels, eUInt16, side, side, side, false));
    return pixels;
}
void* ReadAsNamed(std::string const& path, int) {
    ImageAttributes image;
    Require(ReadRawFile(path.c_str(), &image));
    return image.buffer;
}
void* ReadAsBuffer(std::string const& path, int) {
    BufferAttributes buffer;
    Require(ReadRawBuffer(path.c_str(), &buffer));
    return buffer.buffer;
}

template <typename T> using Dump = SOLVANE_RETURNCODE (*)(T const*, int, int, int, char const*);

// The file's name, which tells its dimensions, leads nowhere.
template <typename T> Contenders WriteNamed(int side, char const* extension, Dump<T> dump) {
    auto const scene = std::make_shared<Scene<T>>(side);
    std::string const name = scene->scratch.PathFor("image"), length = '.' + std::to_string(side);
    std::string const path = name + length + length + extension;
    fs::create_symlink(kNowhere, path);
    return {[=] { Require(dump(scene->image.Row(0), side, side, -1, name.c_str())); }, "fwrite",
            [=] { Write(path, scene->image.Row(0), scene->bytes); }};
}

// Not the whole range of a byte, which OpenCV copies.
template <typename T> Contenders WritePgm(int side) {
    auto const scene = std::make_shared<Scene<T>>(RandomImage<T>(side, side, 0, 0, 250));
    Contenders contenders{
        [scene, side] { Require(template_dumpPgm8bit(scene->image.Row(0), side, side, kNowhere)); }};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV minMaxLoc, convertTo";
    contenders.theirs = [scene, image = MatView(scene->image), grey = cv::Mat()]() mutable {
        double low = 0, high = 0;
        cv::minMaxLoc(image, &low, &high);
        double const scale = 255 / (high - low);
        image.convertTo(grey, CV_8U, scale, -low * scale);
        Write(kNowhere, grey.data, grey.total());
    };
#endif
    return contenders;
}

template <typename T> void RegisterPgm(int side) {
    Register({"dumpPgm8bit", kTypeName<T>, side, side, {}, [=] { return WritePgm<T>(side); }});
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        Register({"dumpRaw", "16u", side, side, {}, [=] { return WriteRaw(side); }});
        std::string const length = '.' + std::to_string(side), bytes = '.' + std::to_string(2 * side * side);
        Register({"DumpRawImage", "16u", side, side, {}, [=] {
                      return WriteNamed<unsigned short>(side, ".raw", DumpRawImage);
                  }});
        Register({"DumpRawMask", "8u", side, side, {}, [=] {
                      return WriteNamed<unsigned char>(side, ".mask", DumpRawMask);
                  }});
        auto const addReading = [=](char const* operation, std::string const& name, Reading read) {
            Register(
                {operation, "16u", side, side, {}, [=] { return Read<unsigned short>(side, name, read); }});
        };
        addReading("ReadRaw", "file", ReadAsTold);
        addReading("ReadRawFile", "file" + length + length + ".raw", ReadAsNamed);
        addReading("ReadRawBuffer", "file" + bytes + ".raw", ReadAsBuffer);
        RegisterPgm<unsigned char>(side);
        RegisterPgm<unsigned short>(side);
        RegisterPgm<double>(side);
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
