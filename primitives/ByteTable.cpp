// Bytes of a row looked up in a table.
#include "primitives/ByteTable.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ByteTable.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include "primitives/SelectedLanes-inl.h"

// The look-ups below need x86, which takes the low bits of an index past the vector; and vectors of 32 bytes,
// since narrower ones are no quicker than one look-up a byte.
#undef ZPA_LOOKS_UP_VECTORS
#define ZPA_LOOKS_UP_VECTORS (HWY_ARCH_X86 && HWY_CAP_GE256)

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

#if ZPA_LOOKS_UP_VECTORS

// A table in vectors of 16 entries, the processor's unit of a look-up.
//
// Such a look-up takes the low four bits of a byte, and gives 0 for a negative one. So each vector but the
// first holds how its entries differ from those of the vector before. A byte, less by 16 from one vector to
// the next, finds something in all up to its own, and 0 in those behind, where it is negative. Bytes from 128
// on do the same in the upper half of the table.
template <class D> class Vectors {
public:
    using V = hn::Vec<D>;

    explicit Vectors(std::uint8_t const* entries) {
        for (int i = 0; i < kVectors; ++i) {
            auto const vector = hn::LoadDup128(D(), entries + 16 * i);
            steps_[i] =
                i % kHalf == 0 ? vector : hn::Xor(vector, hn::LoadDup128(D(), entries + 16 * (i - 1)));
        }
    }
    HWY_INLINE V operator()(V bytes) const {
        auto const upper = hn::Xor(bytes, hn::Set(D(), 128));
        return hn::Xor(OfHalf(steps_, bytes), OfHalf(steps_ + kHalf, upper));
    }

private:
    static constexpr int kVectors = 16, kHalf = 8;

    static HWY_INLINE V OfHalf(V const* steps, V bytes) {
        hn::RebindToSigned<D> const d;
        auto left = hn::BitCast(d, bytes);
        auto entries = hn::TableLookupBytesOr0(steps[0], bytes);
        for (int i = 1; i < kHalf; ++i) {
            left = hn::SaturatedSub(left, hn::Set(d, 16));
            entries = hn::Xor(entries, hn::TableLookupBytesOr0(steps[i], hn::BitCast(D(), left)));
        }
        return entries;
    }

    V steps_[kVectors];
};

// Does all of a row that has a vector at least, and returns how many elements it did.
std::ptrdiff_t LookUpVectors(std::uint8_t const* entries, std::uint8_t const* from, std::uint8_t const* mask,
                             std::ptrdiff_t count, std::uint8_t* to) {
    hn::ScalableTag<std::uint8_t> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    if (count < lanes) return 0;
    Vectors<decltype(d)> const table(entries);
    auto const result = [&](std::ptrdiff_t x) {
        auto const entry = table(hn::LoadU(d, from + x));
        return mask ? hn::IfThenElse(Selected(d, mask + x), entry, hn::LoadU(d, to + x)) : entry;
    };
    auto const last = result(count - lanes);  // before those below it are stored, perhaps over their bytes
    for (std::ptrdiff_t x = 0; x + lanes <= count; x += lanes) hn::StoreU(result(x), d, to + x);
    hn::StoreU(last, d, to + (count - lanes));
    return count;
}

#endif

void LookUpBytes(std::uint8_t const* entries, std::uint8_t const* from, std::uint8_t const* mask,
                 std::ptrdiff_t count, std::uint8_t* to) {
    std::ptrdiff_t x = 0;
#if ZPA_LOOKS_UP_VECTORS
    x = LookUpVectors(entries, from, mask, count, to);
#endif
    if (mask)
        for (; x < count; ++x) to[x] = mask[x] != 0 ? entries[from[x]] : to[x];
    else
        for (; x < count; ++x) to[x] = entries[from[x]];
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(LookUpBytes);
void ByteTable::operator()(std::uint8_t const* from, std::ptrdiff_t count, std::uint8_t* to,
                           std::uint8_t const* mask) const {
    HWY_DYNAMIC_DISPATCH(LookUpBytes)(entries_, from, mask, count, to);
}

}  // namespace ZPA
#endif
