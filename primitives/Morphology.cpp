// Dilation and erosion. A mask is taken apart into its horizontal runs. The extreme over a run is made once
// for every distinct length and row, each length from the next shorter one, and shared by all output rows
// that the row is in reach of; an output row is then the extreme of one such row for each run of the mask.
#include "primitives/Morphology.h"

#include <omp.h>

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "primitives/ForEachRow.h"
#include "primitives/ReplicateBorder.h"
#include "primitives/RowExtremes.h"

namespace ZPA {
namespace {

struct Mask {
    std::uint8_t const* elements;
    Size size;
    int anchorX;
    int anchorY;
};

// Set elements that follow each other in a row of the mask.
struct Run {
    int row;
    int column;
    int length;
    std::size_t level;
};

// Rows whose pixels are extremes over `length` pixels of a source row, from the pixel itself to the right.
struct Level {
    int length;
    bool isKept;  // while the row is in the mask's reach, for runs of this length
};

// Of how many rows of the level before it a level is made at most, and by which factor lengths grow where the
// mask has none between.
constexpr int kMostTerms = 5;
constexpr int kGrowth = 4;
static_assert(kGrowth <= kMostTerms);

// From this height on, running extremes down the columns of a rectangle are faster than the extreme of its
// rows. benchmarks/Morphology.cpp found these three.
constexpr int kTallRectangle = 8;

// What the mask asks to be done for every row.
struct Plan {
    // Of a mask with a set element. Throws std::bad_alloc.
    explicit Plan(Mask const& itsMask) : mask(itsMask) {
        FindRuns();
        isTallRectangle = mask.size.height >= kTallRectangle &&
                          runs.size() == static_cast<std::size_t>(mask.size.height) &&
                          std::all_of(runs.begin(), runs.end(), [&](Run const& run) {
                              return run.column == runs[0].column && run.length == runs[0].length;
                          });
        FindLevels();
    }

    // Of how many rows of the level before it a level is made.
    int Terms(std::size_t level) const { return (levels[level].length - 1) / levels[level - 1].length + 1; }

    // Rows that are read to make an output row, in all.
    std::int64_t Effort() const {
        std::int64_t effort = isTallRectangle ? 6 : static_cast<std::int64_t>(runs.size());
        for (std::size_t level = 1; level < levels.size(); ++level) effort += Terms(level);
        return effort;
    }

    Mask mask;
    std::vector<Run> runs;      // by rows; of a tall rectangle all alike
    std::vector<Level> levels;  // from short to long; the first is the source itself
    bool isTallRectangle = false;

private:
    void FindRuns() {
        std::uint8_t const* row = mask.elements;
        for (int j = 0; j < mask.size.height; ++j, row += mask.size.width)
            for (int i = 0; i < mask.size.width; ++i) {
                int const start = i;
                while (i < mask.size.width && row[i] != 0) ++i;
                if (i > start) runs.push_back({j, start, i - start, 0});
            }
    }

