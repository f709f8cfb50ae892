// How the library's own operations read the two vector types that a handle guards.
#ifndef ZPA_SOURCE_INTERNAL_GUARDEDVECTOR_H
#define ZPA_SOURCE_INTERNAL_GUARDEDVECTOR_H

#include <Basics/Any.h>

#include <string>
#include <vector>

namespace ZPA {

// Constructs the vector from the handle as it is done where sizes are unsigned int, which is through the
// conversion to that type. For a vector of texts or of bags that conversion throws its char const*, so that
// these values stop an operation on every platform alike.
template <typename Vector> Vector ReadGuardedVector(AnyHandle const& handle) {
    static_assert(std::is_same<Vector, std::vector<std::string>>::value ||
                      std::is_same<Vector, std::vector<ZPA_Ptr<Bag>>>::value,
                  "only these two are guarded");
    return Vector(static_cast<unsigned int>(handle));
}

}  // namespace ZPA

#endif
