// A value of one of a closed list of types, and the handle through which it is read.
#ifndef ZPA_BASICS_ANY_H
#define ZPA_BASICS_ANY_H

#include <Basics/ImageBuffer.h>
#include <Basics/SmartPointer.h>

#include <new>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace ZPA {

class ZPA_API Bag;

/// @cond The closed list of held types, asked for at compile time.
namespace Detail {

template <typename T, typename... List> struct IsOneOf : std::false_type {};
template <typename T, typename First, typename... Rest>
struct IsOneOf<T, First, Rest...>
    : std::conditional<std::is_same<T, First>::value, std::true_type, IsOneOf<T, Rest...>>::type {};

// Scalars, which are the elements of arrays too.
template <typename T>
struct IsHeldScalar
    : IsOneOf<T, char, unsigned char, short, unsigned short, int, unsigned int, float, double, bool> {};

// What stands in a bag without an element count.
template <typename T>
struct IsHeldSingly
    : std::conditional<
          IsHeldScalar<T>::value, std::true_type,
          IsOneOf<T, std::string, ZPA_Ptr<ZPA_Image<unsigned char>>, ZPA_Ptr<ZPA_Image<short>>,
                  ZPA_Ptr<ZPA_Image<unsigned short>>, ZPA_Ptr<ZPA_Image<int>>, ZPA_Ptr<ZPA_Image<double>>,
                  ZPA_Ptr<Bag>, std::vector<ZPA_Ptr<ZPA_Image<unsigned char>>>,
                  std::vector<ZPA_Ptr<ZPA_Image<unsigned short>>>, std::vector<ZPA_Ptr<Bag>>,
                  std::vector<std::string>>>::type {};

template <typename T> struct IsHeldArray : std::false_type {};
template <typename T> struct IsHeldArray<ZPA_Ptr<T>> : IsHeldScalar<T> {};

template <typename T>
struct IsHeld : std::conditional<IsHeldSingly<T>::value || IsHeldArray<T>::value, std::true_type,
                                 std::false_type>::type {};

[[noreturn]] ZPA_API void ThrowBadCast();

}  // namespace Detail
/// @endcond

/// One value of a closed list of types, or nothing. It never changes once it is made, so threads may read it
/// at the same time.
///
/// Held types are
/// - `char`, `unsigned char`, `short`, `unsigned short`, `int`, `unsigned int`, `float`, `double`, `bool`;
/// - `std::string`;
/// - `ZPA_Ptr` to each of the scalars: an array, whose element count stands beside the value in a Bag;
/// - `ZPA_Ptr` to ZPA_Image of `unsigned char`, `short`, `unsigned short`, `int` and `double`;
/// - `ZPA_Ptr<Bag>`;
/// - `std::vector` of `ZPA_Ptr` to ZPA_Image of `unsigned char` and of `unsigned short`, of `ZPA_Ptr<Bag>`,
///   and of `std::string`.
///
/// The compiler refuses any other type; no number is converted.
class ZPA_API Any {
public:
    /// Holds nothing.
    Any() : content(nullptr) {}
    /// Holds a copy of `value`; of a pointer, a further reference. Where there is no memory for the holder
    /// the object holds nothing; what the copy of the value itself throws reaches the caller.
    template <typename T, typename = typename std::enable_if<Detail::IsHeld<T>::value>::type>
    explicit Any(T const& value) : content(new (std::nothrow) holder<T>(value)) {}
    /// A copy of the value, as the constructor makes it.
    Any(Any const& other) : content(other.content ? other.content->clone() : nullptr) {}
    Any& operator=(Any const&) = delete;
    /// Releases what it holds.
    ~Any() { delete content; }

    /// The type of the value; that of `void` if there is none.
    std::type_info const& Type() const { return content ? content->type() : typeid(void); }

    /// The value, valid as long as this object. T is a held type, the vectors among them.
    /// @throws std::bad_cast "bad cast" if the value is of any other type, or there is none.
    template <typename T> T const& Get() const {
        static_assert(Detail::IsHeld<T>::value, "no value has this type");
        if (Type() != typeid(T)) Detail::ThrowBadCast();
        return static_cast<holder<T> const*>(content)->held;
    }

private:
    class ZPA_API placeholder {
    public:
        virtual ~placeholder();
        virtual std::type_info const& type() const = 0;
        virtual placeholder* clone() const = 0;
    };

    template <typename T> class ZPA_TEMPLATE_API holder : public placeholder {
    public:
        explicit holder(T const& value) : held(value) {}
        std::type_info const& type() const override { return typeid(T); }
        placeholder* clone() const override { return new (std::nothrow) holder(held); }

        T const held;
    };

    placeholder* content;
};

