// A folder for the files of one input after the other.
#ifndef ZPA_FUZZ_SUPPORT_SCRATCHFOLDER_H
#define ZPA_FUZZ_SUPPORT_SCRATCHFOLDER_H

#include <filesystem>
#include <string>

namespace ZPA::Fuzz {

// Where the system has its temporary files. Goes with all that is in it, unless the program crashes.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::string Path(std::string const& name) const { return (path_ / name).string(); }
    // False for a name that the system does not take.
    bool Write(std::string const& name, std::string const& content) const;
    // Removes all files.
    void Clear() const;

private:
    std::filesystem::path path_;
};

}  // namespace ZPA::Fuzz

#endif
