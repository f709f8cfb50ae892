// Systems of linear equations with as many unknowns, and the arithmetic of flat vectors and matrices.
#include <Basics/LinearAlgebra.h>

#include <algorithm>

#include "primitives/TriangularFactors.h"
#include "primitives/Vectors.h"
#include "Source/Internal/Hypotenuse.h"
#include "Source/Internal/Report.h"
#include "Source/Internal/WorkSpace.h"

namespace ZPA {
namespace {

constexpr double kTinyPivot = 1e-20;

// Rows whose notes, a scale and a size each, have room on the stack.
constexpr std::size_t kRowsOnStack = 64;
// Unknowns whose exchanges do.
constexpr std::size_t kUnknownsOnStack = 40;

std::uint64_t NotesOf(int n) { return 2 * static_cast<std::uint64_t>(n); }

// `notes` has room for NotesOf(n).
void Factor(double* a, int n, double* notes, int* indx, double* d, Message singular) {
    if (RowScales(a, n, notes) == n)
        *d = Factorise(a, n, kTinyPivot, notes, notes + n, indx);
    else
        Report(SOLVANE_UNEXPECTED, singular);
}

using Decomposition = void (*)(double*, int, int*, double*);
void SolveBy(Decomposition decompose, double* a, int n, double* b, Message context) {
    WorkSpace<int, kUnknownsOnStack> indx(static_cast<std::uint64_t>(n));
    if (!indx.Get()) {
        ReportMemory(context, static_cast<std::uint64_t>(n), sizeof(int));
        return;
    }
    // Where the decomposition fails these are what is solved with.
    std::fill_n(indx.Get(), n, 0);
    double parity = 1;
    decompose(a, n, indx.Get(), &parity);
    SolveFactorised(a, n, indx.Get(), b);
}

}  // namespace

double* vvdiff(double const* a, double const* b, int n, double* out) {
    if (AnyNull(L"vvdiff(): Null pointer.", a, b, out)) return out;
    for (std::ptrdiff_t i = 0; i < n; ++i) out[i] = a[i] - b[i];
    return out;
}

double viprod(double const* a, double const* b, int n) {
    return AnyNull(L"viprod(): Null pointer.", a, b) ? 0 : InnerProduct(a, b, n);
}

void mvmul(double const* a, double const* x, double* y, int rows, int columns) {
    if (AnyNull(L"mvmul(): Null pointer.", a, x, y)) return;
    std::ptrdiff_t const length = std::max(columns, 0);
    InnerProducts({a, length}, x, y, rows, length);
}

float pythag(float a, float b) { return Hypotenuse(a, b); }
double dpythag_DBL(double a, double b) { return Hypotenuse(a, b); }

void ludcmp(double* a, int n, int* indx, double* d) {
    if (AnyNull(L"ludcmp(): Null pointer.", a, indx, d) || n < 1) return;
    WorkSpace<double, 2 * kRowsOnStack> notes(NotesOf(n));
    if (notes.Get())
        Factor(a, n, notes.Get(), indx, d, L"ludcmp() - Singular matrix.");
    else
        ReportMemory(L"ludcmp()", NotesOf(n), sizeof(double));
}

void ludcmp_DBL(double* a, int n, int* indx, double* d) {
    if (AnyNull(L"ludcmp_DBL(): Null pointer.", a, indx, d) || n < 1) return;
    auto const notes = AllocateCleared<double>(NotesOf(n));
    if (notes)
        Factor(a, n, notes.get(), indx, d, L"ludcmp_DBL(): singular matrix.");
    else
        ReportMemory(L"ludcmp_DBL()", NotesOf(n), sizeof(double));
}

void lubksb(double const* a, int n, int const* indx, double* b) {
    if (AnyNull(L"lubksb(): Null pointer.", a, indx, b) || n < 1) return;
    if (std::any_of(indx, indx + n, [n](int row) { return row < 0 || row >= n; })) {
        Report(SOLVANE_OUT_OF_RANGE, L"lubksb(): Row index out of range.");
        return;
    }
    SolveFactorised(a, n, indx, b);
}

void lubksb_DBL(double const* a, int n, int const* indx, double* b) { lubksb(a, n, indx, b); }

void sollequ(double* a, int n, double* b) {
    if (!AnyNull(L"sollequ(): Null pointer.", a, b) && n > 0) SolveBy(ludcmp, a, n, b, L"sollequ()");
}

void sollequ_DBL(double* a, int n, double* b) {
    if (!AnyNull(L"sollequ_DBL(): Null pointer.", a, b) && n > 0)
        SolveBy(ludcmp_DBL, a, n, b, L"sollequ_DBL()");
}

void invmatrix_DBL(double* a, double* inverse, int n) {
    if (AnyNull(L"invmatrix_DBL(): Null pointer.", a, inverse) || n < 1) return;
    auto const size = static_cast<std::uint64_t>(n);
    auto const indx = AllocateCleared<int>(size);
    if (!indx) {
        ReportMemory(L"invmatrix_DBL()", size, sizeof(int));
        return;
    }
    double parity = 1;
    ludcmp_DBL(a, n, indx.get(), &parity);
    InvertFactorised(a, n, indx.get(), inverse);
}

}  // namespace ZPA
