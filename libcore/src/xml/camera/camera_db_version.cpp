// SPDX-License-Identifier: Apache-2.0
#include "xml/camera/camera_db_version.h"

#include "lumo/cameradata/xml_values.h"

#include <QDomElement>

namespace lumo {

std::size_t cameraDbVersion(const QDomElement& root)
{
    constexpr std::size_t kUnknown = 0;
    if (xml::hasValue(root, "version.value")) {
        return xml::readValue(root, "version.value", kUnknown);
    }
    QString text;
    xml::readTagText(root, "version", text);
    return text.isEmpty() ? kUnknown : xml::readTag(root, "version", kUnknown);
}

} // namespace lumo
