// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xml_conversion.h"
#include "xml/project/kpx_file_version.h"

#include <vector>

namespace lumo::kpx {

/// The format version of schema and stylesheet in development, which apply on top
/// of the newest released version.
inline constexpr int kDevelopmentVersion = 9999;

struct Step
{
    bool legacy = false; ///< the hand-written step to format version 0
    int from = 0;        ///< else the format version from which a stylesheet starts
    QString label;
};

/// From the file's version to the target, first to last; none for a newer file.
/// \throws std::runtime_error "Project generated with 2.1 beta version."
[[nodiscard]] std::vector<Step> planSteps(const FileVersion& version, int targetVersion);

/// \param[out] reason  why none could be created
/// \returns null if a development step lacks the released versions before it
[[nodiscard]] std::unique_ptr<IXmlConversion> createConversion(
    const Step& step, bool isTemplate, QString& reason);

} // namespace lumo::kpx
