// Means over blocks of doubles, which are added in extended precision: as whole numbers where this gives the same.
//
// Pixels that are multiples of one unit, with sums below 2^63 units, lose nothing in extended precision, and
// nothing as whole numbers, in whichever order these are added. Neighbours of like size do so, as doubles have
// 53 bits; all others are added one by one.
#include <algorithm>
#include <cstring>

#include "primitives/BlockMeans.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/BlockMeansReal.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include "primitives/AddColumns-inl.h"

#ifndef ZPA_PRIMITIVES_BLOCKMEANSREAL_CPP  // once, not for every target
#define ZPA_PRIMITIVES_BLOCKMEANSREAL_CPP
namespace ZPA {
namespace {

// Blocks side by side.
struct BlockRow {
    double const* pixels;
    std::ptrdiff_t stride;
    std::ptrdiff_t side;
    std::ptrdiff_t blocks;
};

// Larger blocks have 2^11 pixels: each has few bits of the sum, and quotients would be rounded twice.
constexpr std::ptrdiff_t kLargestSide = 45;

// As many pixels are tried together; they fit the nearest cache.
constexpr std::ptrdiff_t kPixels = 2048;

// Of pixels, so that no unit is too small and no bias too large to be a double.
constexpr double kSmallest = 0x1p-800;
constexpr double kLargest = 0x1p1000;

}  // namespace
}  // namespace ZPA
#endif

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Vectors of two lanes are no faster than extended precision.
#if HWY_TARGET <= HWY_AVX2

using Reals = hn::ScalableTag<double>;
using Wholes = hn::RebindToSigned<Reals>;
constexpr std::ptrdiff_t kLanes = hn::MaxLanes(Reals());

// For each column of the blocks, and at last for each block.
struct Sums {
    alignas(64) std::int64_t pixels[kPixels + kLanes];  // in units; what has the code is left out
    alignas(64) std::int64_t codes[kPixels + kLanes];   // how many pixels have the code
    bool anyCodes = false;
};

std::int64_t Bits(double number) {
    std::int64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

// Biases that are added to numbers, so that the low bits tell the multiple of a power of two that is nearest: of a
// step for the number itself, and of a unit, which is a part of the step, for what that leaves. Pixels below 2^51
// steps do not change the bias' exponent, and their sum over the area stays below 2^63 units.
struct Grid {
    Grid(double magnitude, std::ptrdiff_t area) {
        std::int64_t const exponent = Bits(magnitude) & std::int64_t{0x7FF} << 52;
        double power;
        std::memcpy(&power, &exponent, sizeof power);
        coarse = 12 * power;
        step = 0x1p-49 * power;
        while (std::int64_t{1} << (12 - shift) < area) --shift;
        double const part = 1.0 / (1 << shift);
        fine = part * coarse;
        unit = part * step;
    }

    double coarse, fine, step, unit;
    int shift = 12;
};

hn::Vec<Reals> WithoutCode(hn::Vec<Reals> pixels, hn::Mask<Reals> coded) {
    return hn::IfThenZeroElse(coded, pixels);
}

// The largest absolute value of a few pixels: what is larger by a factor of two still fits the grid.
template <bool kCoded> double Magnitude(BlockRow const& row, double code) {
    Reals const d;
    auto largest = hn::Set(d, kSmallest);
    for (std::ptrdiff_t x = 0; x + kLanes <= row.blocks * row.side; x += 16 * kLanes) {
        auto const pixels = hn::LoadU(d, row.pixels + x);
        auto const counted = kCoded ? WithoutCode(pixels, hn::Eq(pixels, hn::Set(d, code))) : pixels;
        largest = hn::Max(largest, hn::Abs(counted));
    }
    return hn::GetLane(hn::MaxOfLanes(d, largest));
}

// Adds up the columns, in units if fine, or in steps. False if a pixel is no multiple of these, or too large.
// kSide is the row's, if not 0: the loop over that many rows is unrolled.
template <bool kCoded, bool kFine, int kSide>
bool AddRows(BlockRow const& row, double code, Grid const& grid, Sums& sums) {
    Reals const d;
    Wholes const w;
    std::ptrdiff_t const side = kSide == 0 ? row.side : kSide, columns = row.blocks * side;
    auto const coarse = hn::Set(d, grid.coarse), fine = hn::Set(d, grid.fine), codes = hn::Set(d, code);
    // The sums begin where the biases' bits will have made them zero.
    auto const minusRows = 0 - static_cast<std::uint64_t>(side);
    auto const less = [&](double bias) HWY_ATTR {
        return hn::Set(w, static_cast<std::int64_t>(minusRows * static_cast<std::uint64_t>(Bits(bias))));
    };
    auto const noSteps = less(grid.coarse), noUnits = less(grid.fine), zero = hn::Zero(w);
    auto any = zero;
    auto const add = [&](std::ptrdiff_t x, auto const& load) HWY_ATTR {
        auto steps = noSteps, units = noUnits, coded = zero, lost = zero, changed = zero;
        for (std::ptrdiff_t y = 0; y < side; ++y) {
            auto pixels = load(row.pixels + y * row.stride + x);
            if constexpr (kCoded) {
                auto const isCode = hn::Eq(pixels, codes);  // never, if the code is not a number
                pixels = WithoutCode(pixels, isCode);
                coded = hn::Sub(coded, hn::BitCast(w, hn::VecFromMask(d, isCode)));
            }
            auto const biased = hn::Add(pixels, coarse);
            auto excess = hn::Sub(hn::Sub(biased, coarse), pixels);
            steps = hn::Add(steps, hn::BitCast(w, biased));
            if constexpr (kFine) {
                auto const rest = hn::Sub(fine, excess);
                units = hn::Add(units, hn::BitCast(w, rest));
                excess = hn::Add(hn::Sub(rest, fine), excess);
            }
            lost = hn::Or(lost, hn::BitCast(w, excess));
            changed = hn::Or(changed, hn::BitCast(w, hn::Xor(biased, coarse)));
        }
        hn::StoreU(kFine ? hn::Add(hn::ShiftLeftSame(steps, grid.shift), units) : steps, w, sums.pixels + x);
        if constexpr (kCoded) hn::StoreU(coded, w, sums.codes + x);
        any = hn::Or(any, coded);
        return hn::AllTrue(w, hn::Eq(hn::Or(lost, hn::ShiftRight<52>(changed)), zero));
    };
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= columns; x += kLanes)
        if (!add(x, [&](double const* pixels) HWY_ATTR { return hn::LoadU(d, pixels); })) return false;
    auto const last = hn::FirstN(d, static_cast<std::size_t>(columns - x));
    if (!add(x, [&](double const* pixels) HWY_ATTR { return hn::MaskedLoad(last, d, pixels); })) return false;
    sums.anyCodes = !hn::AllTrue(w, hn::Eq(any, zero));
    return true;
}

