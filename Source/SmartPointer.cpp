// Serial numbers, reference counts and their trace lines.
#include <Basics/SmartPointer.h>

#include "Source/Internal/Trace.h"
#include "Source/Internal/TypeName.h"
#include "Source/Platform/Atomic.h"

namespace ZPA {

long allocation_counter = 0;

ISolvane_Object::ISolvane_Object() : id_(InterlockedIncrease(&allocation_counter)) {}
ISolvane_Object::ISolvane_Object(ISolvane_Object const&) = default;
ISolvane_Object& ISolvane_Object::operator=(ISolvane_Object const&) = default;
ISolvane_Object::~ISolvane_Object() = default;
std::type_info const& ISolvane_Object::Type() const { return typeid(ISolvane_Object*); }

namespace Detail {

long Increment(long* count) { return InterlockedIncrease(count); }
long Decrement(long* count) { return InterlockedDecrease(count); }
long Read(long const* count) { return InterlockedRead(count); }
bool MemoryTraced() { return ZPA_Logging::IsDebugEnabled(eLogMemory); }

// The name may find no memory, and a callback may throw; neither may disturb a change of owner.
void TraceCounter(wchar_t const* format, std::type_info const& type, long id, void const* object) noexcept
    try {
    Trace(eLogMemory, format, TypeName(type).c_str(), id, Address(object));
} catch (...) {
}

void TraceCount(wchar_t const* format, std::type_info const& type, long id, void const* object,
                long count) noexcept try {
    Trace(eLogMemory, format, TypeName(type).c_str(), id, Address(object), count);
} catch (...) {
}

}  // namespace Detail

SmartCleaner::SmartCleaner() : object_(nullptr) {}
SmartCleaner::SmartCleaner(SmartCleaner const&) = default;
SmartCleaner& SmartCleaner::operator=(SmartCleaner const&) = default;
SmartCleaner::~SmartCleaner() { delete object_; }
void SmartCleaner::SetObject(ISolvane_Object* object) { object_ = object; }

}  // namespace ZPA
