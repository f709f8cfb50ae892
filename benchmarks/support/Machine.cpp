#include "support/Machine.h"

#include <hwy/highway.h>
#include <omp.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "support/Memory.h"
#include "support/Quantile.h"
#ifdef ZPA_PEER_OPENCV
#include <opencv2/core.hpp>
#endif
#ifdef ZPA_PEER_FFTW
#include <fftw3.h>
#endif
#ifdef ZPA_PEER_LAPACK
#include <cblas.h>
#endif
#ifdef ZPA_PEER_EIGEN
#include <Eigen/Core>
#endif

namespace ZPA::Benchmarks {
namespace {

std::string Processor() {
    std::ifstream facts("/proc/cpuinfo");
    for (std::string line; std::getline(facts, line);)
        if (line.compare(0, 10, "model name") == 0) return line.substr(line.find(':') + 2);
    return "unknown";
}

std::string Compiler() {
#ifdef __clang__
    return __VERSION__;  // begins with the compiler's name
#else
    return "GCC " __VERSION__;
#endif
}

bool Optimised() {
#ifdef __OPTIMIZE__
    return true;
#else
    return false;
#endif
}

std::vector<Peer> PreparePeers([[maybe_unused]] int threads) {
    Peer openCv{"OpenCV", ""}, fftw{"FFTW", ""}, lapack{"LAPACK", ""}, eigen{"Eigen", ""};
#ifdef ZPA_PEER_OPENCV
    cv::setNumThreads(threads);
    openCv.version = CV_VERSION;
#endif
#ifdef ZPA_PEER_FFTW
    fftw.version = fftw_version;
#endif
#ifdef ZPA_PEER_LAPACK
    openblas_set_num_threads(threads);  // it starts with no more than there are processors
    lapack.version = openblas_get_config();
#endif
#ifdef ZPA_PEER_EIGEN
    eigen.version = std::to_string(EIGEN_WORLD_VERSION) + "." + std::to_string(EIGEN_MAJOR_VERSION) + "." +
                    std::to_string(EIGEN_MINOR_VERSION);
#endif
    return {openCv, fftw, lapack, eigen};
}

double BytesPerSecond(std::size_t read, std::size_t written) {
    auto const move = MovingMemory(read, written);
    std::vector<double> rates;
    for (int pass = 0; pass < 9; ++pass) {
        auto const start = std::chrono::steady_clock::now();
        move();
        std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - start;
        rates.push_back(static_cast<double>(read + written) / seconds.count());
    }
    return QuartilesOf(rates).median;
}

}  // namespace

void StartWithThreads([[maybe_unused]] int threads, [[maybe_unused]] char** words) {
#ifdef ZPA_PEER_LAPACK
    constexpr char const* kVariable = "OPENBLAS_NUM_THREADS";
    std::string const wanted = std::to_string(threads);
    char const* const told = std::getenv(kVariable);
    if (told && told == wanted) return;
    setenv(kVariable, wanted.c_str(), 1);
    execv("/proc/self/exe", words);
    throw std::runtime_error("cannot start again with the number of threads in the environment");
#endif
}

Machine PrepareMachine(int threads) {
    omp_set_num_threads(threads);
    constexpr std::size_t kBytes = std::size_t{256} << 20;  // beyond what a core's share of the caches holds
    return {Processor(),
            hwy::TargetName(hwy::SupportedAndGeneratedTargets().front()),
            Compiler(),
            Optimised(),
            threads,
            PreparePeers(threads),
            kBytes,
            BytesPerSecond(kBytes / 2, kBytes / 2),
            BytesPerSecond(kBytes, 0)};
}

}  // namespace ZPA::Benchmarks
