// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_name.h"

#include <algorithm>

namespace lumo {
namespace {

/// Names become parts of file paths, XML and quoted texts.
bool forbidden(QChar character)
{
    switch (character.unicode()) {
    case '/':
    case '\\':
    case '<':
    case '>':
    case '&':
    case '"':
    case '\'':
        return true;
    default:
        return character.category() == QChar::Other_Control;
    }
}

} // namespace

bool validCameraName(const QString& name)
{
    constexpr int kMaxLength = 255; // of a file name on common file systems
    return !name.isEmpty() && name.size() <= kMaxLength && name != QLatin1String("none") &&
           std::none_of(name.begin(), name.end(), forbidden);
}

} // namespace lumo
