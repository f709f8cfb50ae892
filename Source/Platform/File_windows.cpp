// Files on Windows.
#include <windows.h>

#include <io.h>

#include "Source/Platform/File.h"

namespace ZPA {

File OpenForReading(char const* path, std::uint64_t& length) {
    File file(std::fopen(path, "rb"));
    if (!file) return nullptr;
    auto const handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file.get())));
    LARGE_INTEGER size;
    if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileSizeEx(handle, &size)) return nullptr;
    length = static_cast<std::uint64_t>(size.QuadPart);
    return file;
}

}  // namespace ZPA
