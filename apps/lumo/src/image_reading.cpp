// SPDX-License-Identifier: Apache-2.0
#include "image_reading.h"

#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/exif/read_exif.h"

namespace lumo::program {
namespace {

const QSet<QString>& imageExtensions()
{
    static const QSet<QString> extensions = {
        "3fr", "arw",  "avif", "bmp", "cr2", "cr3",  "crw",  "dng", "erf", "exv",
        "fff", "heic", "heif", "iiq", "j2k", "jp2",  "jpeg", "jpg", "jxl", "kdc",
        "mef", "mos",  "mrw",  "nef", "nrw", "orf",  "pef",  "png", "raf", "raw",
        "rw2", "rwl",  "sr2",  "srw", "tif", "tiff", "webp", "x3f"};
    return extensions;
}

} // namespace

void readImages(const QStringList& arguments, const ImageRead& read, const PathFailure& failed)
{
    const QStringList files = listFiles(arguments, imageExtensions(), failed);
    unsigned long long done = 0;
    for (const QString& file : files) {
        if (serviceProgress().shouldStop()) {
            failed(file, QStringLiteral("stopped before this file"));
            return;
        }
        ExifInfo exif;
        QString error;
        if (exif::readExif(file, exif, error)) {
            read(file, exif);
        } else {
            failed(file, error);
        }
        serviceProgress().setProgress(
            ++done, static_cast<unsigned long long>(files.size()),
            QStringLiteral("Reading metadata"));
    }
}

} // namespace lumo::program
