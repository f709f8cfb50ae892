// How a step's parameters are renamed and checked.
#include <Basics/IProcess.h>

#include "Source/Internal/Frame.h"
#include "Source/Internal/TypeName.h"

namespace ZPA {

IProcess::IProcess(ZPA_Ptr<Bag> map) : map_(map) {}
IProcess::~IProcess() = default;

std::string IProcess::MapName(std::string const& name) const {
    if (!map_.GetPointer() || !map_->Has(name)) return name;
    return map_->Get(name);
}

bool IProcess::CheckParam(ZPA_Ptr<Bag> const& bag, char const* name, std::type_info const& type,
                          char const* alternative) const {
    for (char const* const present : {name, alternative}) {
        if (!present) continue;
        std::string const key = MapName(present);
        std::type_info const& found = bag.GetPointer() ? bag->GetType(key) : typeid(void);
        if (found == typeid(void)) continue;
        if (found == type) return true;
        (void)Fail(SOLVANE_PARAM_TYPE, L"Param '%S' must be of type '%S'", present, TypeName(type).c_str());
        return false;
    }
    (void)Fail(SOLVANE_INVALID_ARGUMENT, L"Required param '%S' of type '%S' missing", name,
               TypeName(type).c_str());
    return false;
}

}  // namespace ZPA
