// A folder that gets all of its new files, or none.
#ifndef RADIOGRAPH_OUTPUTFOLDER_H
#define RADIOGRAPH_OUTPUTFOLDER_H

#include <filesystem>
#include <string>
#include <vector>

namespace Radiograph {

// Files are written to a hidden folder inside, and move to their places when all are there. Until then
// nothing that the user has is touched, and the destructor takes away what was made. All operations throw a
// Failure with the reason.
class OutputFolder {
public:
    // Makes the folder, and those above it, where they are missing.
    explicit OutputFolder(std::filesystem::path folder);
    ~OutputFolder();
    OutputFolder(OutputFolder const&) = delete;
    OutputFolder& operator=(OutputFolder const&) = delete;

    // Where to write a file of this name for now.
    std::string PathFor(std::string const& name) const { return (staging_ / name).string(); }
    // Writes a file.
    void Write(std::string const& name, std::string const& bytes) const;
    // Moves the files to their places, over files of the same names but not over `source`.
    void Publish(std::filesystem::path const& source);

private:
    void MakeFolders();
    void TakeAway() noexcept;

    std::filesystem::path folder_;
    std::filesystem::path staging_;
    std::vector<std::filesystem::path> made_;  // the outermost first
};

}  // namespace Radiograph

#endif