/// A handle to an Any, shared with the bag that stores it and with every other handle to it. There is always
/// an Any behind it; the handle of a missing key has one that holds nothing. `handle->Type()` is the type of
/// the value.
///
/// It converts to exactly the type that the value has, and to no other: an `int` cannot be read as a `short`
/// or a `double`. A conversion to any other type throws its message as a plain `char const*`; handle and
/// value stay as they were. Initialise with `=`, as in `std::string text = bag.Get("name");`: where a type
/// can be made of several things that the handle converts to, `std::string text(handle);` and the assignment
/// to an existing text are ambiguous.
///
/// There is no conversion to a vector. Where sizes are `unsigned int`, `std::vector<std::string>(handle)`
/// means the vector of that many texts; the conversion to `unsigned int` stops that with a message of its
/// own. Elsewhere it does not compile. Get reads vectors on every platform.
class ZPA_API AnyHandle : public ZPA_Ptr<Any> {
public:
    /// A handle to a new Any that holds nothing.
    AnyHandle();
    /// Takes `value` over; null stands for a new Any that holds nothing.
    explicit AnyHandle(Any* value);
    /// Shares `value`; an empty pointer stands for a new Any that holds nothing.
    AnyHandle(ZPA_Ptr<Any> const& value);

    /// A copy of the value, of the type that the caller names: any held type, the vectors among them. Of a
    /// pointer it is a further reference.
    /// @throws std::bad_cast "bad cast" if the value is of any other type, or there is none.
    template <typename T> T Get() const {
        static_assert(Detail::IsHeld<T>::value, "no value has this type");
        if (!GetPointer()) Detail::ThrowBadCast();
        return GetPointer()->template Get<T>();
    }

    /// @throws char const* "Can't cast to unsigned integer"; but for a vector of texts "can't cast to
    ///         std::vector<string> in a 32-bit process.", and for a vector of bags "can't cast to
    ///         std::vector<ZPA_Ptr<Bag>> in a 32-bit process."
    operator unsigned int() const;
    /// @throws char const* "Can't cast to integer"
    operator int() const;
    /// @throws char const* "Not an unsigned char."
    operator unsigned char() const;
    /// @throws char const* "Not an char."
    operator char() const;
    /// @throws char const* "Not an unsigned short."
    operator unsigned short() const;
    /// @throws char const* "Not a short type."
    operator short() const;
    /// @throws char const* "Not in float type."
    operator float() const;
    /// @throws char const* "Not in double type."
    operator double() const;
    /// The value, not whether there is one. @throws char const* "Not in boolean type."
    operator bool() const;
    /// @throws char const* "Not in string type."
    operator std::string() const;
    /// @throws char const* "can't cast to ZPA_Ptr<Bag>."
    operator ZPA_Ptr<Bag>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<unsigned char>."
    operator ZPA_Ptr<unsigned char>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<char>."
    operator ZPA_Ptr<char>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<unsigned short>."
    operator ZPA_Ptr<unsigned short>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<short>."
    operator ZPA_Ptr<short>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<unsigned int>."
    operator ZPA_Ptr<unsigned int>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<int>."
    operator ZPA_Ptr<int>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<float>."
    operator ZPA_Ptr<float>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<double>."
    operator ZPA_Ptr<double>() const;
    /// @throws char const* "can't cast to ZPA_Ptr<bool>."
    operator ZPA_Ptr<bool>() const;
    /// @throws std::bad_cast "bad cast"
    operator ZPA_Ptr<ZPA_Image<unsigned char>>() const;
    /// @throws std::bad_cast "bad cast"
    operator ZPA_Ptr<ZPA_Image<short>>() const;
    /// @throws std::bad_cast "bad cast"
    operator ZPA_Ptr<ZPA_Image<unsigned short>>() const;
    /// @throws std::bad_cast "bad cast"
    operator ZPA_Ptr<ZPA_Image<int>>() const;
    /// @throws std::bad_cast "bad cast"
    operator ZPA_Ptr<ZPA_Image<double>>() const;

    /// The value as text: a number in decimal, floating point with six decimals, `bool` as 0 or 1, `char` and
    /// `unsigned char` as the character, a `std::string` up to its first zero. Any other type gives
    /// "toSting() not supported for type " and its name; nothing is thrown.
    ///
    /// @param buffer  Out: the text, cut to `size - 1` characters, and a closing zero. May be null.
    /// @param size    Characters that `buffer` has room for; below 1 nothing is written.
    /// @return `buffer`.
    char* toString(char* buffer, int size = 1024) const;

private:
    std::type_info const& HeldType() const;
    template <typename T> T ReadOr(char const* message) const;
};

/// @cond
#define ZPA_FOR_ARRAYS_(apply)                                                                        \
    apply(signed char) apply(char) apply(unsigned char) apply(short) apply(unsigned short) apply(int) \
        apply(unsigned int) apply(long) apply(float) apply(double) apply(bool)
// The instantiations that the library holds. On Windows callers make their own: all members are inline, and an
// instantiation does not export those.
#if !defined(_WIN32)
#define ZPA_DECLARED_ELSEWHERE_(T)    \
    extern template class counter<T>; \
    extern template class ZPA_Ptr<T>;
ZPA_FOR_ARRAYS_(ZPA_DECLARED_ELSEWHERE_)
ZPA_DECLARED_ELSEWHERE_(Any)
ZPA_DECLARED_ELSEWHERE_(Bag)
#undef ZPA_DECLARED_ELSEWHERE_
#endif
/// @endcond

}  // namespace ZPA

// Whoever releases a value may release a bag, so the class has to be known.
#include <Basics/Bag.h>

#endif
