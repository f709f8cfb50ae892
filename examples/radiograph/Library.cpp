// The library's last error, kept until somebody asks for it.
#include "radiograph/Library.h"

#include <Basics/Logging.h>

#include <utility>

#include "radiograph/Failure.h"

namespace Radiograph {
namespace {

std::string lastError;

void KeepError(wchar_t const* /*location*/, int /*code*/, wchar_t const* message) {
    lastError.clear();
    // The library widens the bytes of a path one by one.
    for (; *message; ++message)
        lastError += *message < 0x100 ? static_cast<char>(static_cast<unsigned char>(*message)) : '?';
}

}  // namespace

void ListenToLibrary() { ZPA::ZPA_Logging::SetErrorCallback(KeepError); }

void Check(ZPA::SOLVANE_RETURNCODE code, std::string const& what) {
    std::string const logged = std::exchange(lastError, {});
    if (code == ZPA::SOLVANE_OK) return;
    throw Failure(what + ": " + (logged.empty() ? "error " + std::to_string(code) : logged));
}

}  // namespace Radiograph
