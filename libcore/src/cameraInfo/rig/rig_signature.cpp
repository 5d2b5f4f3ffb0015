// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/rig/rig_signature.h"

#include <algorithm>
#include <set>

namespace lumo::rigdb {
namespace {

/// A serial number names one body. With this bonus it outweighs the three other
/// properties together.
constexpr int kSerialNumberBonus = 3;

} // namespace

Signature SignatureMaker::operator()(const rig_camera_filter_t& camera)
{
    Signature signature;
    signature.fill(kAbsent);
    if (!camera.enabled) {
        return signature;
    }
    for (std::size_t key = 0; key < camera.keys.size(); ++key) {
        if (!camera.keys[key].isEmpty()) {
            std::map<QString, int>& numbers = m_strings[key];
            const int next = static_cast<int>(numbers.size());
            signature[key] = numbers.emplace(camera.keys[key].toLower(), next).first->second;
        }
    }
    if (!camera.bands.empty()) {
        signature[kBands] = numberOf(camera.bands);
    }
    return signature;
}

int SignatureMaker::numberOf(const bands_t& bands)
{
    const auto known = std::find_if(m_bands.begin(), m_bands.end(), [&bands](const bands_t& other) {
        return other.sameNames(bands);
    });
    const auto number = static_cast<int>(known - m_bands.begin());
    if (known == m_bands.end()) {
        m_bands.push_back(bands);
    }
    return number;
}

Signatures signaturesOf(const RigModel& rig, const rig_filter_t& filter)
{
    SignatureMaker makeSignature; // one for both sides: its numbers must be comparable
    Signatures signatures;
    for (const rig_camera_filter_t& camera : filter.cameras) {
        signatures.filter.push_back(makeSignature(camera));
    }
    for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
        signatures.rig.push_back(makeSignature(rig.attr(i)));
    }
    return signatures;
}

bool repeatedDetectionString(const std::vector<Signature>& cameras)
{
    std::set<int> seen;
    return std::any_of(cameras.begin(), cameras.end(), [&seen](const Signature& camera) {
        const int value = camera[static_cast<std::size_t>(RigKey::DetectionString)];
        return value != kAbsent && !seen.insert(value).second;
    });
}

PairScore pairScore(const Signature& a, const Signature& b)
{
    PairScore pair{0, false};
    for (std::size_t key = 0; key < a.size(); ++key) {
        if (a[key] == kAbsent || b[key] == kAbsent) {
            continue;
        }
        if (a[key] != b[key]) {
            return {};
        }
        const bool serial = key == static_cast<std::size_t>(RigKey::SerialNumber);
        pair.score += serial ? 1 + kSerialNumberBonus : 1;
        pair.serialMatched = pair.serialMatched || serial;
    }
    return pair;
}

} // namespace lumo::rigdb
