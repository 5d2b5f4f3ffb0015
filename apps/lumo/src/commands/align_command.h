// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <cstdint>

namespace lumo::program {

/// The arguments of `lumo align`.
struct AlignRequest
{
    QString pointFile;
    double outlierRatio = 0.3;
    int samplePairs = 3;
    std::uint32_t seed = 5489;
    QString jsonFile;   ///< empty: none
    QString reportFile; ///< empty: none
    bool force = false; ///< also give one of many transforms that fit as well
};

/// Aligns the two sets of a file of point pairs and shows the transform.
[[nodiscard]] ExitCode alignPoints(const AlignRequest& request, const CommonOptions& options);

} // namespace lumo::program
