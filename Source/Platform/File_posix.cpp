// Files on POSIX systems.
#define _FILE_OFFSET_BITS 64  // before any header: files beyond 2 GiB on 32-bit systems
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Source/Platform/File.h"

namespace ZPA {

File OpenForReading(char const* path, std::uint64_t& length) {
    // Not blocking, since opening a pipe waits for its writer; regular files do not care.
    int const descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(descriptor);
        return nullptr;
    }
    length = static_cast<std::uint64_t>(status.st_size);
    File file(fdopen(descriptor, "rb"));
    if (!file) close(descriptor);
    return file;
}

}  // namespace ZPA
