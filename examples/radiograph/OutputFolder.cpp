// Making, filling and publishing the folder.
#include "radiograph/OutputFolder.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <random>
#include <system_error>

#include "radiograph/Failure.h"

namespace fs = std::filesystem;

namespace Radiograph {
namespace {

[[noreturn]] void Fail(fs::path const& path, std::string const& what, std::error_code error) {
    throw Failure(path.string() + ": " + what + ": " + error.message());
}

}  // namespace

OutputFolder::OutputFolder(fs::path folder) : folder_(std::move(folder)) {
    try {
        MakeFolders();
    } catch (...) {
        TakeAway();
        throw;
    }
}

OutputFolder::~OutputFolder() { TakeAway(); }

void OutputFolder::MakeFolders() {
    std::error_code error;
    fs::path built;
    for (fs::path const& part : folder_) {
        built /= part;
        if (fs::is_directory(built, error)) continue;
        if (fs::create_directory(built, error))
            made_.push_back(built);
        else
            Fail(folder_, "cannot make the folder", error ? error : make_error_code(std::errc::file_exists));
    }
    std::random_device random;
    do {
        staging_ = folder_ / (".radiograph-" + std::to_string(random()));
    } while (!fs::create_directory(staging_, error) && !error);
    if (error) {
        staging_.clear();
        Fail(folder_, "cannot write to the folder", error);
    }
}

void OutputFolder::TakeAway() noexcept {
    std::error_code ignored;
    if (!staging_.empty()) fs::remove_all(staging_, ignored);
    for (; !made_.empty(); made_.pop_back()) fs::remove(made_.back(), ignored);
}

void OutputFolder::Write(std::string const& name, std::string const& bytes) const {
    auto const fail = [&] {
        Fail(folder_ / name, "cannot be written", std::error_code(errno, std::generic_category()));
    };
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(PathFor(name).c_str(), "wb"),
                                                         std::fclose);
    if (!file) fail();
    bool const written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    // What is buffered may fail as late as here.
    if (std::fclose(file.release()) != 0 || !written) fail();
}

void OutputFolder::Publish(fs::path const& source) {
    std::error_code error;
    std::vector<fs::path> names;
    for (auto const& entry : fs::directory_iterator(staging_)) names.push_back(entry.path().filename());
    for (auto const& name : names) {
        fs::path const place = folder_ / name;
        if (fs::is_directory(place, error)) throw Failure(place.string() + ": a folder is in the way");
        if (fs::equivalent(place, source, error)) throw Failure(place.string() + ": would replace the input");
    }
    for (auto const& name : names) {
        fs::rename(staging_ / name, folder_ / name, error);
        if (error) Fail(folder_ / name, "cannot be written", error);
    }
    made_.clear();
}

}  // namespace Radiograph
