// Labels for connected regions. The rows become bits, whose runs are numbered in raster order and connected by
// a union-find structure: each run keeps a run of its region that is not behind it. The one that keeps itself
// is the region's first, so that regions are in the order of their first pixels.
#include "primitives/LabelMarkers.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/LabelMarkers.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <climits>
#include <limits>

#include "primitives/PixelBits.h"
#include "primitives/RunPatterns.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

HWY_INLINE std::uint32_t CountBits(std::uint64_t bits) {
    return static_cast<std::uint32_t>(__builtin_popcountll(bits));
}

// Makes two runs' regions one, by M. Rem's algorithm: both paths are walked to the smaller run at once, and
// shortened on the way.
HWY_INLINE void Connect(std::uint32_t* kept, std::uint32_t a, std::uint32_t b) {
    std::uint32_t keptByA = kept[a], keptByB = kept[b];
    while (keptByA != keptByB) {
        std::uint32_t const behind = keptByA > keptByB ? a : b, before = keptByA > keptByB ? b : a;
        std::uint32_t const later = std::max(keptByA, keptByB), earlier = std::min(keptByA, keptByB);
        kept[behind] = earlier;
        if (later == behind) return;
        a = later;
        keptByA = kept[a];
        b = before;
        keptByB = earlier;
    }
}

// As many runs as can begin in a word: how many do begin could not be foreseen.
HWY_INLINE void KeepThemselves(std::uint32_t* kept, std::uint32_t first) {
    hn::CappedTag<std::uint32_t, kRunsOfWord> const d;
    auto const lanes = static_cast<std::uint32_t>(hn::Lanes(d));
    for (std::uint32_t i = 0; i < kRunsOfWord; i += lanes)
        hn::StoreU(hn::Iota(d, first + i), d, kept + first + i);
}

// Of the contacts, those that are the first of a run that begins in the word. Carries find them: they go upwards
// from where a run begins, and end at the next contact.
HWY_INLINE std::uint64_t FirstContacts(std::uint64_t contacts, std::uint64_t starts) {
    return contacts & ((~contacts + (starts & ~contacts)) | starts);
}

// Runs that meet, to be connected many at a time: most have been connected already, but which ones could not be
// foreseen.
class Meetings {
public:
    explicit Meetings(std::uint32_t* kept) : kept_(kept) {}
    HWY_INLINE void Add(std::uint32_t a, std::uint32_t b) {
        a_[count_] = a;
        b_[count_] = b;
        count_ += kept_[a] != kept_[b];
    }
    // Makes room for those of a word.
    HWY_INLINE void MakeRoom() {
        if (count_ > kMost - 64) ConnectAll();
    }
    HWY_INLINE void ConnectAll() {
        for (int i = 0; i < count_; ++i) Connect(kept_, a_[i], b_[i]);
        count_ = 0;
    }

private:
    static constexpr int kMost = 128;
    std::uint32_t* kept_;
    int count_ = 0;
    std::uint32_t a_[kMost], b_[kMost];
};

// Numbers the row's runs from `next` on, connects them with those of the row above, which are numbered from
// `nextAbove` on, and gives the number behind the last.
std::uint32_t ConnectRow(std::uint64_t const* above, std::uint64_t const* row, std::ptrdiff_t words,
                         bool eightNeighbours, std::uint32_t nextAbove, std::uint32_t next,
                         std::uint32_t* kept) {
    std::uint64_t lastAbove = 0, last = 0;  // the bits before the word
    Meetings meetings(kept);
    for (std::ptrdiff_t word = 0; word < words; ++word) {
        std::uint64_t const fromAbove = above[word] << 1 | lastAbove, from = row[word] << 1 | last;
        std::uint64_t const startsAbove = above[word] & ~fromAbove, starts = row[word] & ~from;
        lastAbove = above[word] >> 63;
        last = row[word] >> 63;
        if (starts != 0) KeepThemselves(kept, next);

        // Two runs touch where one of them begins while the other has not ended or, for eight neighbours,
        // has only just ended.
        std::uint64_t const touching =
            eightNeighbours ? (above[word] | fromAbove) & (row[word] | from) : above[word] & row[word];
        std::uint64_t const contacts = touching & (startsAbove | starts);

        // What a run meets first is all that it keeps yet. The run at a bit is the last one begun up to it.
        std::uint64_t const first = FirstContacts(contacts, starts);
        std::uint32_t* const keptHere = kept + next - 1;
        std::uint32_t const* const keptAbove = kept + nextAbove - 1;
        for (std::uint64_t left = first; left != 0; left &= left - 1) {
            std::uint64_t const upTo = left ^ (left - 1);
            keptHere[CountBits(starts & upTo)] = keptAbove[CountBits(startsAbove & upTo)];
        }
        for (std::uint64_t left = contacts & ~first; left != 0; left &= left - 1) {
            std::uint64_t const upTo = left ^ (left - 1);
            meetings.Add(next - 1 + CountBits(starts & upTo), nextAbove - 1 + CountBits(startsAbove & upTo));
        }
        meetings.MakeRoom();
        nextAbove += CountBits(startsAbove);
        next += CountBits(starts);
    }
    meetings.ConnectAll();
    return next;
}