template <bool kCoded, bool kFine>
bool AddRowsBySide(BlockRow const& row, double code, Grid const& grid, Sums& sums) {
    switch (row.side) {
        case 2:
            return AddRows<kCoded, kFine, 2>(row, code, grid, sums);
        case 3:
            return AddRows<kCoded, kFine, 3>(row, code, grid, sums);
        case 4:
            return AddRows<kCoded, kFine, 4>(row, code, grid, sums);
        case 8:
            return AddRows<kCoded, kFine, 8>(row, code, grid, sums);
        default:
            return AddRows<kCoded, kFine, 0>(row, code, grid, sums);
    }
}

// A quotient of whole numbers that is not halfway between two doubles is further from there than extended precision
// rounds: by 1 / count at least, or by that part of half a double's last bit. So one rounding gives the same. What
// the first quotient leaves is exact, as these targets fuse its product and difference.
template <bool kCoded>
void Divide(Sums const& sums, BlockRow const& row, double code, double unit, double* means) {
    Reals const d;
    Wholes const w;
    std::int64_t const area = row.side * row.side;
    auto const areas = hn::Set(w, area);
    auto const inverse = hn::Set(d, 1 / static_cast<double>(area)), units = hn::Set(d, unit);
    std::ptrdiff_t x = 0;
    if (!kCoded && (area & (area - 1)) == 0)
        for (; x + kLanes <= row.blocks; x += kLanes) {
            auto const sum = hn::ConvertTo(d, hn::LoadU(w, sums.pixels + x));
            hn::StoreU(hn::Mul(hn::Mul(sum, inverse), units), d, means + x);
        }
    for (; x + kLanes <= row.blocks; x += kLanes) {
        auto const sum = hn::LoadU(w, sums.pixels + x);
        auto const count = kCoded ? hn::Sub(areas, hn::LoadU(w, sums.codes + x)) : areas;
        auto const divisor = hn::ConvertTo(d, count);
        auto const upper = hn::And(sum, hn::Set(w, -(std::int64_t{1} << 32)));
        auto const high = hn::ConvertTo(d, sum);
        auto const low =
            hn::Add(hn::Sub(hn::ConvertTo(d, upper), high), hn::ConvertTo(d, hn::Sub(sum, upper)));
        auto const quotient = hn::Mul(high, kCoded ? hn::Div(hn::Set(d, 1), divisor) : inverse);
        auto const rest = hn::Div(hn::Add(hn::NegMulAdd(quotient, divisor, high), low), divisor);
        auto mean = hn::Mul(hn::Add(quotient, rest), units);
        if (kCoded)
            mean = hn::IfThenElse(hn::RebindMask(d, hn::Eq(count, hn::Zero(w))), hn::Set(d, code), mean);
        hn::StoreU(mean, d, means + x);
    }
    for (; x < row.blocks; ++x) {
        std::int64_t const count = kCoded ? area - sums.codes[x] : area;
        auto const sum = static_cast<long double>(sums.pixels[x]);
        means[x] = count == 0 ? code : static_cast<double>(sum / static_cast<long double>(count)) * unit;
    }
}

