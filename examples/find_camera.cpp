// SPDX-License-Identifier: Apache-2.0
// Finds the camera of images: find_camera DATA_FOLDER IMAGE...
#include "database.h"

#include <QCoreApplication>
#include <lumo/core/cameraInfo/image_identification.h>
#include <lumo/core/cameraInfo/lumo_camera_db_io.h>
#include <lumo/core/services/core_services.h>
#include <lumo/exif/read_exif.h>

#include <cstdio>

namespace {

void print(const QString& image, const lumo::ImageIdentification& found)
{
    const lumo::CameraParams& params = found.camera.params;
    if (found.camera.incomplete()) {
        std::printf("%s: no pixel size: %s\n", qPrintable(image), qPrintable(found.reason));
        return;
    }
    std::printf(
        "%s: %s, %zu x %zu pixels of %.3f um (%s)\n", qPrintable(image),
        found.modelName.isEmpty() ? "not in the database" : qPrintable(found.modelName),
        found.width, found.height, params.pixelSize * 1000.0, // mm to um
        qPrintable(lumo::toString(found.pixelSizeFrom)));
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: find_camera DATA_FOLDER IMAGE...\n", stderr);
        return 2;
    }
    lumo::CoreServices::instance(); // once, before all else

    QString error;
    lumo::CameraModelDb database = databaseIn(arguments[1]);
    if (!lumo::loadCameraDatabases(database, error)) {
        std::fprintf(stderr, "camera database: %s\n", qPrintable(error));
        return 1;
    }
    int exitCode = 0;
    for (const QString& image : arguments.mid(2)) {
        lumo::ExifInfo exif;
        if (lumo::exif::readExif(image, exif, error)) {
            print(image, lumo::identifyImage(exif, database));
        } else {
            std::fprintf(stderr, "%s: %s\n", qPrintable(image), qPrintable(error));
            exitCode = 1;
        }
    }
    return exitCode;
}