// Gives eight pixels their runs' labels, and zeros the others. labels[0] is that of the run before the first
// that begins here.
template <typename T> HWY_INLINE void LabelEight(T* pixels, std::uint64_t pattern, T const* labels) {
#if HWY_TARGET == HWY_SCALAR
    for (int i = 0; i < kPixelsOfPattern; ++i) {
        bool const isSet = pattern >> (i + 1) & 1;
        labels += isSet && !(pattern >> i & 1);
        pixels[i] = isSet ? *labels : T{0};
    }
#else
    hn::FixedTag<T, kPixelsOfPattern> const d;
    auto const places = hn::LoadU(d, kRunPatterns<T>.bytes[pattern]);
    hn::StoreU(hn::TableLookupBytesOr0(hn::LoadU(d, labels), places), d, pixels);
#endif
}

// Gives the row's pixels their runs' labels, and the pointer to the label of the last run. labels[0] is that of
// the run before the row's first; eight may be read from any.
template <typename T>
T const* LabelRow(T* row, std::ptrdiff_t width, std::uint64_t const* bits, T const* labels) {
    std::uint64_t last = 0;
    for (std::ptrdiff_t x = 0; x < width; x += 64, ++bits) {
        std::ptrdiff_t const end = std::min<std::ptrdiff_t>(width - x, 64);
        if (*bits == 0) {
            last = 0;
            continue;
        }
        if (*bits == ~std::uint64_t{0} && last != 0) {
            std::fill(row + x, row + x + 64, labels[0]);
            continue;
        }
        std::uint64_t left = *bits;
        for (std::ptrdiff_t i = 0; i < end; i += kPixelsOfPattern) {
            std::uint64_t const pattern = (left << 1 | last) & 0x1FF;
            if (i + kPixelsOfPattern <= end) {
                LabelEight(row + x + i, pattern, labels);
            } else {
                T pixels[kPixelsOfPattern];
                LabelEight(pixels, pattern, labels);
                std::copy(pixels, pixels + (end - i), row + x + i);
            }
            labels += kRunPatterns<T>.begun[pattern];
            last = left >> (kPixelsOfPattern - 1) & 1;
            left >>= kPixelsOfPattern;
        }
    }
    return labels;
}

