// Square systems of linear equations: panels of columns are factored one step at a time, the rest of the
// matrix is brought up to date a panel at a time. Lanes are columns of the matrix, and each element takes its
// steps in their order.
#include "primitives/TriangularFactors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/TriangularFactors.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

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

// row -= factor * other
void RowStep(double* row, double factor, double const* other, std::ptrdiff_t count) {
    D const d;
    V const f = hn::Set(d, factor);
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= count; x += kLanes)
        hn::StoreU(hn::Sub(hn::LoadU(d, row + x), hn::Mul(f, hn::LoadU(d, other + x))), d, row + x);
    for (; x < count; ++x) row[x] -= factor * other[x];
}

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

// Division by one number: by its reciprocal, if that has all its digits.
class DivideBy {
public:
    DivideBy() = default;
    explicit DivideBy(double divisor)
        : divisor_(divisor), reciprocal_(1 / divisor), multiplies_(std::isnormal(reciprocal_)) {}
    double operator()(double value) const { return multiplies_ ? value * reciprocal_ : value / divisor_; }

private:
    double divisor_, reciprocal_;
    bool multiplies_;
};

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
    hn::Mask<CellTag> factorHere[kOwn];
    for (std::ptrdiff_t v = 0; v < kVectors; ++v) {
        taken[v] = hn::LoadU(d, pivotRow + v * kStep);
        if (v >= kOwn) continue;
        auto const before =
            hn::FirstN(d, static_cast<std::size_t>(std::max<std::ptrdiff_t>(lane - v * kStep, 0)));
        auto const through =
            hn::FirstN(d, static_cast<std::size_t>(std::max<std::ptrdiff_t>(lane + 1 - v * kStep, 0)));
        factorHere[v] = hn::Xor(before, through);
        taken[v] = hn::IfThenZeroElse(through, taken[v]);
    }

    bool const measures = j + 1 < panel.steps;
    double largest = 0;
    for (std::ptrdiff_t y = j + 1; y < panel.height; ++y) {
        double* const row = panel.Row(y) + at;
        auto const factor = hn::Set(d, divide(row[lane]));
        for (std::ptrdiff_t v = 0; v < kVectors; ++v) {
            auto left = hn::Sub(hn::LoadU(d, row + v * kStep), hn::Mul(factor, taken[v]));
            if (v < kOwn) left = hn::IfThenElse(factorHere[v], factor, left);
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

struct Matrix {
    double* first;
    std::ptrdiff_t n;
    double* Row(std::ptrdiff_t y) const { return first + y * n; }
};

// The columns of the panel are rows and columns `first` to `end` of the matrix: its other columns follow its
// exchanges.
void FollowExchanges(Matrix a, std::ptrdiff_t first, std::ptrdiff_t end, int* exchanges) {
    for (std::ptrdiff_t j = first; j < end; ++j) {
        exchanges[j] += static_cast<int>(first);
        if (exchanges[j] == j) continue;
        ExchangeRows(a.Row(j), a.Row(exchanges[j]), first);
        ExchangeRows(a.Row(j) + end, a.Row(exchanges[j]) + end, a.n - end);
    }
}

// Between a row and whole cells, which a row is filled up to with zeros. Where vectors can stop short of the
// end they do: a load of what several stores wrote has to wait for them.
constexpr bool kShortLoads = hn::MaxLanes(CellTag()) >= 4;
void RowToCells(double const* row, std::ptrdiff_t count, double* cells) {
    CellTag const d;
    constexpr std::ptrdiff_t kStep = hn::MaxLanes(CellTag());
    std::ptrdiff_t x = 0;
    for (; x + kStep <= count; x += kStep) hn::Store(hn::LoadU(d, row + x), d, cells + x);
    if constexpr (kShortLoads)
        for (; x % kCell != 0 || x < count; x += kStep) {
            auto const rest = static_cast<std::size_t>(std::max<std::ptrdiff_t>(count - x, 0));
            hn::Store(hn::MaskedLoad(hn::FirstN(d, rest), d, row + x), d, cells + x);
        }
    else
        for (; x % kCell != 0 || x < count; ++x) cells[x] = x < count ? row[x] : 0;
}
void CellsToRow(double const* cells, std::ptrdiff_t count, double* row) {
    CellTag const d;
    constexpr std::ptrdiff_t kStep = hn::MaxLanes(CellTag());
    std::ptrdiff_t x = 0;
    for (; x + kStep <= count; x += kStep) hn::StoreU(hn::Load(d, cells + x), d, row + x);
    if constexpr (!kShortLoads)
        for (; x < count; ++x) row[x] = cells[x];
    else if (x < count)
        hn::BlendedStore(hn::Load(d, cells + x), hn::FirstN(d, static_cast<std::size_t>(count - x)), d,
                         row + x);
}

// Factors what is left of the matrix in a copy, whose rows are filled up to whole cells.
double FactorLast(Matrix a, std::ptrdiff_t first, double tinyPivot, RowNotes const& notes) {
    HWY_ALIGN double copy[kWhole * kWhole];
    std::ptrdiff_t const size = a.n - first, stride = (size + kCell - 1) / kCell * kCell;
    Panel const panel{copy, stride, size, size};
    for (std::ptrdiff_t y = 0; y < size; ++y) {
        RowToCells(a.Row(first + y) + first, size, panel.Row(y));
    }
    double const parity = FactorPanel(panel, tinyPivot, notes);
    for (std::ptrdiff_t y = 0; y < size; ++y) CellsToRow(panel.Row(y), size, a.Row(first + y) + first);
    return parity;
}

// Rows of a panel right of it, `from` on: solved with the panel's lower factor.
void FinishRows(Matrix a, std::ptrdiff_t first, std::ptrdiff_t end) {
    for (std::ptrdiff_t k = first; k < end; ++k)
        for (std::ptrdiff_t y = k + 1; y < end; ++y)
            RowStep(a.Row(y) + end, a.Row(y)[k], a.Row(k) + end, a.n - end);
}

// Subtracts from `rows` rows, in two vectors of columns, what the panel's steps take from them.
template <int rows>
HWY_INLINE void Tile(double* target, double const* factors, std::ptrdiff_t stride, double const* strip,
                     std::ptrdiff_t steps) {
    D const d;
    V left[rows], right[rows];
    for (int y = 0; y < rows; ++y) {
        left[y] = hn::LoadU(d, target + y * stride);
        right[y] = hn::LoadU(d, target + y * stride + kLanes);
    }
    for (std::ptrdiff_t k = 0; k < steps; ++k, strip += 2 * kLanes) {
        V const stripLeft = hn::Load(d, strip), stripRight = hn::Load(d, strip + kLanes);
        for (int y = 0; y < rows; ++y) {
            V const factor = hn::Set(d, factors[y * stride + k]);
            left[y] = hn::Sub(left[y], hn::Mul(factor, stripLeft));
            right[y] = hn::Sub(right[y], hn::Mul(factor, stripRight));
        }
    }
    for (int y = 0; y < rows; ++y) {
        hn::StoreU(left[y], d, target + y * stride);
        hn::StoreU(right[y], d, target + y * stride + kLanes);
    }
}

// Brings what is right of and below a panel up to date.
void FinishRest(Matrix a, std::ptrdiff_t first, std::ptrdiff_t end) {
    D const d;
    constexpr int kTall = 4;
    std::ptrdiff_t const steps = end - first;
    std::ptrdiff_t x = end;
    for (; x + 2 * kLanes <= a.n; x += 2 * kLanes) {
        HWY_ALIGN double strip[kPanel * 2 * kLanes];
        for (std::ptrdiff_t k = 0; k < steps; ++k)
            for (std::ptrdiff_t at = 0; at < 2 * kLanes; at += kLanes)
                hn::Store(hn::LoadU(d, a.Row(first + k) + x + at), d, strip + k * 2 * kLanes + at);
        std::ptrdiff_t y = end;
        for (; y + kTall <= a.n; y += kTall) Tile<kTall>(a.Row(y) + x, a.Row(y) + first, a.n, strip, steps);
        for (; y < a.n; ++y) Tile<1>(a.Row(y) + x, a.Row(y) + first, a.n, strip, steps);
    }
    if (x == a.n) return;
    for (std::ptrdiff_t y = end; y < a.n; ++y)
        for (std::ptrdiff_t k = first; k < end; ++k)
            RowStep(a.Row(y) + x, a.Row(y)[k], a.Row(k) + x, a.n - x);
}

double LargestSize(double const* row, std::ptrdiff_t n) {
    D const d;
    V lanes = hn::Zero(d);
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= n; x += kLanes) {
        V const size = hn::Abs(hn::LoadU(d, row + x));
        lanes = hn::IfThenElse(hn::Gt(size, lanes), size, lanes);
    }
    double largest = hn::GetLane(hn::MaxOfLanes(d, lanes));
    for (; x < n; ++x) largest = std::max(largest, std::abs(row[x]));
    return largest;
}

std::ptrdiff_t ScaleRows(double const* matrix, std::ptrdiff_t n, double* scales) {
    for (std::ptrdiff_t y = 0; y < n; ++y) {
        double const* const row = matrix + y * n;
        double const largest = LargestSize(row, n);
        if (largest == 0 && std::all_of(row, row + n, [](double element) { return element == 0; })) return y;
        // the smallest numbers have no reciprocal
        scales[y] = std::min(1 / largest, std::numeric_limits<double>::max());
    }
    return n;
}

double FactorMatrix(double* matrix, std::ptrdiff_t n, double tinyPivot, double* scales, double* sizes,
                    int* exchanges) {
    Matrix const a{matrix, n};
    double parity = 1;
    std::ptrdiff_t first = 0;
    for (; n - first > kWhole; first += kPanel) {
        std::ptrdiff_t const end = first + kPanel;
        parity *= FactorPanel({a.Row(first) + first, n, n - first, kPanel}, tinyPivot,
                              {scales + first, sizes + first, exchanges + first});
        FollowExchanges(a, first, end, exchanges);
        FinishRows(a, first, end);
        FinishRest(a, first, end);
    }
    parity *= FactorLast(a, first, tinyPivot, {scales + first, sizes + first, exchanges + first});
    FollowExchanges(a, first, n, exchanges);
    return parity;
}

// Solving goes by blocks of rows: what is known so far is taken from all of them at once, as sums by eights
// that every instruction set makes alike, and the block itself is solved element by element.
constexpr std::ptrdiff_t kBlock = 8;

// sums[y] = sum of rows[y][x] * known[x], for x below a multiple of the block.
template <int rows>
HWY_INLINE void SumRows(double const* row, std::ptrdiff_t stride, double const* known, std::ptrdiff_t count,
                        double* sums) {
    hn::CappedTag<double, kBlock> const d;
    constexpr std::ptrdiff_t kStep = hn::MaxLanes(d), kParts = kBlock / kStep;
    hn::Vec<decltype(d)> parts[rows][kParts];
    for (auto& part : parts)
        for (auto& lanes : part) lanes = hn::Zero(d);
    for (std::ptrdiff_t x = 0; x < count; x += kBlock)
        for (std::ptrdiff_t p = 0; p < kParts; ++p) {
            auto const factor = hn::LoadU(d, known + x + p * kStep);
            for (int y = 0; y < rows; ++y)
                parts[y][p] =
                    hn::Add(parts[y][p], hn::Mul(factor, hn::LoadU(d, row + y * stride + x + p * kStep)));
        }
    for (int y = 0; y < rows; ++y) {
        HWY_ALIGN double lane[kBlock];
        for (std::ptrdiff_t p = 0; p < kParts; ++p) hn::Store(parts[y][p], d, lane + p * kStep);
        sums[y] = ((lane[0] + lane[4]) + (lane[2] + lane[6])) + ((lane[1] + lane[5]) + (lane[3] + lane[7]));
    }
}

// Subtracts the sums from `rows` elements.
void TakeSums(double const* row, std::ptrdiff_t stride, std::ptrdiff_t rows, double const* known,
              std::ptrdiff_t count, double* elements) {
    double sums[4];
    for (; rows >= 4; rows -= 4, row += 4 * stride, elements += 4) {
        SumRows<4>(row, stride, known, count, sums);
        for (std::ptrdiff_t y = 0; y < 4; ++y) elements[y] -= sums[y];
    }
    for (; rows > 0; --rows, row += stride, ++elements) {
        SumRows<1>(row, stride, known, count, sums);
        elements[0] -= sums[0];
    }
}

void Solve(double const* factors, std::ptrdiff_t n, int const* exchanges, double* b) {
    for (std::ptrdiff_t y = 0; y < n; ++y) std::swap(b[y], b[exchanges[y]]);
    for (std::ptrdiff_t top = 0; top < n; top += kBlock) {
        std::ptrdiff_t const end = std::min(top + kBlock, n);
        if (top > 0) TakeSums(factors + top * n, n, end - top, b, top, b + top);
        for (std::ptrdiff_t y = top + 1; y < end; ++y)
            for (std::ptrdiff_t x = top; x < y; ++x) b[y] -= factors[y * n + x] * b[x];
    }
    std::ptrdiff_t const wholeEnd = n - n % kBlock;
    for (std::ptrdiff_t top = (n - 1) / kBlock * kBlock; top >= 0; top -= kBlock) {
        std::ptrdiff_t const end = std::min(top + kBlock, n);
        DivideBy divide[kBlock];  // made before they are waited for
        for (std::ptrdiff_t y = top; y < end; ++y) divide[y - top] = DivideBy(factors[y * n + y]);
        if (end < wholeEnd) TakeSums(factors + top * n + end, n, kBlock, b + end, wholeEnd - end, b + top);
        for (std::ptrdiff_t y = end - 1; y >= top; --y) {
            if (end <= wholeEnd)
                for (std::ptrdiff_t x = wholeEnd; x < n; ++x) b[y] -= factors[y * n + x] * b[x];
            for (std::ptrdiff_t x = end - 1; x > y; --x) b[y] -= factors[y * n + x] * b[x];
            b[y] = divide[y - top](b[y]);
        }
    }
}

void SolveAll(double const* factors, std::ptrdiff_t n, int const* exchanges, double* columns) {
    Matrix const x{columns, n};
    for (std::ptrdiff_t y = 0; y < n; ++y)
        if (exchanges[y] != y) ExchangeRows(x.Row(y), x.Row(exchanges[y]), n);
    for (std::ptrdiff_t y = 1; y < n; ++y)
        for (std::ptrdiff_t k = 0; k < y; ++k) RowStep(x.Row(y), factors[y * n + k], x.Row(k), n);
    for (std::ptrdiff_t y = n - 1; y >= 0; --y) {
        double* const row = x.Row(y);
        for (std::ptrdiff_t k = n - 1; k > y; --k) RowStep(row, factors[y * n + k], x.Row(k), n);
        DivideBy const divide(factors[y * n + y]);
        for (std::ptrdiff_t c = 0; c < n; ++c) row[c] = divide(row[c]);
    }
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
HWY_EXPORT(ScaleRows);
HWY_EXPORT(FactorMatrix);
HWY_EXPORT(Solve);
HWY_EXPORT(SolveAll);

std::ptrdiff_t RowScales(double const* matrix, std::ptrdiff_t n, double* scales) {
    return HWY_DYNAMIC_DISPATCH(ScaleRows)(matrix, n, scales);
}
double Factorise(double* matrix, std::ptrdiff_t n, double tinyPivot, double* scales, double* sizes,
                 int* exchanges) {
    return HWY_DYNAMIC_DISPATCH(FactorMatrix)(matrix, n, tinyPivot, scales, sizes, exchanges);
}
void SolveFactorised(double const* factors, std::ptrdiff_t n, int const* exchanges, double* rightHandSide) {
    HWY_DYNAMIC_DISPATCH(Solve)(factors, n, exchanges, rightHandSide);
}
void SolveColumns(double const* factors, std::ptrdiff_t n, int const* exchanges, double* columns) {
    HWY_DYNAMIC_DISPATCH(SolveAll)(factors, n, exchanges, columns);
}

}  // namespace ZPA
#endif
