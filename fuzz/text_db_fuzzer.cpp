// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/core/cameraInfo/text_db.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    using fuzz::require;
    cameradb::CameraDBData tables;
    QString error;
    if (!cameradb::readTextDB(QString::fromUtf8(fuzz::toBytes(data, size)), tables, error)) {
        require(error.startsWith(QLatin1String("line ")), "an error names the line", error);
        require(tables.empty(), "a failed read leaves the tables alone");
        return 0;
    }
    const QString written = cameradb::writeTextDB(tables);
    cameradb::CameraDBData back;
    require(cameradb::readTextDB(written, back, error), "what is written is read", error);
    require(back.cameras.size() == tables.cameras.size(), "no camera is lost", written);
    require(back.rigs.size() == tables.rigs.size(), "no rig is lost", written);
    require(back.mappings == tables.mappings, "no mapping is lost", written);
    require(cameradb::writeTextDB(back) == written, "a second writing changes nothing", written);
    return 0;
}
