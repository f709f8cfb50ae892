// A folder for the files of one input after the other.
#include "support/ScratchFolder.h"

#include <unistd.h>

#include <fstream>

namespace ZPA::Fuzz {
namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() : path_(fs::temp_directory_path() / ("zpa-fuzz-" + std::to_string(getpid()))) {
    fs::create_directories(path_);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

bool ScratchFolder::Write(std::string const& name, std::string const& content) const {
    std::ofstream file(path_ / name, std::ios::binary);
    file << content;
    return static_cast<bool>(file);
}

void ScratchFolder::Clear() const {
    for (auto const& each : fs::directory_iterator(path_)) {
        std::error_code ignored;
        fs::remove_all(each.path(), ignored);
    }
}

}  // namespace ZPA::Fuzz
