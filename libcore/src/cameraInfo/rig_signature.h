// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_camera.h"

#include <array>
#include <map>
#include <vector>

namespace lumo::rigdb {

/// A camera's properties as numbers that are equal where the properties match:
/// the keys by RigKey, then the bands; kAbsent for what is not known.
using Signature = std::array<int, kRigKeys.size() + 1>;
inline constexpr int kAbsent = -1;

/// Numbers the property values of the cameras of one matching. Strings match
/// ignoring case, bands by their names.
class SignatureMaker
{
public:
    /// A disabled camera has no properties.
    [[nodiscard]] Signature operator()(const rig_camera_filter_t& camera);

private:
    [[nodiscard]] int numberOf(const bands_t& bands);

    std::array<std::map<QString, int>, kRigKeys.size()> m_strings;
    std::vector<bands_t> m_bands;
};

/// Whether two cameras have the same detection string.
[[nodiscard]] bool repeatedDetectionString(const std::vector<Signature>& cameras);

/// What giving a rig's camera to a filter's is worth.
struct PairScore
{
    static constexpr int kImpossible = -1;
    /// Worth of a pair that agrees in everything.
    static constexpr int kMost = 7;

    int score = kImpossible; ///< 0..kMost unless impossible
    bool serialMatched = false;
};

/// Impossible if a property that both have differs; else the number of these
/// properties, and 3 more for the serial number.
[[nodiscard]] PairScore pairScore(const Signature& a, const Signature& b);

} // namespace lumo::rigdb
