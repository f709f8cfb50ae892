// A call of every operation that succeeds, for tests of what becomes of it when something fails around it.
#ifndef ZPA_TESTS_SUPPORT_EVERYOPERATION_H
#define ZPA_TESTS_SUPPORT_EVERYOPERATION_H

#include <functional>
#include <string>
#include <vector>

#include "support/Workplace.h"

namespace ZPA::Testing {

// What a call returns that loses what it has allocated so far: the XML parser without memory does, and an
// offset matrix.
inline constexpr int kLost = -1;

struct OperationCall {
    std::string name;
    // What the call returns if one of its allocations fails; 0 among them if it knows another way.
    std::vector<int> withoutMemory;
    std::function<int(Workplace&)> call;
};
std::vector<OperationCall> const& EveryOperation();

}  // namespace ZPA::Testing

#endif
