// What a file of benchmarks is written against: rows, each an operation beside an optional peer.
#ifndef ZPA_BENCHMARKS_SUPPORT_BENCHMARK_H
#define ZPA_BENCHMARKS_SUPPORT_BENCHMARK_H

#include <Basics/CoreTypes.h>

#include <functional>
#include <string>

namespace ZPA::Benchmarks {

// Bytes that a pixel moves at least: what is copied or converted is read once and written once. Zeros where
// memory is not what limits, as in an image of one pixel.
struct Traffic {
    double read;
    double written;
};

// Who is timed: ours alone, or beside a peer. All share the scene that they capture, which goes when they go.
struct Contenders {
    std::function<void()> ours;
    std::string peer{};                  // "OpenCV convertTo"
    std::function<void()> theirs{};      // empty without a peer
    std::function<bool()> sameAnswer{};  // asked once both have run once; empty: not compared
};

// An operation on one element type and size.
struct Row {
    std::string operation;  // "CopyPixels"
    std::string type;       // "16u to 64f"
    int width;
    int height;
    Traffic bytesPerPixel;
    std::function<Contenders()> make;  // called when the row's turn comes: no two scenes exist at once
};

// Adds a row. For use before main, from a Registration.
void Register(Row row);

// Registers rows before main. At namespace scope: `Registration const rows([] { Register({...}); });`
struct Registration {
    template <typename Registers> explicit Registration(Registers const& registers) { registers(); }
};

// Ends the row as failed where the operation refused its scene: refusing is quick, and must not be timed.
void Require(SOLVANE_RETURNCODE code);

}  // namespace ZPA::Benchmarks

#endif
