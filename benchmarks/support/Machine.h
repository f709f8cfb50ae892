// The facts without which figures mean nothing: the machine, the build and the peers.
#ifndef ZPA_BENCHMARKS_SUPPORT_MACHINE_H
#define ZPA_BENCHMARKS_SUPPORT_MACHINE_H

#include <cstddef>
#include <string>
#include <vector>

namespace ZPA::Benchmarks {

struct Peer {
    std::string name;
    std::string version;  // empty if it is not installed
};

struct Machine {
    std::string processor;
    std::string instructionSet;  // that our kernels use here
    std::string compiler;
    bool optimised;
    int threads;
    std::vector<Peer> peers;
    std::size_t memoryBytes;  // moved in all to find the two rates
    double copyBytesPerSecond;
    double readBytesPerSecond;
};

// OpenBLAS takes its threads as it is loaded, and its calls stay slower when most of them are sent away later. So the
// program starts again, with the same words, unless its environment tells the number already.
void StartWithThreads(int threads, char** words);

// Sets the number of threads of ours and of all peers, and looks at the machine.
Machine PrepareMachine(int threads);

}  // namespace ZPA::Benchmarks

#endif
