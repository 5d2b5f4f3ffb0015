// SPDX-License-Identifier: Apache-2.0
#include "show/camera_text.h"

namespace lumo::program {

QString lensText(LensType type)
{
    switch (type) {
    case LensType::Perspective:
        return QStringLiteral("perspective");
    case LensType::Fisheye:
        return QStringLiteral("fisheye");
    case LensType::Spherical:
        return QStringLiteral("spherical");
    }
    return {};
}

double shownNumber(double value)
{
    constexpr int kDigits = 6;
    return QString::number(value, 'g', kDigits).toDouble();
}

} // namespace lumo::program
