// Files beside a document, which hold what would be too long for it.
#include "Source/Internal/SideFile.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "Source/Internal/Memory.h"
#include "Source/Internal/Path.h"
#include "Source/Platform/File.h"

namespace ZPA {
namespace {

// What a document may ask for without files that back it.
constexpr std::uint64_t kUnbackedBytes = 64 << 20;

// That of the document that this thread is reading.
thread_local DocumentAllowance* allowance = nullptr;

bool StaysInFolder(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && SplitPath(name).folder.empty();
}

}  // namespace

std::string FolderOf(std::string const& path) {
    std::size_t const separator = path.find_last_of("/\\");
    return separator == path.npos ? "./" : path.substr(0, separator);
}

std::string SideFilePath(std::string const& folder, char const* separator, std::string const& name) {
    return StaysInFolder(name) ? folder + separator + name : std::string();
}

void WriteSideFile(std::string const& folder, std::string const& name, void const* data,
                   std::uint64_t bytes) {
    File const file(std::fopen(SideFilePath(folder, "/", name).c_str(), "wb"));
    if (file && data) std::fwrite(data, 1, static_cast<std::size_t>(bytes), file.get());
}

DocumentAllowance::DocumentAllowance() : outer_(allowance), left_(kUnbackedBytes) { allowance = this; }
DocumentAllowance::~DocumentAllowance() { allowance = outer_; }

void DocumentAllowance::Take(std::uint64_t bytes, std::string const& path, std::uint64_t fileLength) {
    bool const isNew = fileLength > 0 && counted_.insert(path).second;
    std::uint64_t const unbacked = bytes - (isNew ? std::min(bytes, fileLength) : 0);
    if (unbacked > left_) throw std::bad_alloc();
    left_ -= unbacked;
}

void RequireBacked(std::uint64_t bytes, std::string const& path, std::uint64_t fileLength) {
    if (allowance) return allowance->Take(bytes, path, fileLength);
    DocumentAllowance().Take(bytes, path, fileLength);
}

std::uint64_t SideFileLength(std::string const& path) {
    std::uint64_t length = 0;
    return OpenForReading(path.c_str(), length) ? length : 0;
}

template <typename T> ZPA_Ptr<T> ReadSideFile(std::string const& folder, std::string const& name, int count) {
    std::uint64_t length = 0;
    std::string const path = SideFilePath(folder, "/", name);
    File const file = OpenForReading(path.c_str(), length);
    std::uint64_t const bytes =
        count < 0 ? kNoSize : BlockBytes(static_cast<std::uint64_t>(count), sizeof(T));
    RequireBacked(bytes, path, file ? length : 0);

    auto const size = static_cast<std::size_t>(count);
    std::unique_ptr<T[]> elements(new T[size]);
    std::size_t const read =
        file ? std::fread(elements.get(), 1, static_cast<std::size_t>(bytes), file.get()) : 0;
    std::memset(reinterpret_cast<char*>(elements.get()) + read, 0, static_cast<std::size_t>(bytes) - read);
    return ZPA_Ptr<T>(elements.release());
}

template ZPA_Ptr<char> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<unsigned char> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<short> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<unsigned short> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<int> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<unsigned int> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<float> ReadSideFile(std::string const&, std::string const&, int);
template ZPA_Ptr<double> ReadSideFile(std::string const&, std::string const&, int);

}  // namespace ZPA
