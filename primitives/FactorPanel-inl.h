// Panels of a matrix, factored one step at a time. Included by kernels once for each SIMD target.
#if defined(ZPA_PRIMITIVES_FACTORPANEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZPA_PRIMITIVES_FACTORPANEL_INL_H
#undef ZPA_PRIMITIVES_FACTORPANEL_INL_H
#else
#define ZPA_PRIMITIVES_FACTORPANEL_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "primitives/DivideBy.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
constexpr std::ptrdiff_t kLanes = hn::MaxLanes(D());

// Columns of a panel; what is no larger than kWhole is factored as one.
constexpr std::ptrdiff_t kPanel = 32;
constexpr std::ptrdiff_t kWhole = 64;

// A row of a panel is so many cells of kCell columns. Steps work on whole cells: what a step stores, the next
// one loads from the same place.
constexpr std::ptrdiff_t kCell = 8;
using CellTag = hn::CappedTag<double, kCell>;

struct Panel {
    double* first;
    std::ptrdiff_t stride, height;
    std::ptrdiff_t steps;  // columns to factor, not more than there are rows
    double* Row(std::ptrdiff_t y) const { return first + y * stride; }
};

// Work space of a row each.
struct RowNotes {
    double* scales;
    double* sizes;  // of the elements in the next step's column, scaled
    int* exchanges;
};

template <class Tag> HWY_INLINE void ExchangeAt(Tag d, double* a, double* b) {
    auto const kept = hn::LoadU(d, a);
    hn::StoreU(hn::LoadU(d, b), d, a);
    hn::StoreU(kept, d, b);
}
void ExchangeRows(double* a, double* b, std::ptrdiff_t count) {
    D const d;
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= count; x += kLanes) ExchangeAt(d, a + x, b + x);
    for (; x < count; ++x) std::swap(a[x], b[x]);
}
void ExchangeCells(double* a, double* b, std::ptrdiff_t cells) {
    CellTag const d;
    for (std::ptrdiff_t x = 0; x < cells * kCell; x += static_cast<std::ptrdiff_t>(hn::Lanes(d)))
        ExchangeAt(d, a + x, b + x);
}

// The first of the largest sizes; row j where there is none.
std::ptrdiff_t RowOf(double largest, double const* sizes, std::ptrdiff_t j, std::ptrdiff_t height) {
    if (largest > 0)
        for (std::ptrdiff_t y = j; y < height; ++y)
            if (sizes[y] == largest) return y;
    return j;
}

// Step j on the rows below it, in the cells from its own on. Returns the largest size in the next column.
template <int cells> double Eliminate(Panel const& panel, std::ptrdiff_t j, RowNotes const& notes) {
    CellTag const d;
    constexpr std::ptrdiff_t kStep = hn::MaxLanes(CellTag()), kVectors = cells * kCell / kStep;
    constexpr std::ptrdiff_t kOwn = kCell / kStep;  // vectors of the cell with column j
    std::ptrdiff_t const at = j / kCell * kCell, lane = j - at;
    double const* const pivotRow = panel.Row(j) + at;
    DivideBy const divide(pivotRow[lane]);

    // In its own cell the step leaves the columns before j alone, and puts the factor into column j.
    hn::Vec<CellTag> taken[kVectors];
    hn::Mask<CellTag> factorHere[kOwn], done[kOwn];
    for (std::ptrdiff_t v = 0; v < kVectors; ++v) {
        taken[v] = hn::LoadU(d, pivotRow + v * kStep);
        if (v >= kOwn) continue;
        done[v] = hn::FirstN(d, static_cast<std::size_t>(std::max<std::ptrdiff_t>(lane - v * kStep, 0)));
        auto const through =
            hn::FirstN(d, static_cast<std::size_t>(std::max<std::ptrdiff_t>(lane + 1 - v * kStep, 0)));
        factorHere[v] = hn::Xor(done[v], through);
        taken[v] = hn::IfThenZeroElse(through, taken[v]);
    }

    bool const measures = j + 1 < panel.steps;
    double largest = 0;
    for (std::ptrdiff_t y = j + 1; y < panel.height; ++y) {
        double* const row = panel.Row(y) + at;
        auto const factor = hn::Set(d, divide(row[lane]));
        for (std::ptrdiff_t v = 0; v < kVectors; ++v) {
            auto const old = hn::LoadU(d, row + v * kStep);
            auto left = hn::Sub(old, hn::Mul(factor, taken[v]));
            // selected, not subtracted: an infinite factor would leave no number of its zeros
            if (v < kOwn) left = hn::IfThenElse(done[v], old, hn::IfThenElse(factorHere[v], factor, left));
            hn::StoreU(left, d, row + v * kStep);
        }
        if (!measures) continue;
        double const size = notes.scales[y] * std::abs(row[lane + 1]);
        notes.sizes[y] = size;
        largest = size > largest ? size : largest;
    }
    return largest;
}

using Eliminates = double (*)(Panel const&, std::ptrdiff_t, RowNotes const&);
constexpr Eliminates kEliminate[] = {Eliminate<1>, Eliminate<2>, Eliminate<3>, Eliminate<4>,
                                     Eliminate<5>, Eliminate<6>, Eliminate<7>, Eliminate<8>};

// Factors a panel of up to eight cells. Returns the parity of its exchanges, of which the panel's columns
// have had theirs.
double FactorPanel(Panel const& panel, double tinyPivot, RowNotes const& notes) {
    std::ptrdiff_t const cells = (panel.steps + kCell - 1) / kCell;
    double parity = 1, largest = 0;
    for (std::ptrdiff_t y = 0; y < panel.height; ++y) {
        double const size = notes.scales[y] * std::abs(panel.Row(y)[0]);
        notes.sizes[y] = size;
        largest = size > largest ? size : largest;
    }
    for (std::ptrdiff_t j = 0; j < panel.steps; ++j) {
        std::ptrdiff_t const pivotRow = RowOf(largest, notes.sizes, j, panel.height);
        notes.exchanges[j] = static_cast<int>(pivotRow);
        double* const row = panel.Row(j);
        if (pivotRow != j) {
            ExchangeCells(row, panel.Row(pivotRow), cells);
            notes.scales[pivotRow] = notes.scales[j];
            parity = -parity;
        }
        if (row[j] == 0) row[j] = tinyPivot;
        largest = kEliminate[cells - 1 - j / kCell](panel, j, notes);
    }
    return parity;
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
