// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_from_db.h"
#include "lumo/core/cameraInfo/rig_model.h"

#include <QString>
#include <QStringList>

#include <map>

namespace lumo::cameradb {

/// The format version of camera databases that this library writes.
inline constexpr std::size_t kCurrentVersion = 19;

/// The tables of one camera database. Keys are exact and case-sensitive.
struct CameraDBData
{
    /// Key: the model name. Several entries may share a name, one per serial number.
    std::multimap<QString, CameraModelFromDB> cameras;
    std::map<QString, RigModel> rigs;    ///< key: the rig name
    std::map<QString, QString> mappings; ///< EXIF identifier -> model name

    /// Records of the XML document that could not be loaded, each as
    /// `line 12: camera "A": The image size is 0`. Saving the tables over the
    /// document would delete these records.
    QStringList skipped = {};

    /// Whether all three tables are empty; `skipped` does not count.
    [[nodiscard]] bool empty() const { return cameras.empty() && rigs.empty() && mappings.empty(); }
};

} // namespace lumo::cameradb
