// SPDX-License-Identifier: Apache-2.0
#include "image_reading.h"

#include "interrupt.h"
#include "lumo/exif/read_exif.h"
#include "progress_bar.h"

namespace lumo::program {

void readImages(const QStringList& arguments, const ImageRead& read, const PathFailure& failed)
{
    const QStringList files = listImageFiles(arguments, failed);
    ProgressBar progress(
        QStringLiteral("Reading metadata"), static_cast<std::size_t>(files.size()));
    for (const QString& file : files) {
        if (interrupted()) {
            progress.clear();
            failed(file, QStringLiteral("stopped before this file"));
            return;
        }
        ExifInfo exif;
        QString error;
        if (exif::readExif(file, exif, error)) {
            read(file, exif);
        } else {
            progress.clear();
            failed(file, error);
        }
        progress.advance();
    }
}

} // namespace lumo::program
