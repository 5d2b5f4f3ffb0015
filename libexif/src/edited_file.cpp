// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"

#include <algorithm>
#include <array>

namespace lumo::exif {

bool isEdited(const ExifInfo& exif)
{
    static constexpr std::array kPrograms = {
        "ACDSee",    "Affinity",   "Aperture",    "Capture One", "darktable",
        "digiKam",   "DxO",        "GIMP",        "ImageMagick", "IrfanView",
        "Lightroom", "Luminar",    "Paint",       "PhotoScape",  "Photoshop",
        "Picasa",    "Pixelmator", "RawTherapee", "Snapseed",    "XnView"};
    return std::any_of(kPrograms.begin(), kPrograms.end(), [&exif](const char* program) {
        return exif.software.contains(QLatin1String(program), Qt::CaseInsensitive);
    });
}

} // namespace lumo::exif
