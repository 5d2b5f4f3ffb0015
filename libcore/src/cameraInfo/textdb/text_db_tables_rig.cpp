// SPDX-License-Identifier: Apache-2.0
// The columns of the tables of rigs.
#include "cameraInfo/textdb/text_db_column_makers.h"

namespace lumo::cameradb::textdb {
namespace {

/// The flag is a number in memory and true or false in text.
Column<RigModel> adjustRefCameraColumn()
{
    return {
        QStringLiteral("adjustRefCamera"),
        QString::fromLatin1(kCellContent<bool>),
        false,
        [](RigModel& rig, const QString& cell) {
            bool adjust = true;
            const bool ok = fromCell(cell, adjust);
            rig.adjustRefCamera = adjust ? 1 : 0;
            return ok;
        },
        [](const RigModel& rig) { return toCell(rig.adjustRefCamera != 0); },
        {}};
}

std::vector<Column<RigCameraRow>> attributeColumns()
{
    using Row = RigCameraRow;
    const auto makeKey = [](const char* name, RigKey key) {
        return column<Row>(
            name, [key](auto& row) -> auto& { return row.attributes.filter()[key]; });
    };
    return {
        requiredColumn<Row>(
            "rig", [](auto& row) -> auto& { return row.rig; }),
        column<Row>(
            "name", [](auto& row) -> auto& { return row.attributes.name; }),
        column<Row>(
            "enabled", [](auto& row) -> auto& { return row.attributes.filter().enabled; }),
        makeKey("exifString", RigKey::ExifString),
        makeKey("serialNumber", RigKey::SerialNumber),
        makeKey("detectionString", RigKey::DetectionString),
    };
}

std::vector<Column<RigCameraRow>> poseColumns()
{
    using Row = RigCameraRow;
    const auto makeAngle = [](const char* name, double rig_relatives_t::*field) {
        return column<Row>(
            name, [field](auto& row) -> auto& { return row.relatives.*field; });
    };
    const auto makeLength = [](const char* name, auto field, Eigen::Index axis) {
        return column<Row>(
            name, [ field, axis ](auto& row) -> auto& { return (row.relatives.*field)[axis]; });
    };
    return {
        makeAngle("rotXDeg", &rig_relatives_t::rotX),
        makeAngle("rotYDeg", &rig_relatives_t::rotY),
        makeAngle("rotZDeg", &rig_relatives_t::rotZ),
        makeLength("translX", &rig_relatives_t::transl, 0),
        makeLength("translY", &rig_relatives_t::transl, 1),
        makeLength("translZ", &rig_relatives_t::transl, 2),
        makeAngle("tolRotXDeg", &rig_relatives_t::tolRotX),
        makeAngle("tolRotYDeg", &rig_relatives_t::tolRotY),
        makeAngle("tolRotZDeg", &rig_relatives_t::tolRotZ),
        makeLength("tolTranslX", &rig_relatives_t::tolTransl, 0),
        makeLength("tolTranslY", &rig_relatives_t::tolTransl, 1),
        makeLength("tolTranslZ", &rig_relatives_t::tolTransl, 2),
    };
}

} // namespace

const std::vector<Column<RigModel>>& rigColumns()
{
    static const std::vector<Column<RigModel>> columns = {
        requiredColumn<RigModel>(
            "name", [](auto& rig) -> auto& { return rig.name; }),
        column<RigModel>(
            "processingMode", [](auto& rig) -> auto& { return rig.processingMode; }),
        adjustRefCameraColumn(),
        column<RigModel>(
            "detection", [](auto& rig) -> auto& { return rig.cameraDetection; }),
        column<RigModel>(
            "referenceCamera", [](auto& rig) -> auto& { return rig.refCameraIndex; }),
    };
    return columns;
}

const std::vector<Column<RigCameraRow>>& rigCameraColumns()
{
    static const std::vector<Column<RigCameraRow>> columns = [] {
        std::vector<Column<RigCameraRow>> all = attributeColumns();
        const std::vector<Column<RigCameraRow>> pose = poseColumns();
        all.insert(all.end(), pose.begin(), pose.end());
        return all;
    }();
    return columns;
}

const std::vector<Column<RigBandRow>>& rigBandColumns()
{
    static const std::vector<Column<RigBandRow>> columns = [] {
        std::vector<Column<RigBandRow>> all = {
            requiredColumn<RigBandRow>(
                "rig", [](auto& row) -> auto& { return row.rig; }),
            requiredColumn<RigBandRow>(
                "camera", [](auto& row) -> auto& { return row.camera; }),
        };
        appendBandColumns(all);
        return all;
    }();
    return columns;
}

} // namespace lumo::cameradb::textdb