std::uint8_t const* LabelRow8u(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                               std::uint8_t const* labels) {
    return LabelRow(row, width, bits, labels);
}
std::uint16_t const* LabelRow16u(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                                 std::uint16_t const* labels) {
    return LabelRow(row, width, bits, labels);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
namespace {

HWY_EXPORT(ConnectRow);
HWY_EXPORT(LabelRow8u);
HWY_EXPORT(LabelRow16u);

// The working buffer, cut into its parts: the rows' bits, with an empty row above them, and what the runs keep.
struct Parts {
    std::int64_t bits, kept, labels, all;
    explicit Parts(Size size) {
        std::int64_t const runs = MostRuns(size);
        bits = 0;
        kept = bits + WordsOf(size.width) * (std::int64_t{size.height} + 1) * kWord;
        // Both ends are passed by what is done at once.
        labels = kept + (runs + kRunsOfWord) * std::int64_t{sizeof(std::uint32_t)};
        all = labels + (1 + runs + kPixelsOfPattern) * std::int64_t{sizeof(std::uint16_t)} + kWord;
    }
    static std::int64_t MostRuns(Size size) { return (std::int64_t{size.width} + 1) / 2 * size.height; }
    static constexpr std::int64_t kWord = sizeof(std::uint64_t);
};

bool IsBad(Size size) {
    return size.width < 1 || size.height < 1 || Parts::MostRuns(size) > INT_MAX ||
           Parts(size).all > PTRDIFF_MAX;
}

std::uint8_t const* LabelRow(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                             std::uint8_t const* labels) {
    return HWY_DYNAMIC_DISPATCH(LabelRow8u)(row, width, bits, labels);
}
std::uint16_t const* LabelRow(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                              std::uint16_t const* labels) {
    return HWY_DYNAMIC_DISPATCH(LabelRow16u)(row, width, bits, labels);
}

// Finds the labels of all runs, and gives the number of regions.
template <typename T>
int NumberRegions(std::uint32_t const* kept, std::uint32_t count, std::uint32_t smallest,
                  std::uint32_t largest, T* labels) {
    std::uint32_t label = smallest, used = 0;  // of labels up to where they began again
    for (std::uint32_t run = 0; run < count; ++run) {
        // By masks, not by a branch, which could not be foreseen; a first run's own label is read in vain.
        std::uint32_t const isFirst = kept[run] == run, first = -isFirst;
        labels[run] = static_cast<T>((label & first) | (labels[kept[run]] & ~first));
        label += isFirst;
        if (HWY_UNLIKELY(label > largest)) {
            used += label - smallest;
            label = smallest;
        }
    }
    return static_cast<int>(used + label - smallest);
}

template <typename T>
Status Label(T* image, std::ptrdiff_t step, Size size, int smallest, int largest, int norm, int* regions,
             void* buffer) {
    if (!image || !regions || !buffer) return kNullPointer;
    if (IsBad(size)) return kBadSize;
    if (smallest < 1 || largest < smallest || largest > std::numeric_limits<T>::max()) return kBadArgument;
    if (norm != kInfinityNorm && norm != kL1Norm) return kBadArgument;

    Parts const parts(size);
    auto const address = reinterpret_cast<std::uintptr_t>(buffer);
    unsigned char* const start =
        static_cast<unsigned char*>(buffer) + (-address & (alignof(std::uint64_t) - 1));
    auto* const bits = reinterpret_cast<std::uint64_t*>(start + parts.bits);
    std::uint32_t* const kept = reinterpret_cast<std::uint32_t*>(start + parts.kept);
    T* const labels = reinterpret_cast<T*>(start + parts.labels);
    std::ptrdiff_t const words = WordsOf(size.width);
    Rows<T> const rows{image, step};
    auto const bitsOf = [&](std::ptrdiff_t y) { return bits + (y + 1) * words; };

    std::fill(bitsOf(-1), bitsOf(0), 0);
    std::uint64_t const lastPixels = ~std::uint64_t{0} >> (words * 64 - size.width);
    std::uint32_t firstAbove = 0, first = 0;
    for (std::ptrdiff_t y = 0; y < size.height; ++y) {
        std::uint64_t* const row = bitsOf(y);
        FindEqual(rows[y], size.width, T{0}, row);
        for (std::ptrdiff_t word = 0; word < words; ++word) row[word] = ~row[word];
        row[words - 1] &= lastPixels;
        std::uint32_t const next = HWY_DYNAMIC_DISPATCH(ConnectRow)(
            bitsOf(y - 1), row, words, norm == kInfinityNorm, firstAbove, first, kept);
        firstAbove = first;
        first = next;
    }
    labels[0] = 0;  // of no run
    *regions = NumberRegions(kept, first, static_cast<std::uint32_t>(smallest),
                             static_cast<std::uint32_t>(largest), labels + 1);
    T const* last = labels;
    for (std::ptrdiff_t y = 0; y < size.height; ++y) last = LabelRow(rows[y], size.width, bitsOf(y), last);
    return kDone;
}

}  // namespace

Status ippiLabelMarkersGetBufferSize(Size size, std::size_t* bytes) noexcept {
    if (!bytes) return kNullPointer;
    if (IsBad(size)) return kBadSize;
    *bytes = static_cast<std::size_t>(Parts(size).all);
    return kDone;
}

Status ippiLabelMarkers(std::uint8_t* image, std::ptrdiff_t step, Size size, int smallest, int largest,
                        int norm, int* regions, void* buffer) noexcept {
    return Label(image, step, size, smallest, largest, norm, regions, buffer);
}
Status ippiLabelMarkers(std::uint16_t* image, std::ptrdiff_t step, Size size, int smallest, int largest,
                        int norm, int* regions, void* buffer) noexcept {
    return Label(image, step, size, smallest, largest, norm, regions, buffer);
}

}  // namespace ZPA
#endif
