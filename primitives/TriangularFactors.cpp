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
#include <utility>

#include "primitives/FactorPanel-inl.h"
#include "primitives/FewUnknowns.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

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

// The columns from one on, in a panel's rows: packed, so many that they are two vectors, or a single one.
template <int width> class Strip {
public:
    // Rows `first` to `end` of the matrix, not more than a panel has.
    Strip(Matrix a, std::ptrdiff_t first, std::ptrdiff_t end, std::ptrdiff_t column)
        : a_(a), first_(first), steps_(end - first), column_(column) {
        for (std::ptrdiff_t y = 0; y < steps_; ++y) Store(Load(a_.Row(first_ + y) + column_), Row(y));
    }

    // With the panel's rows of the factors, which have as many rows as the matrix.
    void SolveLower(double const* factors) {
        for (std::ptrdiff_t k = 0; k < steps_; ++k)
            for (std::ptrdiff_t y = k + 1; y < steps_; ++y) Step(y, Factor(factors, y, k), k);
        GiveBack();
    }
    void SolveUpper(double const* factors) {
        for (std::ptrdiff_t k = steps_ - 1; k >= 0; --k) {
            DivideBy const divide(Factor(factors, k, k));
            for (std::ptrdiff_t x = 0; x < width; ++x) Row(k)[x] = divide(Row(k)[x]);
            for (std::ptrdiff_t y = 0; y < k; ++y) Step(y, Factor(factors, y, k), k);
        }
        GiveBack();
    }

    // Subtracts what the panel's steps take from rows `top` to `bottom` of the matrix.
    void TakeFrom(std::ptrdiff_t top, std::ptrdiff_t bottom, double const* factors) const {
        constexpr int kTall = 4;
        std::ptrdiff_t y = top;
        for (; y + kTall <= bottom; y += kTall) TakeFromRows<kTall>(y, factors);
        for (; y < bottom; ++y) TakeFromRows<1>(y, factors);
    }

private:
    using Tag = hn::CappedTag<double, (width + 1) / 2>;
    static constexpr std::ptrdiff_t kStep = hn::MaxLanes(Tag());
    static constexpr int kVectors = width / static_cast<int>(kStep);
    struct Lines {
        hn::Vec<Tag> at[kVectors];
    };

    static HWY_INLINE Lines Load(double const* row) {
        Lines line;
        for (int v = 0; v < kVectors; ++v) line.at[v] = hn::LoadU(Tag(), row + v * kStep);
        return line;
    }
    static HWY_INLINE void Store(Lines const& line, double* row) {
        for (int v = 0; v < kVectors; ++v) hn::StoreU(line.at[v], Tag(), row + v * kStep);
    }
    static HWY_INLINE void Subtract(Lines& line, double factor, Lines const& other) {
        auto const factors = hn::Set(Tag(), factor);
        for (int v = 0; v < kVectors; ++v) line.at[v] = hn::Sub(line.at[v], hn::Mul(factors, other.at[v]));
    }

    double* Row(std::ptrdiff_t y) { return elements_ + y * width; }
    double Factor(double const* factors, std::ptrdiff_t y, std::ptrdiff_t k) const {
        return factors[(first_ + y) * a_.n + first_ + k];
    }
    void Step(std::ptrdiff_t y, double factor, std::ptrdiff_t k) {
        Lines line = Load(Row(y));
        Subtract(line, factor, Load(Row(k)));
        Store(line, Row(y));
    }
    void GiveBack() {
        for (std::ptrdiff_t y = 0; y < steps_; ++y) Store(Load(Row(y)), a_.Row(first_ + y) + column_);
    }
    template <int rows> HWY_INLINE void TakeFromRows(std::ptrdiff_t top, double const* factors) const {
        double const* const factor = factors + top * a_.n + first_;
        Lines lines[rows];
        for (int y = 0; y < rows; ++y) lines[y] = Load(a_.Row(top + y) + column_);
        for (std::ptrdiff_t k = 0; k < steps_; ++k) {
            Lines const step = Load(elements_ + k * width);
            for (int y = 0; y < rows; ++y) Subtract(lines[y], factor[y * a_.n + k], step);
        }
        for (int y = 0; y < rows; ++y) Store(lines[y], a_.Row(top + y) + column_);
    }

    Matrix a_;
    std::ptrdiff_t first_, steps_, column_;
    HWY_ALIGN double elements_[kPanel * width];
};
constexpr int kWidestStrip = 2 * static_cast<int>(kLanes);

