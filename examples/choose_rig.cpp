// SPDX-License-Identifier: Apache-2.0
// Finds the multi-camera rig that took images: choose_rig DATA_FOLDER IMAGE...
#include "database.h"

#include <QCoreApplication>
#include <lumo/core/cameraInfo/lumo_camera_db_io.h>
#include <lumo/core/cameraInfo/rig_identification.h>
#include <lumo/core/services/core_services.h>
#include <lumo/exif/read_exif.h>

#include <cstdio>

namespace {

/// \returns whether a rig took the capture
bool print(const lumo::Capture& capture, const lumo::RigIdentification& found)
{
    if (!found.fits) {
        const QString reason =
            found.reasons.isEmpty() ? "no rig has these cameras" : found.reasons.join("; ");
        std::fprintf(stderr, "%s: %s\n", qPrintable(capture.id), qPrintable(reason));
        return false;
    }
    std::printf("%s: %s\n", qPrintable(capture.id), qPrintable(found.rigName));
    for (std::size_t i = 0; i < capture.images.size(); ++i) {
        const auto camera = static_cast<int>(found.assignment[i]);
        std::printf(
            "  %s: camera %d (%s)\n", qPrintable(capture.images[i].path()), camera,
            qPrintable(found.cameraNames[camera]));
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: choose_rig DATA_FOLDER IMAGE...\n", stderr);
        return 2;
    }
    lumo::CoreServices::instance(); // once, before all else

    QString error;
    lumo::CameraModelDb database = databaseIn(arguments[1]);
    if (!lumo::loadCameraDatabases(database, error)) {
        std::fprintf(stderr, "camera database: %s\n", qPrintable(error));
        return 1;
    }
    std::vector<lumo::InputImage> images;
    for (const QString& image : arguments.mid(2)) {
        lumo::ExifInfo exif;
        if (!lumo::exif::readExif(image, exif, error)) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(image), qPrintable(error));
            return 1;
        }
        images.emplace_back(image, exif);
    }
    const std::vector<lumo::Capture> captures = lumo::groupCaptures(images);
    const std::vector<lumo::RigIdentification> found = lumo::identifyRigs(captures, database);
    bool all = true;
    for (std::size_t i = 0; i < captures.size(); ++i) {
        all = print(captures[i], found[i]) && all;
    }
    return all ? 0 : 1;
}
