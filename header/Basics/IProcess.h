// The base of a processing step whose parameters travel in a bag.
#ifndef ZPA_BASICS_IPROCESS_H
#define ZPA_BASICS_IPROCESS_H

#include <Basics/Bag.h>

#include <string>
#include <typeinfo>

namespace ZPA {

/// A processing step derives from it. It renames the step's parameters to the keys that its caller chose, and
/// checks that a bag has them. A step cannot be copied.
class ZPA_API IProcess {
public:
    virtual ~IProcess();

protected:
    /// @param map  Shared, and may be null. Its keys are the names of the step's parameters, its values the
    ///             caller's keys, each a `std::string`. Names that it lacks are the caller's keys themselves.
    explicit IProcess(ZPA_Ptr<Bag> map);

    /// The caller's key of a parameter. The map is read with Bag::Get, so a name may be a path in it.
    /// @throws char const* "Not in string type." if the map has another value than a text under `name`.
    std::string MapName(std::string const& name) const;

    /// Whether a bag has a parameter of a type. What is wrong is logged as an error.
    ///
    /// The first name that is present decides: a value of the wrong type under `name` fails, whatever stands
    /// under `alternative`. Both names are mapped, and the keys may be paths.
    ///
    /// @param bag          Where to look; null counts as empty.
    /// @param name         The parameter; null counts as missing.
    /// @param type         The type that its value must have, as in `typeid(int)`.
    /// @param alternative  Another name for it, or null.
    ///
    /// @return true if it is there. Else false, with an error of code 8, "Param '`name`' must be of type
    ///         '`type`'", or of code 4, "Required param '`name`' of type '`type`' missing"; both tell the
    ///         name as it was given, the former the one that was present.
    ///
    /// @throws char const* what MapName throws.
    bool CheckParam(ZPA_Ptr<Bag> const& bag, char const* name, std::type_info const& type,
                    char const* alternative) const;

private:
    IProcess(IProcess const&) = delete;
    IProcess& operator=(IProcess const&) = delete;

    ZPA_Ptr<Bag> map_;
};

}  // namespace ZPA

#endif
