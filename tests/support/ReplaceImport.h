// Another function in the place of one that a DLL imports.
#ifndef ZPA_TESTS_SUPPORT_REPLACEIMPORT_H
#define ZPA_TESTS_SUPPORT_REPLACEIMPORT_H

namespace ZPA::Testing {

// Functions of a program do not stand in for those that a DLL imports, as they do where symbols are shared by
// name: the DLL's table of imports has to be changed. False if the module is not loaded, or does not import
// the symbol.
bool ReplaceImport(char const* module, char const* symbol, void const* function);

}  // namespace ZPA::Testing

#endif
