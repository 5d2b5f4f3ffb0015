// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/image_identification.h"

#include <QJsonObject>
#include <QString>

#include <vector>

namespace lumo::program {

/// How an image was identified: `candidates` (with the rule that took or refused
/// each), `evidence` of the pixel size (of the recorded picture, with `verdict`
/// "taken", "agrees", "disagrees" or "refused") and the mode's reason.
[[nodiscard]] QJsonObject explanationJson(
    const ImageIdentification& found, const std::vector<CandidateModel>& candidates);

/// The same as a block of lines under the file's name.
[[nodiscard]] QString explanationText(
    const QString& file, const ImageIdentification& found,
    const std::vector<CandidateModel>& candidates);

} // namespace lumo::program