// Solves rows `first` to `end` of columns `x` to `columns` with the lower factor, and takes their steps from
// the rows below.
template <int width = kWidestStrip>
void Forwards(Matrix a, double const* factors, std::ptrdiff_t first, std::ptrdiff_t end, std::ptrdiff_t x,
              std::ptrdiff_t columns) {
    for (; x + width <= columns; x += width) {
        Strip<width> strip(a, first, end, x);
        strip.SolveLower(factors);
        strip.TakeFrom(end, a.n, factors);
    }
    if constexpr (width > 1) Forwards<width / 2>(a, factors, first, end, x, columns);
}

// With the upper factor, and from the rows above.
template <int width = kWidestStrip>
void Backwards(Matrix a, double const* factors, std::ptrdiff_t first, std::ptrdiff_t end,
               std::ptrdiff_t x = 0) {
    for (; x + width <= a.n; x += width) {
        Strip<width> strip(a, first, end, x);
        strip.SolveUpper(factors);
        strip.TakeFrom(0, first, factors);
    }
    if constexpr (width > 1) Backwards<width / 2>(a, factors, first, end, x);
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
        scales[y] = ScaleOf(largest);
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
        Forwards(a, matrix, first, end, end, n);
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

// The inverse of the factors, which are those of the matrix with its rows exchanged: the columns of its
// inverse are. While going forwards the columns of the unit matrix that have not begun are zero.
void Invert(double const* factors, std::ptrdiff_t n, int const* exchanges, double* inverse) {
    Matrix const x{inverse, n};
    std::fill_n(inverse, n * n, 0.0);
    for (std::ptrdiff_t y = 0; y < n; ++y) x.Row(y)[y] = 1;
    for (std::ptrdiff_t first = 0; first < n; first += kPanel) {
        std::ptrdiff_t const end = std::min(first + kPanel, n);
        Forwards(x, factors, first, end, 0, end);
    }
    for (std::ptrdiff_t first = (n - 1) / kPanel * kPanel; first >= 0; first -= kPanel)
        Backwards(x, factors, first, std::min(first + kPanel, n));
    for (std::ptrdiff_t y = 0; y < n; ++y)
        for (std::ptrdiff_t j = n - 1; j >= 0; --j) std::swap(x.Row(y)[j], x.Row(y)[exchanges[j]]);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
HWY_EXPORT(ScaleRows);
HWY_EXPORT(FactorMatrix);
HWY_EXPORT(Solve);
HWY_EXPORT(Invert);

std::ptrdiff_t RowScales(double const* matrix, std::ptrdiff_t n, double* scales) {
    if (n <= kFewUnknowns) return WithFewUnknowns(n, [&](auto few) { return few.RowScales(matrix, scales); });
    return HWY_DYNAMIC_DISPATCH(ScaleRows)(matrix, n, scales);
}
double Factorise(double* matrix, std::ptrdiff_t n, double tinyPivot, double* scales, double* sizes,
                 int* exchanges) {
    if (n <= kFewUnknowns)
        return WithFewUnknowns(n,
                               [&](auto few) { return few.Factorise(matrix, tinyPivot, scales, exchanges); });
    return HWY_DYNAMIC_DISPATCH(FactorMatrix)(matrix, n, tinyPivot, scales, sizes, exchanges);
}
void SolveFactorised(double const* factors, std::ptrdiff_t n, int const* exchanges, double* rightHandSide) {
    if (n <= kFewUnknowns)
        return WithFewUnknowns(n, [&](auto few) { few.Solve(factors, exchanges, rightHandSide); });
    HWY_DYNAMIC_DISPATCH(Solve)(factors, n, exchanges, rightHandSide);
}
void InvertFactorised(double const* factors, std::ptrdiff_t n, int const* exchanges, double* inverse) {
    HWY_DYNAMIC_DISPATCH(Invert)(factors, n, exchanges, inverse);
}

}  // namespace ZPA
#endif
