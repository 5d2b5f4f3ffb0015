// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cameraInfo/textdb/csv.h"
#include "cameraInfo/textdb/text_db_tables.h"
#include "lumo/core/cameraInfo/camera_db_data.h"

#include <QString>

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace lumo::cameradb::textdb {

/// Why a row or record is refused; none on success.
using Reason = std::optional<QString>;

/// Builds the tables of a database from the rows of the sections.
class TablesBuilder
{
public:
    /// Sets the place in the text of the next row to be added, for faults.
    void setPlace(const csv::Place& place) { m_place = place; }

    // Each adds a row. The result is the reason why the row cannot be added, if any.
    [[nodiscard]] Reason add(CameraModelFromDB& row);
    [[nodiscard]] Reason add(const BandRow& row);
    [[nodiscard]] Reason add(const VignettingRow& row);
    [[nodiscard]] Reason add(const PixelValuesRow& row);
    [[nodiscard]] Reason add(const MappingRow& row);
    [[nodiscard]] Reason add(const RigModel& row);
    [[nodiscard]] Reason add(const RigCameraRow& row);
    [[nodiscard]] Reason add(const RigBandRow& row);

    /// Once all rows are added: checks each record as a whole.
    /// \param[out] fault  the first record, by name, that is not valid
    [[nodiscard]] bool finish(csv::Fault& fault);

    /// The tables; after finish() only.
    [[nodiscard]] CameraDBData takeData() { return std::move(m_data); }

private:
    struct Camera
    {
        CameraModelFromDB* model = nullptr; ///< in m_data
        csv::Place place;
        bool ownBands = false; ///< the bands are no longer the default ones
    };

    struct Rig
    {
        RigModel model; ///< without cameras until finish()
        csv::Place place;
        std::vector<RigCameraRow> cameras;
    };

    // The result is the reason why there is no such record, if there is none.
    [[nodiscard]] Reason findCamera(
        const QString& name, const QString& serialNumber, Camera*& camera);
    [[nodiscard]] Reason findRig(const QString& name, Rig*& rig);

    csv::Place m_place;
    CameraDBData m_data;
    std::map<std::pair<QString, QString>, Camera> m_cameras; ///< by name and serial number
    std::map<QString, Rig> m_rigs;
};

/// Why a database cannot have the rig, if it cannot.
[[nodiscard]] Reason faultOf(const RigModel& rig);

} // namespace lumo::cameradb::textdb
