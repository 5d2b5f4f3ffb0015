// SPDX-License-Identifier: Apache-2.0
// writeTextDB(): from tables to rows.
#include "cameraInfo/record/record_fault.h"
#include "cameraInfo/textdb/csv.h"
#include "cameraInfo/textdb/text_db_builder.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/specificSensor/vignetting_text.h"

#include <set>
#include <utility>
#include <vector>

namespace lumo::cameradb {
namespace {

using namespace textdb;

/// The text of a cell; empty if reading an empty cell gives the same value. Short rows are
/// easier to read and compare.
template <typename Row>
QString cellOf(const Column<Row>& column, const Row& row, const Row& defaults)
{
    if (column.applies && !column.applies(row)) {
        return {};
    }
    const QString cell = column.get(row);
    return column.required || cell != column.get(defaults) ? cell : QString();
}

template <typename Row>
void appendSection(
    QString& text, const char* name, const std::vector<Column<Row>>& columns,
    const std::vector<Row>& rows)
{
    if (rows.empty()) {
        return;
    }
    text += QLatin1String(name) + QLatin1Char('\n');
    std::vector<QString> cells;
    for (const Column<Row>& column : columns) {
        cells.push_back(column.name);
    }
    csv::appendRow(text, cells);
    const Row defaults;
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            cells[i] = cellOf(columns[i], row, defaults);
        }
        csv::appendRow(text, cells);
    }
}

/// The rows of all sections but the mappings'.
struct Rows
{
    std::vector<CameraModelFromDB> cameras;
    std::vector<BandRow> bands;
    std::vector<VignettingRow> vignetting;
    std::vector<PixelValuesRow> pixelValues;
    std::vector<RigModel> rigs;
    std::vector<RigCameraRow> rigCameras;
    std::vector<RigBandRow> rigBands;
};

void appendBands(const CameraModelFromDB& model, std::vector<BandRow>& rows)
{
    // Cameras with the default configuration need no rows: reading makes it again.
    static const std::vector<bands_t> defaults{band::makeRGBBands()};
    if (model.bandConfigs == defaults) {
        return;
    }
    for (std::size_t config = 0; config < model.bandConfigs.size(); ++config) {
        for (const band_t& band : model.bandConfigs[config]) {
            rows.push_back({model.params.name, model.serialNumber, config, band});
        }
    }
}

void appendCamera(const CameraModelFromDB& model, Rows& rows)
{
    const QString& name = model.params.name;
    rows.cameras.push_back(model);
    if (model.exifId == name) {
        rows.cameras.back().exifId.clear();
    }
    appendBands(model, rows.bands);
    for (const auto& [key, vignetting] : model.params.vignetting) {
        const Eigen::MatrixXd& coefficients = vignetting.coefficients;
        if (coefficients.size() > 0) {
            const auto rowCount = static_cast<std::size_t>(coefficients.rows());
            rows.vignetting.push_back(
                {name, model.serialNumber, key / 100.0, coefficients.cols() == 1 ? 0 : rowCount,
                 vignetting2string(vignetting)});
        }
    }
    for (const auto& [type, range] : model.params.pixelValues) {
        if (type != DataType::Unknown) {
            rows.pixelValues.push_back({name, model.serialNumber, type, range});
        }
    }
}

void appendRig(const RigModel& rig, Rows& rows)
{
    rows.rigs.push_back(rig);
    for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
        const std::size_t secondary = rig.secCameraIndex(i);
        rows.rigCameras.push_back(
            {rig.name, rig.attr(i),
             i == rig.refCameraIndex ? rig_relatives_t() : rig.secondaries[secondary].relatives});
        for (const band_t& band : rig.bands(i)) {
            rows.rigBands.push_back({rig.name, i, band});
        }
    }
}

std::vector<MappingRow> mappingRows(const std::map<QString, QString>& mappings)
{
    std::vector<MappingRow> rows;
    for (const auto& [exifId, camera] : mappings) {
        if (!exifId.isEmpty() && !camera.isEmpty()) {
            rows.push_back({exifId, camera});
        }
    }
    return rows;
}

Rows rowsOf(const CameraDBData& data)
{
    Rows rows;
    std::set<std::pair<QString, QString>> cameraKeys;
    for (const auto& [name, model] : data.cameras) {
        // Reading refuses a whole file for one bad record, so such records are left out.
        QString unused;
        if (usable(model, unused) &&
            cameraKeys.emplace(model.params.name, model.serialNumber).second) {
            appendCamera(model, rows);
        }
    }
    std::set<QString> rigNames;
    for (const auto& [name, rig] : data.rigs) {
        if (!faultOf(rig) && rigNames.insert(rig.name).second) {
            appendRig(rig, rows);
        }
    }
    return rows;
}

} // namespace

QString writeTextDB(const CameraDBData& data)
{
    const Rows rows = rowsOf(data);
    QString text;
    csv::appendRow(text, {QString(kTitle), QString::number(kFormVersion)});
    appendSection(text, "[cameras]", cameraColumns(), rows.cameras);
    appendSection(text, "[bands]", bandColumns(), rows.bands);
    appendSection(text, "[vignetting]", vignettingColumns(), rows.vignetting);
    appendSection(text, "[pixelValues]", pixelValuesColumns(), rows.pixelValues);
    appendSection(text, "[mappings]", mappingColumns(), mappingRows(data.mappings));
    appendSection(text, "[rigs]", rigColumns(), rows.rigs);
    appendSection(text, "[rigCameras]", rigCameraColumns(), rows.rigCameras);
    appendSection(text, "[rigBands]", rigBandColumns(), rows.rigBands);
    return text + kEndMark + QLatin1Char('\n');
}

} // namespace lumo::cameradb
