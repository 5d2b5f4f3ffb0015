// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/textdb/text_db_builder.h"

#include "cameraInfo/record/record_fault.h"
#include "cameraInfo/rig/finite_pose.h"
#include "lumo/core/specificSensor/vignetting_text.h"
#include "lumo/foundation/text.h"

#include <cmath>
#include <limits>

namespace lumo::cameradb::textdb {
namespace {

QString cameraText(const QString& name, const QString& serialNumber)
{
    return serialNumber.isEmpty()
               ? QStringLiteral("camera '%1'").arg(name)
               : QStringLiteral("camera '%1' with serial number '%2'").arg(name, serialNumber);
}

QString twice(const QString& what)
{
    return what + QStringLiteral(" occurs twice");
}

/// The f-number times 100, the key of vignetting models. More decimals would be lost.
Reason vignettingKey(double fNumber, int& key)
{
    constexpr double kTolerance = 1e-6; // far above rounding, far below a third decimal
    const double hundredfold = fNumber * 100.0;
    const double rounded = std::round(hundredfold);
    if (std::abs(hundredfold - rounded) > kTolerance ||
        std::abs(rounded) > std::numeric_limits<int>::max()) {
        return QStringLiteral("fNumber has more than two decimals or is too large");
    }
    key = static_cast<int>(rounded);
    return std::nullopt;
}

Reason coefficientsFault(const QString& text)
{
    for (const QString& part : text.split(QLatin1Char(','))) {
        bool ok = false;
        static_cast<void>(text::fromString<double>(part, &ok));
        if (!ok) {
            return QStringLiteral("coefficients: '%1' is not a number").arg(part);
        }
    }
    return std::nullopt;
}

Reason vignettingModel(const VignettingRow& row, VignettingData& model)
{
    if (Reason reason = coefficientsFault(row.coefficients)) {
        return reason;
    }
    // string2vignetting() reads a bad number as 0, so the text was checked before.
    model = string2vignetting(row.coefficients);
    const auto count = static_cast<std::size_t>(model.coefficients.size());
    const std::size_t rows = row.rowCount == 0 ? count : row.rowCount;
    if (count % rows != 0) {
        return QStringLiteral("%1 coefficients do not fill %2 rows").arg(count).arg(rows);
    }
    const Eigen::MatrixXd column = model.coefficients;
    model.coefficients = Eigen::Map<const Eigen::MatrixXd>(
        column.data(), static_cast<Eigen::Index>(rows), static_cast<Eigen::Index>(count / rows));
    return std::nullopt;
}

/// Not rig_relatives_t's own comparison, which is tolerant.
bool isDefault(const rig_relatives_t& pose)
{
    const rig_relatives_t none;
    return pose.rotX == none.rotX && pose.rotY == none.rotY && pose.rotZ == none.rotZ &&
           pose.tolRotX == none.tolRotX && pose.tolRotY == none.tolRotY &&
           pose.tolRotZ == none.tolRotZ && pose.transl == none.transl &&
           pose.tolTransl == none.tolTransl;
}

Reason rigCameraFault(const RigModelCameraAttr& attributes)
{
    QString reason;
    if (!attributes.bands().valid(reason, true, true, true)) {
        return reason;
    }
    return attributes.enabled() && attributes[RigKey::ExifString].isEmpty()
               ? QStringLiteral("An enabled camera has no EXIF string")
               : Reason();
}

/// Gives a rig its cameras, in the order of their numbers.
Reason fillRig(RigModel& rig, const std::vector<RigCameraRow>& cameras)
{
    if (rig.refCameraIndex >= cameras.size()) {
        return QStringLiteral("There is no reference camera %1 among %2 cameras")
            .arg(rig.refCameraIndex)
            .arg(cameras.size());
    }
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        if (i != rig.refCameraIndex) {
            rig.secondaries.push_back({cameras[i].attributes, cameras[i].relatives});
        } else if (isDefault(cameras[i].relatives)) {
            rig.refCamera = cameras[i].attributes;
        } else {
            return QStringLiteral("The reference camera has a pose, but poses are relative to it");
        }
    }
    return faultOf(rig);
}

} // namespace

Reason faultOf(const RigModel& rig)
{
    if (rig.name.isEmpty()) {
        return QStringLiteral("The rig has no name");
    }
    Reason reason = rigCameraFault(rig.refCamera);
    for (const auto& secondary : rig.secondaries) {
        if (!reason) {
            reason = rigCameraFault(secondary.attributes);
        }
        if (!reason && !isFinite(secondary.relatives)) {
            reason = QStringLiteral("A pose has a value that is not a finite number");
        }
    }
    if (!reason && !rig.valid()) {
        reason = QStringLiteral("The rig has fewer than two enabled cameras");
    }
    return reason;
}

