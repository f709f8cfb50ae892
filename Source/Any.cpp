// What a handle converts to, the texts of its refusals, and values as text.
#include <Basics/Any.h>

#include <cstdio>

#include "Source/Internal/BagEntries.h"
#include "Source/Internal/TypeName.h"

namespace ZPA {

namespace Detail {

void ThrowBadCast() {
    struct BadCast : std::bad_cast {
        char const* what() const noexcept override { return "bad cast"; }
    };
    throw BadCast();
}

}  // namespace Detail

Any::placeholder::~placeholder() = default;

AnyHandle::AnyHandle() : AnyHandle(new Any) {}
AnyHandle::AnyHandle(Any* value) : ZPA_Ptr<Any>(value ? value : new Any) {}
AnyHandle::AnyHandle(ZPA_Ptr<Any> const& value)
    : ZPA_Ptr<Any>(value.GetPointer() ? value : ZPA_Ptr<Any>(new Any)) {}

// The base class can be assigned an empty pointer, so there may be no Any after all.
std::type_info const& AnyHandle::HeldType() const {
    return GetPointer() ? GetPointer()->Type() : typeid(void);
}

template <typename T> T AnyHandle::ReadOr(char const* message) const {
    if (HeldType() != typeid(T)) throw message;
    return Get<T>();
}

AnyHandle::operator unsigned int() const {
    // Where sizes are unsigned int, a vector made of a handle comes here for its size.
    if (HeldType() == typeid(std::vector<std::string>))
        throw "can't cast to std::vector<string> in a 32-bit process.";
    if (HeldType() == typeid(std::vector<ZPA_Ptr<Bag>>))
        throw "can't cast to std::vector<ZPA_Ptr<Bag>> in a 32-bit process.";
    return ReadOr<unsigned int>("Can't cast to unsigned integer");
}

AnyHandle::operator int() const { return ReadOr<int>("Can't cast to integer"); }
AnyHandle::operator unsigned char() const { return ReadOr<unsigned char>("Not an unsigned char."); }
AnyHandle::operator char() const { return ReadOr<char>("Not an char."); }
AnyHandle::operator unsigned short() const { return ReadOr<unsigned short>("Not an unsigned short."); }
AnyHandle::operator short() const { return ReadOr<short>("Not a short type."); }
AnyHandle::operator float() const { return ReadOr<float>("Not in float type."); }
AnyHandle::operator double() const { return ReadOr<double>("Not in double type."); }
AnyHandle::operator bool() const { return ReadOr<bool>("Not in boolean type."); }
AnyHandle::operator std::string() const { return ReadOr<std::string>("Not in string type."); }

#define ZPA_POINTER_CONVERSION(T) \
    AnyHandle::operator ZPA_Ptr<T>() const { return ReadOr<ZPA_Ptr<T>>("can't cast to ZPA_Ptr<" #T ">."); }
ZPA_POINTER_CONVERSION(Bag)
ZPA_POINTER_CONVERSION(unsigned char)
ZPA_POINTER_CONVERSION(char)
ZPA_POINTER_CONVERSION(unsigned short)
ZPA_POINTER_CONVERSION(short)
ZPA_POINTER_CONVERSION(unsigned int)
ZPA_POINTER_CONVERSION(int)
ZPA_POINTER_CONVERSION(float)
ZPA_POINTER_CONVERSION(double)
ZPA_POINTER_CONVERSION(bool)
#undef ZPA_POINTER_CONVERSION

#define ZPA_IMAGE_CONVERSION(T) \
    AnyHandle::operator ZPA_Ptr<ZPA_Image<T>>() const { return Get<ZPA_Ptr<ZPA_Image<T>>>(); }
ZPA_IMAGE_CONVERSION(unsigned char)
ZPA_IMAGE_CONVERSION(short)
ZPA_IMAGE_CONVERSION(unsigned short)
ZPA_IMAGE_CONVERSION(int)
ZPA_IMAGE_CONVERSION(double)
#undef ZPA_IMAGE_CONVERSION

char* AnyHandle::toString(char* buffer, int size) const {
    if (!buffer || size < 1) return buffer;
    auto const print = [&](auto... formatAndValues) {
        std::snprintf(buffer, static_cast<std::size_t>(size), formatAndValues...);
        return buffer;
    };
    Any const nothing;
    Any const& value = GetPointer() ? *GetPointer() : nothing;
    if (auto const* held = HeldAs<int>(value)) return print("%d", *held);
    if (auto const* held = HeldAs<unsigned int>(value)) return print("%u", *held);
    if (auto const* held = HeldAs<unsigned char>(value)) return print("%c", *held);
    if (auto const* held = HeldAs<char>(value)) return print("%c", *held);
    if (auto const* held = HeldAs<unsigned short>(value)) return print("%u", *held);
    if (auto const* held = HeldAs<short>(value)) return print("%i", *held);
    if (auto const* held = HeldAs<float>(value)) return print("%f", static_cast<double>(*held));
    if (auto const* held = HeldAs<double>(value)) return print("%f", *held);
    if (auto const* held = HeldAs<bool>(value)) return print("%i", *held);
    // With its room as precision, as printing a text of more characters than an int counts fails.
    if (auto const* held = HeldAs<std::string>(value)) return print("%.*s", size - 1, held->c_str());
    return print("toSting() not supported for type %s", TypeName(value.Type()).c_str());
}

#define ZPA_DEFINED_HERE(T)    \
    template class counter<T>; \
    template class ZPA_Ptr<T>;
ZPA_FOR_ARRAYS_(ZPA_DEFINED_HERE)
ZPA_DEFINED_HERE(Any)
ZPA_DEFINED_HERE(Bag)
#undef ZPA_DEFINED_HERE

}  // namespace ZPA
