// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/sequoia.h"

#include "lumo/foundation/text.h"

namespace lumo::exif::sequoia {

bool isSequoia(const ExifInfo& exif)
{
    return text::iequals(exif.make, QStringLiteral("Parrot")) &&
           text::iequals(exif.model, QStringLiteral("Sequoia"));
}

} // namespace lumo::exif::sequoia
