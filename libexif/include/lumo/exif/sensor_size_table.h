// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/exif/export.h"

#include <QString>

#include <optional>

namespace lumo::exif {

/// Image area of a camera's sensor, the longer side first.
struct SensorSize
{
    double widthMm = 0.0;
    double heightMm = 0.0; ///< 0 if not known

    bool operator==(const SensorSize&) const = default;
};

/// The sensor size of a camera model in the shipped table of some 7,300 models.
///
/// Spellings are folded: of the maker the first word counts, and several names
/// of one maker are one ("EASTMAN KODAK COMPANY", "Kodak"); of the model only
/// letters, digits and "+", in lower case, without the maker's name before it.
/// A model that names another maker of the table ("RICOH IMAGING COMPANY" makes
/// a "PENTAX K-3") is looked for under that maker too.
///
/// Phones of Samsung, Huawei and LG have a name for each country and carrier: a
/// variant that the table lacks has the size of the others ("SAMSUNG-SM-N900A" that
/// of the SM-N9005), if these agree within 5 %.
///
/// Nothing is found for a name of several cameras with different sensors (colour and
/// thermal, say), where the shipped camera database knows these cameras.
///
/// The table is loaded by the first call. Calls may run in parallel.
[[nodiscard]] LUMO_EXIF_EXPORT std::optional<SensorSize> findSensorSize(
    const QString& make, const QString& model);

/// Likewise where the maker is not known: nothing unless all makers that have a
/// model of this name (without their own name before it) agree on its size.
[[nodiscard]] LUMO_EXIF_EXPORT std::optional<SensorSize> findSensorSize(const QString& model);

} // namespace lumo::exif