Reason TablesBuilder::findCamera(const QString& name, const QString& serialNumber, Camera*& camera)
{
    const auto found = m_cameras.find({name, serialNumber});
    if (found == m_cameras.end()) {
        return QStringLiteral("there is no ") + cameraText(name, serialNumber);
    }
    camera = &found->second;
    return std::nullopt;
}

Reason TablesBuilder::findRig(const QString& name, Rig*& rig)
{
    const auto found = m_rigs.find(name);
    if (found == m_rigs.end()) {
        return QStringLiteral("there is no rig '%1'").arg(name);
    }
    rig = &found->second;
    return std::nullopt;
}

Reason TablesBuilder::add(CameraModelFromDB& row)
{
    const auto [entry, isNew] = m_cameras.try_emplace({row.params.name, row.serialNumber});
    if (!isNew) {
        return twice(cameraText(row.params.name, row.serialNumber));
    }
    // An empty identifier means the name; two forms of one record would not be equal.
    if (row.exifId == row.params.name) {
        row.exifId.clear();
    }
    // The columns set plain fields; the setters make dependent terms agree with the flags.
    FisheyeParams& lens = row.params.fisheye;
    lens.setP0zero(lens.p0zero);
    lens.setAffine(lens.symmetricAffine, lens.c, lens.d, lens.e, lens.f);
    const auto stored = m_data.cameras.emplace(row.params.name, std::move(row));
    entry->second = {&stored->second, m_place, false};
    return std::nullopt;
}

Reason TablesBuilder::add(const BandRow& row)
{
    Camera* camera = nullptr;
    if (Reason reason = findCamera(row.camera, row.serialNumber, camera)) {
        return reason;
    }
    std::vector<bands_t>& configs = camera->model->bandConfigs;
    // The first row of a camera replaces the default RGB configuration.
    if (!camera->ownBands) {
        configs.clear();
        camera->ownBands = true;
    }
    if (row.config > configs.size()) {
        return QStringLiteral("config %1 without config %2").arg(row.config).arg(configs.size());
    }
    if (row.config == configs.size()) {
        configs.emplace_back();
    }
    configs[row.config].append(row.band);
    return std::nullopt;
}

Reason TablesBuilder::add(const VignettingRow& row)
{
    Camera* camera = nullptr;
    int key = 0;
    VignettingData model;
    Reason reason = findCamera(row.camera, row.serialNumber, camera);
    if (!reason) {
        reason = vignettingKey(row.fNumber, key);
    }
    if (!reason) {
        reason = vignettingModel(row, model);
    }
    if (reason) {
        return reason;
    }
    return camera->model->params.vignetting.emplace(key, model).second
               ? Reason()
               : twice(QStringLiteral("fNumber of ") + cameraText(row.camera, row.serialNumber));
}

Reason TablesBuilder::add(const PixelValuesRow& row)
{
    Camera* camera = nullptr;
    if (Reason reason = findCamera(row.camera, row.serialNumber, camera)) {
        return reason;
    }
    return camera->model->params.pixelValues.emplace(row.type, row.range).second
               ? Reason()
               : twice(QStringLiteral("pixelType of ") + cameraText(row.camera, row.serialNumber));
}

Reason TablesBuilder::add(const MappingRow& row)
{
    return m_data.mappings.emplace(row.exifId, row.camera).second
               ? Reason()
               : twice(QStringLiteral("exifId '%1'").arg(row.exifId));
}

Reason TablesBuilder::add(const RigModel& row)
{
    return m_rigs.try_emplace(row.name, Rig{row, m_place, {}}).second
               ? Reason()
               : twice(QStringLiteral("rig '%1'").arg(row.name));
}

Reason TablesBuilder::add(const RigCameraRow& row)
{
    Rig* rig = nullptr;
    Reason reason = findRig(row.rig, rig);
    if (!reason) {
        rig->cameras.push_back(row);
    }
    return reason;
}

Reason TablesBuilder::add(const RigBandRow& row)
{
    Rig* rig = nullptr;
    if (Reason reason = findRig(row.rig, rig)) {
        return reason;
    }
    if (row.camera >= rig->cameras.size()) {
        return QStringLiteral("rig '%1' has no camera %2").arg(row.rig).arg(row.camera);
    }
    rig->cameras[row.camera].attributes.filter().bands.append(row.band);
    return std::nullopt;
}

bool TablesBuilder::finish(csv::Fault& fault)
{
    // Only complete records can be checked: bands and cameras come in later sections.
    for (const auto& [key, camera] : m_cameras) {
        QString reason;
        if (!usable(*camera.model, reason)) {
            fault = {
                camera.place, cameraText(key.first, key.second) + QStringLiteral(": ") + reason};
            return false;
        }
    }
    for (auto& [name, rig] : m_rigs) {
        if (const Reason reason = fillRig(rig.model, rig.cameras)) {
            fault = {rig.place, QStringLiteral("rig '%1': ").arg(name) + *reason};
            return false;
        }
        m_data.rigs.emplace(name, std::move(rig.model));
    }
    return true;
}

} // namespace lumo::cameradb::textdb
