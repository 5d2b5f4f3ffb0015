// SPDX-License-Identifier: Apache-2.0
#include "show/camera_text.h"

#include <QString>

namespace lumo::program {

double shownNumber(double value)
{
    constexpr int kDigits = 6;
    return QString::number(value, 'g', kDigits).toDouble();
}

} // namespace lumo::program
