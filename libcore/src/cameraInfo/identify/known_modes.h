// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cameraInfo/identify/size_change.h"
#include "lumo/cameradata/exif_info.h"

#include <QString>

#include <map>
#include <vector>

namespace lumo {

class CameraModelDb;

/// A size in which a camera of the database delivers pictures.
struct KnownMode
{
    QString name; ///< of the model
    QString identifier;
    QString focalLength;  ///< as the identifier has it, mm with one decimal
    PictureSize size;     ///< the longer side as width
    double pixelSize = 0; ///< mm

    [[nodiscard]] double widthMm() const { return static_cast<double>(size.width) * pixelSize; }
};

/// The modes of all cameras of a database, by the key of their identifiers (model,
/// perhaps with lens, ignoring case). A user's model hides the internal one of the same
/// name. The modes are copied: later changes of the database have no effect.
class KnownModes
{
public:
    explicit KnownModes(const CameraModelDb& database);

    /// Those of the cameras that have the key of either identifier.
    [[nodiscard]] std::vector<KnownMode> of(const ExifID& identifiers) const;

private:
    std::map<QString, std::vector<KnownMode>> m_modes;
};

} // namespace lumo
