// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_from_db.h"
#include "lumo/core/cameraInfo/rig_model.h"

#include <QLatin1String>
#include <QString>

#include <functional>
#include <vector>

/// The sections of the text form: the record of a row, and the table of columns
/// that both reader and writer go by.
namespace lumo::cameradb::textdb {

/// One column of a section.
template <typename Row>
struct Column
{
    QString name;
    QString content;       ///< what a cell must hold, for messages
    bool required = false; ///< the column is there, and no cell of it is empty
    /// Takes a cell that is not empty; false if it is not `content`.
    std::function<bool(Row&, const QString&)> set;
    std::function<QString(const Row&)> get;
    /// Whether the row can have this value; cells of rows that cannot are empty.
    /// Asked once all cells of a row are set. Nothing: every row can.
    std::function<bool(const Row&)> applies;
};

struct BandRow
{
    QString camera;
    QString serialNumber;
    std::size_t config = 0; ///< number of the band configuration
    band_t band;
};

struct VignettingRow
{
    QString camera;
    QString serialNumber;
    double fNumber = 0.0;
    std::size_t rowCount = 0; ///< of the coefficient matrix; 0: a single column
    QString coefficients;     ///< column by column, comma separated
};

struct PixelValuesRow
{
    QString camera;
    QString serialNumber;
    DataType type = DataType::Unknown;
    PixelValueRange range;
};

struct MappingRow
{
    QString exifId;
    QString camera;
};

/// One camera of a rig. Rows of one rig are in the order of the camera numbers.
struct RigCameraRow
{
    QString rig;
    RigModelCameraAttr attributes;
    rig_relatives_t relatives; ///< the default for the reference camera
};

struct RigBandRow
{
    QString rig;
    std::size_t camera = 0; ///< number within the rig
    band_t band;
};

[[nodiscard]] const std::vector<Column<CameraModelFromDB>>& cameraColumns();
[[nodiscard]] const std::vector<Column<BandRow>>& bandColumns();
[[nodiscard]] const std::vector<Column<VignettingRow>>& vignettingColumns();
[[nodiscard]] const std::vector<Column<PixelValuesRow>>& pixelValuesColumns();
[[nodiscard]] const std::vector<Column<MappingRow>>& mappingColumns();
[[nodiscard]] const std::vector<Column<RigModel>>& rigColumns();
[[nodiscard]] const std::vector<Column<RigCameraRow>>& rigCameraColumns();
[[nodiscard]] const std::vector<Column<RigBandRow>>& rigBandColumns();

/// The first cell of the first line; the version of the form follows it.
inline const QLatin1String kTitle("lumo camera database");
inline constexpr int kFormVersion = 1;
/// The last line.
inline const QLatin1String kEndMark("[end]");

} // namespace lumo::cameradb::textdb
