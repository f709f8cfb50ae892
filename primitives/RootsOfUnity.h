// Powers of exp(2 pi i / N) for N a power of two, to the last digits of double precision and alike
// everywhere.
#ifndef ZPA_PRIMITIVES_ROOTSOFUNITY_H
#define ZPA_PRIMITIVES_ROOTSOFUNITY_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

struct Complex {
    double re, im;
};

inline Complex operator*(Complex a, Complex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// The sine of a turn divided by 2 to the power `halvings`, 0 to 32. Written out, since the C library's sines
// differ from one platform to the next.
inline double SineOfTurn(int halvings) {
    static constexpr double kSines[] = {0,
                                        0,
                                        1,
                                        0.7071067811865476,
                                        0.3826834323650898,
                                        0.19509032201612828,
                                        0.0980171403295606,
                                        0.049067674327418015,
                                        0.024541228522912288,
                                        0.012271538285719925,
                                        0.006135884649154475,
                                        0.003067956762965976,
                                        0.0015339801862847657,
                                        0.0007669903187427045,
                                        0.00038349518757139556,
                                        0.00019174759731070332,
                                        9.587379909597734e-05,
                                        4.793689960306688e-05,
                                        2.396844980841822e-05,
                                        1.1984224905069707e-05,
                                        5.9921124526424275e-06,
                                        2.996056226334661e-06,
                                        1.4980281131690111e-06,
                                        7.490140565847157e-07,
                                        3.7450702829238413e-07,
                                        1.8725351414619535e-07,
                                        9.362675707309808e-08,
                                        4.6813378536549095e-08,
                                        2.3406689268274554e-08,
                                        1.1703344634137277e-08,
                                        5.8516723170686385e-09,
                                        2.9258361585343192e-09,
                                        1.4629180792671596e-09};
    return kSines[halvings];
}

// The first `count` (a power of two, at most the order) powers of the root of order 2^logOrder. Each is one
// product away from one of the first half, so that the error grows with the logarithm of the count; the root
// is taken less 1, which keeps what is small about it. `logOrder` is at most 31.
inline void FillPowers(int logOrder, double* re, double* im, std::ptrdiff_t count) {
    re[0] = 1;
    im[0] = 0;
    int halvings = logOrder;
    for (std::ptrdiff_t known = 1; known < count; known *= 2, --halvings) {
        double const half = SineOfTurn(halvings + 1);
        double const lessRe = -2 * half * half, lessIm = SineOfTurn(halvings);
        for (std::ptrdiff_t k = 0; k < known; ++k) {
            re[known + k] = re[k] + (re[k] * lessRe - im[k] * lessIm);
            im[known + k] = im[k] + (re[k] * lessIm + im[k] * lessRe);
        }
    }
}

// Any power of one root: the powers of its digits to the base 32, multiplied.
class RootsOfUnity {
public:
    // The order is 2^logOrder, at most 2^31.
    explicit RootsOfUnity(int logOrder) : mask_((std::uint64_t{1} << logOrder) - 1) {
        for (; digits_ * kDigitBits < logOrder; ++digits_)
            FillPowers(logOrder - digits_ * kDigitBits, re_[digits_], im_[digits_],
                       std::ptrdiff_t{1}
                           << (logOrder - digits_ * kDigitBits < kDigitBits ? logOrder - digits_ * kDigitBits
                                                                            : kDigitBits));
    }

    Complex Power(std::uint64_t exponent) const {
        exponent &= mask_;
        Complex power{1, 0};
        for (int digit = 0; digit < digits_ && exponent; ++digit, exponent >>= kDigitBits)
            if (std::uint64_t const k = exponent & (kBase - 1))
                power = power * Complex{re_[digit][k], im_[digit][k]};
        return power;
    }

    // The first powers are at hand, kBase of them or as many as there are.
    static constexpr int kDigitBits = 5;
    static constexpr int kBase = 1 << kDigitBits;
    double const* FirstRe() const { return re_[0]; }
    double const* FirstIm() const { return im_[0]; }

private:
    std::uint64_t mask_;
    int digits_ = 0;
    double re_[7][kBase], im_[7][kBase];
};

}  // namespace ZPA

#endif
