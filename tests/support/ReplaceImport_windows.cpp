// Another function in the place of one that a DLL imports.
#include "support/ReplaceImport.h"

#include <windows.h>

#include <cstring>

namespace ZPA::Testing {

bool ReplaceImport(char const* module, char const* symbol, void const* function) {
    auto* const base = reinterpret_cast<char*>(GetModuleHandleA(module));
    if (!base) return false;
    auto const* const dos = reinterpret_cast<IMAGE_DOS_HEADER const*>(base);
    auto const* const headers = reinterpret_cast<IMAGE_NT_HEADERS const*>(base + dos->e_lfanew);
    auto const& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto const* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR const*>(base + directory.VirtualAddress);
    for (; library->Name; ++library) {
        auto const* name = reinterpret_cast<IMAGE_THUNK_DATA const*>(base + library->OriginalFirstThunk);
        auto* address = reinterpret_cast<void const**>(base + library->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            auto const* const import =
                reinterpret_cast<IMAGE_IMPORT_BY_NAME const*>(base + name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<char const*>(import->Name), symbol) != 0) continue;
            DWORD access = 0;
            VirtualProtect(address, sizeof *address, PAGE_READWRITE, &access);
            *address = function;
            VirtualProtect(address, sizeof *address, access, &access);
            return true;
        }
    }
    return false;
}

}  // namespace ZPA::Testing
