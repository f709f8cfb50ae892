// Files beside a document, which hold what would be too long for it.
#ifndef ZPA_SOURCE_INTERNAL_SIDEFILE_H
#define ZPA_SOURCE_INTERNAL_SIDEFILE_H

#include <Basics/Any.h>  // its arrays are instantiated once, for all who share them

#include <cstdint>
#include <set>
#include <string>

namespace ZPA {

// The folder that a document's side files lie in: what stands ahead of the last separator of its path, "./"
// if there is none.
std::string FolderOf(std::string const& path);

// The path of a side file; empty for a name that could lie anywhere but in the folder itself. Names come from
// documents, and from the keys of callers.
std::string SideFilePath(std::string const& folder, char const* separator, std::string const& name);

// Writes a block of memory. Nothing tells of a failure.
void WriteSideFile(std::string const& folder, std::string const& name, void const* data, std::uint64_t bytes);

// The memory that one document may ask for beyond what its side files hold: while an object lives, all that its
// thread reads draws on one amount, and a file counts for the first array or image that names it.
class DocumentAllowance {
public:
    DocumentAllowance();
    ~DocumentAllowance();
    DocumentAllowance(DocumentAllowance const&) = delete;
    DocumentAllowance& operator=(DocumentAllowance const&) = delete;

    // Throws std::bad_alloc for more than is left.
    void Take(std::uint64_t bytes, std::string const& path, std::uint64_t fileLength);

private:
    DocumentAllowance* const outer_;
    std::uint64_t left_;
    std::set<std::string> counted_;
};

// Takes memory for what a side file of this length holds, or does not hold, from the allowance of the document
// that is being read. Throws std::bad_alloc if that does not suffice.
void RequireBacked(std::uint64_t bytes, std::string const& path, std::uint64_t fileLength);

// The length of a side file; 0 if it cannot be read.
std::uint64_t SideFileLength(std::string const& path);

// An array from a side file. Elements that the file does not have are zero, all of them if it cannot be read.
// Throws std::bad_alloc for a negative count, and as RequireBacked.
template <typename T> ZPA_Ptr<T> ReadSideFile(std::string const& folder, std::string const& name, int count);

}  // namespace ZPA

#endif
