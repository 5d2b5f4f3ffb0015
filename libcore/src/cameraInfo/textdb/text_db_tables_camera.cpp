// SPDX-License-Identifier: Apache-2.0
// The columns of the tables of cameras and of what belongs to cameras.
#include "cameraInfo/textdb/text_db_column_makers.h"

namespace lumo::cameradb::textdb {
namespace {

using Model = CameraModelFromDB;

bool isPerspective(const Model& model)
{
    return model.params.lensType == LensType::Perspective;
}

bool isFisheye(const Model& model)
{
    return model.params.lensType == LensType::Fisheye;
}

bool hasConstantTerm(const Model& model)
{
    return isFisheye(model) && !model.params.fisheye.p0zero;
}

bool isAsymmetric(const Model& model)
{
    return isFisheye(model) && !model.params.fisheye.symmetricAffine;
}

std::vector<Column<Model>> sensorColumns()
{
    return {
        requiredColumn<Model>(
            "name", [](auto& m) -> auto& { return m.params.name; }),
        column<Model>(
            "serialNumber", [](auto& m) -> auto& { return m.serialNumber; }),
        column<Model>(
            "exifId", [](auto& m) -> auto& { return m.exifId; }),
        requiredColumn<Model>(
            "imageWidthPx", [](auto& m) -> auto& { return m.params.imageWidth; }),
        requiredColumn<Model>(
            "imageHeightPx", [](auto& m) -> auto& { return m.params.imageHeight; }),
        scaledColumn<Model>(
            "pixelSizeUm", 1000.0, [](auto& m) -> auto& { return m.params.pixelSize; }),
        column<Model>(
            "principalPointXMm", [](auto& m) -> auto& { return m.params.principalPointXMm; }),
        column<Model>(
            "principalPointYMm", [](auto& m) -> auto& { return m.params.principalPointYMm; }),
        column<Model>(
            "shutterModel", [](auto& m) -> auto& { return m.params.shutterModel; }),
        column<Model>(
            "lineReadoutTimeMs", [](auto& m) -> auto& { return m.params.lineReadoutTime; }),
        column<Model>(
            "velocityNumber", [](auto& m) -> auto& { return m.params.velocityNumber; }),
        column<Model>(
            "defaultBandConfig", [](auto& m) -> auto& { return m.defaultBandConfig; }),
        column<Model>(
            "source", [](auto& m) -> auto& { return m.params.source; }),
        column<Model>(
            "lensType", [](auto& m) -> auto& { return m.params.lensType; }),
    };
}

std::vector<Column<Model>> perspectiveColumns()
{
    const auto make = [](const char* name, auto field) {
        return columnIf<Model>(
            isPerspective, name, [field](auto& m) -> auto& { return m.params.perspective.*field; });
    };
    return {
        make("focalLengthMm", &PerspectiveParams::focalLengthMm),
        make("distortion", &PerspectiveParams::distortion),
        make("radialK1", &PerspectiveParams::radialK1),
        make("radialK2", &PerspectiveParams::radialK2),
        make("radialK3", &PerspectiveParams::radialK3),
        make("tangentialT1", &PerspectiveParams::tangentialT1),
        make("tangentialT2", &PerspectiveParams::tangentialT2),
    };
}

std::vector<Column<Model>> fisheyeColumns()
{
    const auto make = [](auto applies, const char* name, auto field) {
        return columnIf<Model>(
            applies, name, [field](auto& m) -> auto& { return m.params.fisheye.*field; });
    };
    const auto makeTerm = [](auto applies, const char* name, std::size_t power) {
        return columnIf<Model>(
            applies, name, [power](auto& m) -> auto& { return m.params.fisheye.poly[power]; });
    };
    return {
        make(isFisheye, "fisheyeDegree", &FisheyeParams::npoly),
        make(isFisheye, "fisheyeP0Zero", &FisheyeParams::p0zero),
        makeTerm(hasConstantTerm, "fisheyeP0", 0),
        makeTerm(isFisheye, "fisheyeP1", 1),
        makeTerm(isFisheye, "fisheyeP2", 2),
        makeTerm(isFisheye, "fisheyeP3", 3),
        makeTerm(isFisheye, "fisheyeP4", 4),
        make(isFisheye, "fisheyeSymmetric", &FisheyeParams::symmetricAffine),
        make(isFisheye, "fisheyeCPx", &FisheyeParams::c),
        make(isAsymmetric, "fisheyeDPx", &FisheyeParams::d),
        make(isAsymmetric, "fisheyeEPx", &FisheyeParams::e),
        make(isAsymmetric, "fisheyeFPx", &FisheyeParams::f),
    };
}

/// Appends the columns that identify a row's camera.
template <typename Row>
std::vector<Column<Row>> ownerColumns()
{
    return {
        requiredColumn<Row>(
            "camera", [](auto& row) -> auto& { return row.camera; }),
        column<Row>(
            "serialNumber", [](auto& row) -> auto& { return row.serialNumber; }),
    };
}

} // namespace

const std::vector<Column<CameraModelFromDB>>& cameraColumns()
{
    static const std::vector<Column<Model>> columns = [] {
        std::vector<Column<Model>> all = sensorColumns();
        for (const auto& lensColumns : {perspectiveColumns(), fisheyeColumns()}) {
            all.insert(all.end(), lensColumns.begin(), lensColumns.end());
        }
        return all;
    }();
    return columns;
}

const std::vector<Column<BandRow>>& bandColumns()
{
    static const std::vector<Column<BandRow>> columns = [] {
        std::vector<Column<BandRow>> all = ownerColumns<BandRow>();
        all.push_back(column<BandRow>(
            "config", [](auto& row) -> auto& { return row.config; }));
        appendBandColumns(all);
        return all;
    }();
    return columns;
}

const std::vector<Column<VignettingRow>>& vignettingColumns()
{
    using Row = VignettingRow;
    static const std::vector<Column<Row>> columns = [] {
        std::vector<Column<Row>> all = ownerColumns<Row>();
        all.push_back(requiredColumn<Row>(
            "fNumber", [](auto& row) -> auto& { return row.fNumber; }));
        all.push_back(column<Row>(
            "rowCount", [](auto& row) -> auto& { return row.rowCount; }));
        all.push_back(requiredColumn<Row>(
            "coefficients", [](auto& row) -> auto& { return row.coefficients; }));
        return all;
    }();
    return columns;
}

const std::vector<Column<PixelValuesRow>>& pixelValuesColumns()
{
    using Row = PixelValuesRow;
    static const std::vector<Column<Row>> columns = [] {
        std::vector<Column<Row>> all = ownerColumns<Row>();
        all.push_back(requiredColumn<Row>(
            "pixelType", [](auto& row) -> auto& { return row.type; }));
        all.push_back(requiredColumn<Row>(
            "min", [](auto& row) -> auto& { return row.range.min; }));
        all.push_back(requiredColumn<Row>(
            "max", [](auto& row) -> auto& { return row.range.max; }));
        return all;
    }();
    return columns;
}

const std::vector<Column<MappingRow>>& mappingColumns()
{
    static const std::vector<Column<MappingRow>> columns = {
        requiredColumn<MappingRow>(
            "exifId", [](auto& row) -> auto& { return row.exifId; }),
        requiredColumn<MappingRow>(
            "camera", [](auto& row) -> auto& { return row.camera; }),
    };
    return columns;
}

} // namespace lumo::cameradb::textdb
