// From which amount of work on the parallel loop pays: copying rows on two threads beside one thread. Where
// the ratio passes 1 is the constant of the loop.
#include "primitives/ForEachRow.h"

#include <omp.h>

#include <cstring>
#include <memory>

#include "support/Benchmark.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

constexpr int kRowBytes = 4096;

// The loop starts threads for the one claim of work, and not for the other.
constexpr std::int64_t kEnough = kParallelWork;
constexpr std::int64_t kTooLittle = 0;

struct Scene {
    explicit Scene(int rows)
        : source(RandomImage<unsigned char>(kRowBytes, rows)),
          twoThreads(kRowBytes, rows),
          oneThread(kRowBytes, rows) {}

    void Copy(Image<unsigned char>& destination, std::int64_t workPerRow) {
        int const usual = omp_get_max_threads();
        omp_set_num_threads(2);
        ForEachRow(source.Height(), workPerRow,
                   [&](int y) noexcept { std::memcpy(destination.Row(y), source.Row(y), kRowBytes); });
        omp_set_num_threads(usual);
    }

    Image<unsigned char> source, twoThreads, oneThread;
};

Registration const rows([] {
    for (int bytes = 64 << 10; bytes <= 64 << 20; bytes *= 2) {
        int const rowCount = bytes / 2 / kRowBytes;  // half is read, half written
        Register({"ForEachRow", "2 threads", kRowBytes, rowCount, {1, 1}, [rowCount]() -> Contenders {
                      auto const scene = std::make_shared<Scene>(rowCount);
                      return {
                          [scene] { scene->Copy(scene->twoThreads, kEnough); }, "1 thread",
                          [scene] { scene->Copy(scene->oneThread, kTooLittle); },
                          [scene] { return LargestDifference(scene->twoThreads, scene->oneThread) == 0; }};
                  }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