// The means, if they can be made of whole numbers: few digits are tried before all.
template <bool kCoded> bool Run(BlockRow const& row, double code, double* means) {
    if (!kCoded && kLanes < 8 && row.side < 4) return false;  // nothing would be gained
    double const magnitude = Magnitude<kCoded>(row, code);
    if (!(magnitude < kLargest)) return false;
    Grid const grid(magnitude, row.side * row.side);
    Sums sums;
    double unit = grid.step;
    if (!AddRowsBySide<kCoded, false>(row, code, grid, sums)) {
        if (!AddRowsBySide<kCoded, true>(row, code, grid, sums)) return false;
        unit = grid.unit;
    }
    AddColumns(sums.pixels, row.blocks, row.side);
    if (sums.anyCodes) {
        AddColumns(sums.codes, row.blocks, row.side);
        Divide<true>(sums, row, code, unit, means);
    } else {
        Divide<false>(sums, row, code, unit, means);
    }
    return true;
}

#else
template <bool kCoded> bool Run(BlockRow const&, double, double*) { return false; }
#endif

bool Means64f(BlockRow const& row, double* means) { return Run<false>(row, 0, means); }
bool Without64f(BlockRow const& row, double code, double* means) { return Run<true>(row, code, means); }

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
namespace {

// Calls add(pixel) for every pixel of a block, row by row.
template <typename Add> void ForEachPixel(BlockRow const& row, std::ptrdiff_t block, Add const& add) {
    double const* pixels = row.pixels + block * row.side;
    for (std::ptrdiff_t y = 0; y < row.side; ++y, pixels += row.stride)
        for (std::ptrdiff_t x = 0; x < row.side; ++x) add(pixels[x]);
}

// Calls vectors(row, means) for as many blocks at a time as the nearest cache holds, and mean(row, block) for each
// of those that it refuses.
template <typename Vectors, typename Mean>
void ForEachBlock(BlockRow const& all, double* means, Vectors const& vectors, Mean const& mean) {
    std::ptrdiff_t const most = all.side <= kLargestSide ? kPixels / (all.side * all.side) : all.blocks;
    for (std::ptrdiff_t done = 0; done < all.blocks; done += most) {
        BlockRow const row{all.pixels + done * all.side, all.stride, all.side,
                           std::min(most, all.blocks - done)};
        if (all.side <= kLargestSide && vectors(row, means + done)) continue;
        for (std::ptrdiff_t block = 0; block < row.blocks; ++block) means[done + block] = mean(row, block);
    }
}

}  // namespace

HWY_EXPORT(Means64f);
void BlockMeans(double const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, double* means) {
    auto const vectors = HWY_DYNAMIC_DISPATCH(Means64f);
    auto const mean = [](BlockRow const& row, std::ptrdiff_t block) {
        long double sum = 0;
        ForEachPixel(row, block, [&](double pixel) { sum += pixel; });
        return static_cast<double>(sum / static_cast<long double>(std::int64_t{row.side} * row.side));
    };
    ForEachBlock({pixels, stride, side, blocks}, means, vectors, mean);
}

HWY_EXPORT(Without64f);
void BlockMeansWithout(double code, double const* pixels, std::ptrdiff_t stride, int side,
                       std::ptrdiff_t blocks, double* means) {
    auto const vectors = [code, run = HWY_DYNAMIC_DISPATCH(Without64f)](BlockRow const& row, double* to) {
        return run(row, code, to);
    };
    auto const mean = [code](BlockRow const& row, std::ptrdiff_t block) {
        long double sum = 0;
        std::int64_t count = 0;
        ForEachPixel(row, block, [&](double pixel) {
            if (pixel == code) return;
            sum += pixel;
            ++count;
        });
        return count == 0 ? code : static_cast<double>(sum / static_cast<long double>(count));
    };
    ForEachBlock({pixels, stride, side, blocks}, means, vectors, mean);
}

}  // namespace ZPA
#endif
