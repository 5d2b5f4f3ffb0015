// SPDX-License-Identifier: Apache-2.0
#include "input/image_reading.h"

#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/exif/read_exif_files.h"
#include "lumo/foundation/system_limits.h"
#include "show/output.h"

#include <QFileInfo>
#include <QSet>

namespace lumo::program {
namespace {

bool isImageName(const QString& name)
{
    static const QSet<QString> extensions = {
        "3fr", "arw",  "avif", "bmp", "cr2", "cr3",  "crw", "dcr",  "dng",  "erf", "exv",  "fff",
        "gpr", "heic", "heif", "hif", "iiq", "insp", "j2k", "jfif", "jp2",  "jpe", "jpeg", "jpg",
        "jxl", "kdc",  "mef",  "mos", "mpo", "mrw",  "nef", "nrw",  "orf",  "pef", "png",  "raf",
        "raw", "rw2",  "rwl",  "sr2", "srf", "srw",  "tif", "tiff", "webp", "x3f"};
    // On memory cards macOS keeps its own notes on a file in "._" and its name.
    return extensions.contains(QFileInfo(name).suffix().toLower()) &&
           !name.startsWith(QLatin1String("._"));
}

} // namespace

void readImages(const QStringList& arguments, const ImageRead& read, const PathFailure& failed)
{
    const QStringList files = listFiles(arguments, isImageName, failed);
    unsigned long long done = 0;
    const auto take = [&](const exif::FileMetadata& file) {
        if (serviceProgress().shouldStop()) {
            failed(file.path, QStringLiteral("stopped before this file"));
            return false;
        }
        for (const QString& note : file.notes) {
            sayRemark(file.path, note);
        }
        if (file.error.isEmpty()) {
            read(file.path, file.exif);
        } else {
            failed(file.path, file.error);
        }
        serviceProgress().setProgress(
            ++done, static_cast<unsigned long long>(files.size()),
            QStringLiteral("Reading metadata"));
        return true;
    };
    exif::readExifFiles(files, system::cpuLimit().cpus, take);
}

} // namespace lumo::program
