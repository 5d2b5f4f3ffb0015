// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <array>

namespace lumo {

/// Interior orientation of a fisheye lens.
///
/// With theta = 2/pi times the angle between ray and optical axis, a ray in
/// direction (X, Y, Z) appears at
///     rho = p0 + p1 theta + p2 theta^2 + p3 theta^3 + p4 theta^4
///     (x, y) = [c d; e f] (X, Y) rho / sqrt(X^2 + Y^2)  +  principal point,
/// in pixels. The radially symmetric polynomial follows Kannala & Brandt, PAMI
/// 28(8), 2006, the affine matrix Scaramuzza et al., ICVS 2006.
struct LUMO_CAMERADATA_EXPORT FisheyeParams
{
    int npoly = 4;                                          ///< degree of the polynomial, 1 to 4
    std::array<double, 5> poly = {0.0, 1.0, 0.0, 0.0, 0.0}; ///< p0 to p4
    bool p0zero = false;                                    ///< an adjustment must keep p0 at zero
    bool symmetricAffine = true;                            ///< d = e = 0 and f = c
    double c = 0.0;                                         ///< pixels, as are d, e and f
    double d = 0.0;
    double e = 0.0;
    double f = 0.0;

    /// Sets `p0zero`, and p0 to zero if `zero` is true.
    void setP0zero(bool zero);

    /// Sets the affine part (pixels). If it is symmetric, ignores `dPx`, `ePx` and `fPx`
    /// and sets d = e = 0 and f = c.
    void setAffine(bool symmetric, double cPx, double dPx, double ePx, double fPx);

    /// Compares all fields exactly.
    bool operator==(const FisheyeParams&) const = default;
};

} // namespace lumo
