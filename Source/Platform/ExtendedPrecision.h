// The precision that `long double` computes with.
#ifndef ZPA_SOURCE_PLATFORM_EXTENDEDPRECISION_H
#define ZPA_SOURCE_PLATFORM_EXTENDEDPRECISION_H

namespace ZPA {

// While it lives, this thread rounds `long double` to 64 bits, as its type promises. Windows starts threads
// with 53, and sums would depend on who calls; elsewhere there is nothing to do.
class ExtendedPrecision {
public:
#if defined(_WIN32)
    ExtendedPrecision() {
        __asm__ volatile("fnstcw %0" : "=m"(given_) : : "memory");
        if (given_ != Extended()) Load(Extended());
    }
    ~ExtendedPrecision() {
        if (given_ != Extended()) Load(given_);
    }
#else
    ExtendedPrecision() {}
#endif
    ExtendedPrecision(ExtendedPrecision const&) = delete;
    ExtendedPrecision& operator=(ExtendedPrecision const&) = delete;

#if defined(_WIN32)
private:
    unsigned short Extended() const { return static_cast<unsigned short>(given_ | 0x300); }
    static void Load(unsigned short control) { __asm__ volatile("fldcw %0" : : "m"(control) : "memory"); }

    unsigned short given_;
#endif
};

}  // namespace ZPA

#endif
