// Files: who closes them, and how one is opened for reading.
#ifndef ZPA_SOURCE_PLATFORM_FILE_H
#define ZPA_SOURCE_PLATFORM_FILE_H

#include <cstdint>
#include <cstdio>
#include <memory>

namespace ZPA {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Opens a file for reading and tells its length in bytes. Null for what cannot be read, and for what is no
// regular file: a folder has no elements, and a pipe could keep its reader waiting for ever.
File OpenForReading(char const* path, std::uint64_t& length);

}  // namespace ZPA

#endif
