// The table of all operations that the fuzz target calls, and how a call gets its arguments.
#ifndef ZPA_FUZZ_OPERATIONS_OPERATIONS_H
#define ZPA_FUZZ_OPERATIONS_OPERATIONS_H

#include <tuple>
#include <type_traits>
#include <vector>

#include "support/Scene.h"

namespace ZPA::Fuzz {

struct Operation {
    char const* name;
    void (*call)(Scene&);
    unsigned traits;

    // What an input begins with. Stays the same when operations are added.
    std::uint16_t Id() const {
        unsigned id = 5381;
        for (char const* c = name; *c; ++c) id = id * 33 + static_cast<unsigned char>(*c);
        return static_cast<std::uint16_t>(id ^ id >> 16);
    }
};

std::vector<Operation> const& PixelOperations();
std::vector<Operation> const& ArithmeticOperations();
std::vector<Operation> const& Measurements();
std::vector<Operation> const& Filters();
std::vector<Operation> const& RegionOperations();
std::vector<Operation> const& NumericalRoutines();
std::vector<Operation> const& Objects();

// All of them.
inline std::vector<Operation> AllOperations() {
    std::vector<Operation> all;
    for (auto const& family : {PixelOperations(), ArithmeticOperations(), Measurements(), Filters(),
                               RegionOperations(), NumericalRoutines(), Objects()})
        all.insert(all.end(), family.begin(), family.end());
    return all;
}

// An argument of a type.
template <typename T> T Argument(Scene& scene) {
    if constexpr (std::is_same_v<T, ImageAttributes>) {
        return scene.Image();
    } else if constexpr (std::is_same_v<T, ImageAttributes*>) {
        return scene.Output();
    } else if constexpr (std::is_same_v<T, ImageAttributes const*>) {
        return scene.Mask();
    } else if constexpr (std::is_same_v<T, BufferAttributes>) {
        return scene.Buffer();
    } else if constexpr (std::is_same_v<T, BufferAttributes*>) {
        return scene.BufferOutput();
    } else if constexpr (std::is_same_v<T, Rectangle const*>) {
        return scene.Roi();
    } else if constexpr (std::is_same_v<T, APOINT const*>) {
        return scene.Origin();
    } else if constexpr (std::is_same_v<T, void*>) {
        return scene.Elements<unsigned char>(scene.ElementSize());
    } else if constexpr (std::is_pointer_v<T>) {
        using Value = std::remove_const_t<std::remove_pointer_t<T>>;
        if constexpr (std::is_same_v<T, int const*>) return scene.Value<int>(scene.input.Number(0, 40));
        return scene.Elements<Value>(1);
    } else if constexpr (std::is_same_v<T, double>) {
        return scene.input.Real();
    } else if constexpr (std::is_same_v<T, bool>) {
        return scene.input.Choice(2) == 1;
    } else {
        return static_cast<T>(scene.input.Number(0, 20));
    }
}

template <typename... A> void CallWithArguments(Scene& scene, SOLVANE_RETURNCODE (*operation)(A...)) {
    // In braces, which are read from left to right.
    std::tuple<A...> const arguments{Argument<A>(scene)...};
    scene.Answer(std::apply(operation, arguments));
}

// A call of an operation whose arguments say it all.
template <auto operation> void Call(Scene& scene) { CallWithArguments(scene, operation); }

}  // namespace ZPA::Fuzz

#endif