    void FindLevels() {
        std::vector<int> lengths;
        for (Run const& run : runs) lengths.push_back(run.length);
        std::sort(lengths.begin(), lengths.end());
        lengths.erase(std::unique(lengths.begin(), lengths.end()), lengths.end());

        // Running extremes are made in place, and need rows of their own even for runs of one pixel.
        bool const sourceServes = lengths[0] == 1 && !isTallRectangle;
        levels.push_back({1, sourceServes});
        for (int const length : lengths) {
            if (length == 1 && sourceServes) continue;
            while (length > std::int64_t{kMostTerms} * levels.back().length)
                levels.push_back({kGrowth * levels.back().length, false});
            levels.push_back({length, true});
        }
        for (Run& run : runs)
            while (!levels[run.level].isKept || levels[run.level].length != run.length) ++run.level;
    }
};

template <typename T> struct Region {
    Rows<T const> source;
    Rows<T> destination;
    Size size;
};

// Rows of elements, each at the start of a cache line, and no two of the next few in the same lines of a
// cache.
template <typename T> class WorkRows {
public:
    // Throws std::bad_alloc.
    WorkRows(std::uint64_t rows, std::uint64_t width)
        : step_(((width * sizeof(T) / kLine + 1) | 1) * kLine / sizeof(T)) {
        if (rows > PTRDIFF_MAX / sizeof(T) / step_) throw std::bad_alloc();
        first_ = static_cast<T*>(
            ::operator new (static_cast<std::size_t>(rows * step_ * sizeof(T)), std::align_val_t{kLine}));
    }
    ~WorkRows() { ::operator delete (first_, std::align_val_t{kLine}); }
    WorkRows(WorkRows const&) = delete;
    WorkRows& operator=(WorkRows const&) = delete;

    T* operator[](std::ptrdiff_t row) const { return first_ + row * static_cast<std::ptrdiff_t>(step_); }

private:
    static constexpr std::size_t kLine = 64;
    std::uint64_t step_;
    T* first_;
};

// Makes output rows from `first` up to `end`, on one thread.
template <typename T> class Worker {
public:
    // A null scratch says that the source has its surroundings in memory. Else it has room for rows within
    // their borders: as many as the mask has, and where other workers have rows too, for those in reach.
    Worker(Plan const& plan, Region<T> const& region, RowExtremes<T> const& extremes, int first, int end,
           T* scratch)
        : plan_(plan),
          region_(region),
          extremes_(extremes),
          first_(first),
          end_(end),
          height_(plan.mask.size.height),
          width_(PaddedWidth(plan, region.size)),
          newest_(height_ - 1),
          copies_(scratch),
          neighbours_(scratch ? scratch + height_ * width_ : nullptr),
          sources_(static_cast<std::size_t>(height_)),
          operands_(plan.runs.size()),
          firstOfLevel_(plan.levels.size()),
          work_(PlaceLevels(), static_cast<std::uint64_t>(width_)) {}

    static std::ptrdiff_t PaddedWidth(Plan const& plan, Size size) {
        return std::ptrdiff_t{size.width} + plan.mask.size.width - 1;
    }

    // Copies the rows of other workers that are in reach, for they may be overwritten once work has begun.
    void CopyNeighbours() noexcept {
        std::ptrdiff_t const above = plan_.mask.anchorY;
        std::ptrdiff_t const below = height_ - 1 - above;
        if (first_ > 0)
            for (std::ptrdiff_t i = 0; i < above; ++i) CopyRow(first_ - above + i, Neighbour(i));
        if (end_ < region_.size.height)
            for (std::ptrdiff_t i = 0; i < below; ++i) CopyRow(end_ + i, Neighbour(above + i));
    }

    void Work() noexcept {
        std::ptrdiff_t row = first_ - plan_.mask.anchorY;
        for (std::ptrdiff_t i = 1; i < height_; ++i) Take(row++);
        for (std::ptrdiff_t y = first_; y < end_; ++y) {
            if (plan_.isTallRectangle) {
                Prefetch(region_.destination[y]);
                Take(row++);
                RunningExtreme(region_.destination[y]);
            } else {
                Take(row++);
                ExtremeOfRuns(region_.destination[y]);
            }
        }
    }

private:
    // Gives each level its rows in the work memory, and counts them.
    std::uint64_t PlaceLevels() {
        std::ptrdiff_t rows = plan_.isTallRectangle ? 1 : 0;  // the first is for the running extreme
        for (std::size_t level = 1; level < plan_.levels.size(); ++level) {
            firstOfLevel_[level] = rows;
            rows += plan_.levels[level].isKept ? height_ : 1;
        }
        return static_cast<std::uint64_t>(rows);
    }

    T* LevelRow(std::size_t level, std::ptrdiff_t slot) const {
        return work_[firstOfLevel_[level] + (plan_.levels[level].isKept ? slot : 0)];
    }

    T* Neighbour(std::ptrdiff_t i) const { return neighbours_ + i * width_; }

    void CopyRow(std::ptrdiff_t row, T* copy) const noexcept {
        CopyWithinBorder(region_.source[row], region_.size.width, plan_.mask.anchorX,
                         plan_.mask.size.width - 1 - plan_.mask.anchorX, copy);
    }

    // A row of the source with all that the mask reaches left and right.
    T const* Source(std::ptrdiff_t row) const noexcept {
        if (!copies_) return region_.source[row] - plan_.mask.anchorX;
        row = std::clamp<std::ptrdiff_t>(row, 0, region_.size.height - 1);
        if (row < first_) return Neighbour(row - first_ + plan_.mask.anchorY);
        if (row >= end_) return Neighbour(row - end_ + plan_.mask.anchorY);
        T* const copy = copies_ + (plan_.levels[0].isKept ? newest_ : 0) * width_;
        CopyRow(row, copy);
        return copy;
    }

    // Makes all levels of the next row, in the place of the row that has gone out of reach.
    void Take(std::ptrdiff_t row) noexcept {
        std::ptrdiff_t const before = newest_;
        newest_ = newest_ + 1 == height_ ? 0 : newest_ + 1;
        sources_[static_cast<std::size_t>(newest_)] = Source(row);
        if (RepeatsTheOneBefore(row))
            CopyLevels(before);
        else
            MakeLevels();
    }

    // Beyond the edges, but for the first row of all.
    bool RepeatsTheOneBefore(std::ptrdiff_t row) const noexcept {
        return copies_ && (row <= 0 || row >= region_.size.height) && row > first_ - plan_.mask.anchorY;
    }

    void CopyLevels(std::ptrdiff_t slot) noexcept {
        for (std::size_t level = 1; level < plan_.levels.size(); ++level)
            if (plan_.levels[level].isKept)
                std::copy_n(LevelRow(level, slot), width_ - plan_.levels[level].length + 1,
                            LevelRow(level, newest_));
    }

    void MakeLevels() noexcept {
        T const* shorter = sources_[static_cast<std::size_t>(newest_)];
        for (std::size_t level = 1; level < plan_.levels.size(); ++level) {
            std::ptrdiff_t const step = plan_.levels[level - 1].length;
            std::ptrdiff_t const last = plan_.levels[level].length - step;
            T const* terms[kMostTerms];
            std::ptrdiff_t count = 0;
            for (std::ptrdiff_t offset = 0; offset < last; offset += step) terms[count++] = shorter + offset;
            terms[count++] = shorter + last;
            T* const longer = LevelRow(level, newest_);
            extremes_.ofRows(terms, count, longer, width_ - plan_.levels[level].length + 1);
            shorter = longer;
        }
    }

    void ExtremeOfRuns(T* result) noexcept {
        std::size_t count = 0;
        for (Run const& run : plan_.runs) {
            std::ptrdiff_t const behindOldest = newest_ + 1 + run.row;
            std::ptrdiff_t const slot = behindOldest < height_ ? behindOldest : behindOldest - height_;
            T const* const row =
                run.level == 0 ? sources_[static_cast<std::size_t>(slot)] : LevelRow(run.level, slot);
            operands_[count++] = row + run.column;
        }
        extremes_.ofRows(operands_.data(), static_cast<std::ptrdiff_t>(count), result, region_.size.width);
    }

    // Stores of the running extreme come too fast for the memory to keep up, so their lines are asked for
    // while there is other work to do.
    void Prefetch(T const* row) const noexcept {
        constexpr std::ptrdiff_t kLine = 64 / sizeof(T);
        for (std::ptrdiff_t x = 0; x < region_.size.width; x += kLine) __builtin_prefetch(row + x, 1);
    }

    // The mask's rows are all the same run, and the rows in reach lie in two blocks of as many rows: of the
    // older block each row has become the extreme of itself and those behind it, and the extreme of the newer
    // block's rows is carried along. When the newer block is whole it becomes the older one. The method is
    // van Herk's (1992) and Gil and Werman's (1993).
    void RunningExtreme(T* result) noexcept {
        std::ptrdiff_t const oldest = newest_ + 1 == height_ ? 0 : newest_ + 1;
        T* const carried = work_[0];
        std::ptrdiff_t const count = region_.size.width;
        if (oldest == 0) {
            extremes_.gatherUp(RunsOf(0), RunsOf(1) - RunsOf(0), height_, count);
            std::copy_n(RunsOf(0), count, result);
        } else if (oldest == 1) {
            std::copy_n(RunsOf(0), count, carried);
            T const* const rows[] = {carried, RunsOf(1)};
            extremes_.ofRows(rows, 2, result, count);
        } else {
            extremes_.carry(RunsOf(oldest - 1), carried, RunsOf(oldest), result, count);
        }
    }

    T* RunsOf(std::ptrdiff_t slot) const {
        return LevelRow(plan_.runs[0].level, slot) + plan_.runs[0].column;
    }

    Plan const& plan_;
    Region<T> const& region_;
    RowExtremes<T> const extremes_;
    std::ptrdiff_t first_;
    std::ptrdiff_t end_;
    std::ptrdiff_t height_;  // of the mask; row r of the source is in slot (r - its first row) % height_
    std::ptrdiff_t width_;   // of a row with all that the mask reaches
    std::ptrdiff_t newest_;  // slot
    T* copies_;
    T* neighbours_;
    std::vector<T const*> sources_;             // by slots
    std::vector<T const*> operands_;            // of an output row
    std::vector<std::ptrdiff_t> firstOfLevel_;  // row in the work memory
    WorkRows<T> work_;
};

// Every worker reads the mask's reach beyond its rows, so each gets much more than that.
int CountWorkers(Plan const& plan, Size size, std::int64_t workPerRow) {
    if (workPerRow * size.height < kParallelWork) return 1;
    std::int64_t const most = size.height / (std::int64_t{2} * plan.mask.size.height);
    return static_cast<int>(std::clamp<std::int64_t>(most, 1, omp_get_max_threads()));
}

template <typename T>
void WorkOnRows(Plan const& plan, Region<T> const& region, RowExtremes<T> const& extremes, T* scratch) {
    // An extreme in the cache takes about a quarter of the time that a byte takes from memory.
    std::int64_t const workPerRow =
        std::int64_t{region.size.width} * std::int64_t{sizeof(T)} * (2 + plan.Effort() / 4);
    int const count = CountWorkers(plan, region.size, workPerRow);
    std::ptrdiff_t const scratchRows = std::ptrdiff_t{2} * plan.mask.size.height - 1;
    std::ptrdiff_t const scratchSize = scratchRows * Worker<T>::PaddedWidth(plan, region.size);
    std::vector<std::unique_ptr<Worker<T>>> workers;
    for (int i = 0; i < count; ++i) {
        auto const border = [&](int worker) {
            return static_cast<int>(std::int64_t{region.size.height} * worker / count);
        };
        workers.push_back(std::make_unique<Worker<T>>(plan, region, extremes, border(i), border(i + 1),
                                                      scratch ? scratch + i * scratchSize : nullptr));
        if (scratch) workers.back()->CopyNeighbours();
    }
    ForEachRow(count, workPerRow * region.size.height / count + 1,
               [&](int i) noexcept { workers[static_cast<std::size_t>(i)]->Work(); });
}

template <typename T>
Status Morph(RowExtremes<T> const& extremes, Region<T> const& region, Mask const& mask, T* scratch) noexcept
    try {
    if (!region.source.first || !region.destination.first) return kNullPointer;
    if (region.size.width < 1 || region.size.height < 1) return kBadSize;
    Status const status = CheckMask(mask.elements, mask.size, mask.anchorX, mask.anchorY);
    if (status != kDone) return status;
    WorkOnRows(Plan(mask), region, extremes, scratch);
    return kDone;
} catch (...) {
    return kNoMemory;
}

}  // namespace

Status CheckMask(std::uint8_t const* mask, Size maskSize, int anchorX, int anchorY) noexcept {
    if (!mask) return kNullPointer;
    if (maskSize.width < 1 || maskSize.height < 1) return kBadSize;
    std::ptrdiff_t const count = std::ptrdiff_t{maskSize.width} * maskSize.height;
    if (std::all_of(mask, mask + count, [](std::uint8_t element) { return element == 0; })) return kEmptyMask;
    if (anchorX < 0 || anchorX >= maskSize.width) return kAnchorOutside;
    if (anchorY < 0 || anchorY >= maskSize.height) return kAnchorOutside;
    return kDone;
}

#define ZPA_MORPHOLOGY(name, suffix, T, extreme)                                                            \
    Status ippi##name##_##suffix##_C1R(T const* source, std::ptrdiff_t sourceStep, T* destination,          \
                                       std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, \
                                       Size maskSize, int anchorX, int anchorY) noexcept {                  \
        return Morph<T>(extreme<T>(), {{source, sourceStep}, {destination, destinationStep}, size},         \
                        {mask, maskSize, anchorX, anchorY}, nullptr);                                       \
    }                                                                                                       \
    Status name##WithinBorder(T const* source, std::ptrdiff_t sourceStep, T* destination,                   \
                              std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask,          \
                              Size maskSize, int anchorX, int anchorY, T* scratch) noexcept {               \
        if (!scratch) return kNullPointer;                                                                  \
        return Morph<T>(extreme<T>(), {{source, sourceStep}, {destination, destinationStep}, size},         \
                        {mask, maskSize, anchorX, anchorY}, scratch);                                       \
    }
ZPA_MORPHOLOGY(Dilate, 8u, std::uint8_t, RowMaxima)
ZPA_MORPHOLOGY(Dilate, 16u, std::uint16_t, RowMaxima)
ZPA_MORPHOLOGY(Erode, 8u, std::uint8_t, RowMinima)
ZPA_MORPHOLOGY(Erode, 16u, std::uint16_t, RowMinima)
#undef ZPA_MORPHOLOGY

}  // namespace ZPA
