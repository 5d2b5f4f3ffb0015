// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_name.h"

#include <algorithm>

namespace lumo {

bool validCameraName(const QString& name)
{
    constexpr int kMaxLength = 255;
    static const QString forbidden = QStringLiteral("/\\<>&\"'");
    const auto refused = [](QChar character) {
        return character.category() == QChar::Other_Control || forbidden.contains(character);
    };
    return !name.isEmpty() && name.size() <= kMaxLength && name != QLatin1String("none") &&
           std::none_of(name.begin(), name.end(), refused);
}

} // namespace lumo
