// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_selftest.h"

#include "cameraInfo/record/exif_id_parts.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/exif/sensor_size_table.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

namespace lumo {
namespace {

/// The model part of a camera's identifier, which the table of sensor sizes lists.
QString modelKey(const CameraModelFromDB& model)
{
    return exifIdKey(model.identifier()).toLower();
}

enum class InTable { No, Fits, Differs };

/// Compares a camera's sensor with the table's. A crop fits: it shortens one side of the
/// image only.
/// \param[out] text  on Differs the difference, in words
InTable compareWithTable(const CameraModelFromDB& model, QString& text)
{
    constexpr double kDoubtful = 0.05; // published sizes are rounded
    const CameraParams& params = model.params;
    const auto sensor = exif::findSensorSize(modelKey(model)); // identifiers carry no maker
    if (!sensor) {
        return InTable::No;
    }
    const auto difference = [&](std::size_t pixels, double tableMm) {
        return params.pixel2mm(static_cast<double>(pixels)) / tableMm - 1.0;
    };
    const double longSide =
        difference(std::max(params.imageWidth, params.imageHeight), sensor->widthMm);
    const double shortSide =
        sensor->heightMm > 0.0
            ? difference(std::min(params.imageWidth, params.imageHeight), sensor->heightMm)
            : longSide;
    if (std::abs(std::max(longSide, shortSide)) <= kDoubtful) {
        return InTable::Fits;
    }
    const bool inWidth = std::abs(longSide) > kDoubtful;
    const double share = inWidth ? longSide : shortSide;
    text = QStringLiteral("its sensor is %1 % %2 than in the table of sensor sizes")
               .arg(std::abs(share) * 100.0, 0, 'f', 1)
               .arg(
                   !inWidth      ? QStringLiteral("higher")
                   : share > 0.0 ? QStringLiteral("wider")
                                 : QStringLiteral("narrower"));
    return InTable::Differs;
}

/// Adds doubts about sensors. The table lists one camera of a product with several; if
/// the database has this camera too, the doubt about another one names it.
void checkSensors(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    std::map<QString, QString> cameraOfTable;
    std::vector<std::pair<const CameraModelFromDB*, QString>> doubts;
    for (const auto& [name, model] : database.internalData().cameras) {
        QString text;
        const InTable inTable = compareWithTable(model, text);
        if (inTable == InTable::Fits) {
            cameraOfTable.emplace(modelKey(model), name);
        } else if (inTable == InTable::Differs) {
            doubts.emplace_back(&model, text);
        }
    }
    for (auto& [model, text] : doubts) {
        if (const auto known = cameraOfTable.find(modelKey(*model)); known != cameraOfTable.end()) {
            text += QStringLiteral(", which lists another camera of this product: '%1'")
                        .arg(known->second);
        }
        findings.push_back({model->params.name, text, false});
    }
}

/// Why the numbers of a camera cannot be right, if they cannot.
std::optional<QString> numberFault(const CameraModelFromDB& model)
{
    constexpr double kSmallestSideMm = 0.5;      // smaller than any thermal core
    constexpr double kLargestSideMm = 120.0;     // aerial frame cameras reach 105 mm
    constexpr double kLongestReadoutMs = 1000.0; // a second would mean a wrong unit
    const CameraParams& params = model.params;
    QString error;
    if (!params.valid(error, true)) {
        return error;
    }
    const auto width = static_cast<double>(params.imageWidth);
    const auto height = static_cast<double>(params.imageHeight);
    for (const double pixels : {width, height}) {
        const double side = params.pixel2mm(pixels);
        if (!(side >= kSmallestSideMm && side <= kLargestSideMm)) {
            return QStringLiteral("a side of its sensor is %1 mm long").arg(side);
        }
    }
    const auto [x, y] = params.principalPointPixel();
    if (!(x >= 0.0 && x <= width && y >= 0.0 && y <= height)) {
        return QStringLiteral("its principal point lies outside the image");
    }
    const double readout = std::abs(params.lineReadoutTime) * height;
    if (!(readout < kLongestReadoutMs)) {
        return QStringLiteral("its shutter takes %1 ms from the first line to the last")
            .arg(readout);
    }
    return std::nullopt;
}

/// Why a band's centre cannot be right, if one cannot. Known centres (not 0) must be
/// between ultraviolet and thermal infrared.
std::optional<QString> bandFault(const CameraModelFromDB& model)
{
    constexpr double kShortestNm = 300.0;
    constexpr double kLongestNm = 15000.0;
    for (const bands_t& bands : model.bandConfigs) {
        for (const band_t& band : bands) {
            const bool unknown = band.wavelength == 0.0;
            if (!unknown && !(band.wavelength >= kShortestNm && band.wavelength <= kLongestNm)) {
                return QStringLiteral("its band '%1' lies at %2 nm")
                    .arg(band.name)
                    .arg(band.wavelength);
            }
        }
    }
    return std::nullopt;
}

void checkIdentifiers(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    // Entries of several bodies share name and identifier; only different names clash.
    std::map<QString, QString> ownerOf;
    for (const auto& [name, model] : database.internalData().cameras) {
        const QString& identifier = model.identifier();
        CameraModelFromDB found;
        if (!database.findCameraModel(
                database.exifId2cameraName(identifier, true), model.serialNumber, true, found,
                true) ||
            found.params.name != name) {
            findings.push_back(
                {name, QStringLiteral("its identifier '%1' does not find it").arg(identifier),
                 true});
        }
        const auto [owner, isNew] = ownerOf.emplace(identifier, name);
        if (!isNew && owner->second != name) {
            findings.push_back(
                {name, QStringLiteral("shares its identifier with '%1'").arg(owner->second), true});
        }
    }
}

void checkNumbers(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    for (const auto& [name, model] : database.internalData().cameras) {
        for (const std::optional<QString>& fault : {numberFault(model), bandFault(model)}) {
            if (fault) {
                findings.push_back({name, *fault, true});
            }
        }
    }
}

void checkMappings(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    const cameradb::CameraDBData& data = database.internalData();
    for (const auto& [identifier, name] : data.mappings) {
        if (!data.cameras.contains(name)) {
            findings.push_back(
                {identifier,
                 QStringLiteral("is mapped to '%1', but there is no such camera").arg(name), true});
        }
    }
}

void checkRigs(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    for (const auto& [name, rig] : database.internalData().rigs) {
        rig_filter_t filter = rig.makeRigFilter(true);
        filter.name.clear(); // a rig that is named in the filter is preferred
        RigModel found;
        if (!database.findBestRigModel(filter, found)) {
            findings.push_back(
                {name, QStringLiteral("a capture of its cameras finds no rig"), true});
        } else if (found.name != name) {
            findings.push_back(
                {name,
                 QStringLiteral("a capture of its cameras finds '%1' instead").arg(found.name),
                 true});
        }
    }
}

} // namespace

std::vector<DatabaseFinding> checkInternalDatabase(const CameraModelDb& database)
{
    std::vector<DatabaseFinding> findings;
    checkIdentifiers(database, findings);
    checkNumbers(database, findings);
    checkSensors(database, findings);
    checkMappings(database, findings);
    checkRigs(database, findings);
    return findings;
}

} // namespace lumo
