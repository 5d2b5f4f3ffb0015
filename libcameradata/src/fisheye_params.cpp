// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/fisheye_params.h"

namespace lumo {

void FisheyeParams::setP0zero(bool zero)
{
    p0zero = zero;
    if (zero) {
        poly[0] = 0.0;
    }
}

void FisheyeParams::setAffine(bool symmetric, double cPx, double dPx, double ePx, double fPx)
{
    symmetricAffine = symmetric;
    c = cPx;
    d = symmetric ? 0.0 : dPx;
    e = symmetric ? 0.0 : ePx;
    f = symmetric ? cPx : fPx;
}

} // namespace lumo
