// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/core/cameraInfo/rig_model.h"

#include <array>
#include <map>
#include <vector>

namespace lumo::rigdb {

/// A camera's properties as numbers that are equal where the properties match:
/// the keys by RigKey, then the bands; kAbsent for what is not known.
using Signature = std::array<int, kRigKeys.size() + 1>;
inline constexpr int kAbsent = -1;
inline constexpr std::size_t kBands = kRigKeys.size(); ///< their place in a signature

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

/// Of the cameras of one matching, in their order.
struct Signatures
{
    std::vector<Signature> filter;
    std::vector<Signature> rig;
};

/// \throws std::out_of_range if the rig's refCameraIndex is not one of its cameras
[[nodiscard]] Signatures signaturesOf(const RigModel& rig, const rig_filter_t& filter);

/// Whether two cameras have the same detection string.
[[nodiscard]] bool repeatedDetectionString(const std::vector<Signature>& cameras);

/// The gain of assigning one camera of a rig to one of a filter.
struct PairScore
{
    static constexpr int kImpossible = -1;
    int score = kImpossible;
    bool serialMatched = false;
};

/// Impossible if a property that both have differs; else the number of these
/// properties, and 3 more for the serial number.
[[nodiscard]] PairScore pairScore(const Signature& a, const Signature& b);

} // namespace lumo::rigdb
