// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

/// Functions that give the same bits on every machine, other than those of the C
/// library: a decision that hangs on the last bit must not depend on where it is made.
/// Sources that use them are compiled without contraction of products and sums.
namespace lumo::similarity::portable {

/// The natural logarithm of a positive finite number, within 2 units in the last place:
/// the series of artanh((m - 1) / (m + 1)) with m in [sqrt(1/2), sqrt(2)).
[[nodiscard]] inline double log(double x)
{
    constexpr double kSmallestNormal = 2.2250738585072014e-308;
    if (x < kSmallestNormal) {
        return log(x * 0x1p54) - 37.429947750237047; // 54 log 2
    }
    constexpr std::uint64_t kMantissa = (std::uint64_t{1} << 52) - 1;
    constexpr std::uint64_t kHalf = std::uint64_t{1022} << 52;
    const auto bits = std::bit_cast<std::uint64_t>(x);
    int exponent = static_cast<int>(bits >> 52) - 1022;
    double m = std::bit_cast<double>((bits & kMantissa) | kHalf); // in [1/2, 1)
    if (m < 0.70710678118654752) {
        m *= 2.0;
        --exponent;
    }
    const double z = (m - 1.0) / (m + 1.0); // at most 0.172: z^22 / 23 is below 1e-18
    const double square = z * z;
    constexpr std::array kReciprocals{1.0 / 21.0, 1.0 / 19.0, 1.0 / 17.0, 1.0 / 15.0,
                                      1.0 / 13.0, 1.0 / 11.0, 1.0 / 9.0,  1.0 / 7.0,
                                      1.0 / 5.0,  1.0 / 3.0,  1.0};
    double sum = 0.0;
    for (const double reciprocal : kReciprocals) {
        sum = sum * square + reciprocal;
    }
    constexpr double kLog2 = 0.69314718055994531;
    return 2.0 * z * sum + exponent * kLog2;
}

/// The exponential; 0 below -700 and at most that of 700.
[[nodiscard]] inline double exp(double x)
{
    if (!(x > -700.0)) {
        return 0.0;
    }
    x = x < 700.0 ? x : 700.0;
    constexpr double kLog2High = 0.693147180369123816490; // with 32 zeros at its end
    constexpr double kLog2Low = 1.90821492927058770002e-10;
    const double k = std::floor(x / (kLog2High + kLog2Low) + 0.5);
    const double r = (x - k * kLog2High) - k * kLog2Low; // at most 0.347: r^14 / 14! is below 1e-17
    constexpr std::array kReciprocals{1.0 / 13.0, 1.0 / 12.0, 1.0 / 11.0, 1.0 / 10.0, 1.0 / 9.0,
                                      1.0 / 8.0,  1.0 / 7.0,  1.0 / 6.0,  1.0 / 5.0,  1.0 / 4.0,
                                      1.0 / 3.0,  1.0 / 2.0,  1.0};
    double sum = 1.0;
    for (const double reciprocal : kReciprocals) {
        sum = 1.0 + sum * (r * reciprocal);
    }
    // 2^k, whose exponent is that of a normal number.
    return sum *
           std::bit_cast<double>(static_cast<std::uint64_t>(static_cast<int>(k) + 1023) << 52);
}

/// A number of [0, n) from 32 random bits; a bias below n / 2^32 does not matter here.
[[nodiscard]] inline std::uint32_t below(std::uint32_t n, std::mt19937& generator)
{
    return static_cast<std::uint32_t>((std::uint64_t{generator()} * n) >> 32);
}

} // namespace lumo::similarity::portable
