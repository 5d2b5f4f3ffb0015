// SPDX-License-Identifier: Apache-2.0
#include "image_files.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace lumo::program {
namespace {

bool isImageName(const QFileInfo& file)
{
    static const QSet<QString> extensions = {
        "3fr", "arw",  "avif", "bmp", "cr2", "cr3",  "crw",  "dng", "erf", "exv",
        "fff", "heic", "heif", "iiq", "j2k", "jp2",  "jpeg", "jpg", "jxl", "kdc",
        "mef", "mos",  "mrw",  "nef", "nrw", "orf",  "pef",  "png", "raf", "raw",
        "rw2", "rwl",  "sr2",  "srw", "tif", "tiff", "webp", "x3f"};
    return extensions.contains(file.suffix().toLower());
}

void listFolder(const QString& folder, QStringList& files, const PathFailure& failed)
{
    const QDir directory(folder);
    if (!QFileInfo(folder).isReadable() || !QFileInfo(folder).isExecutable()) {
        failed(folder, QStringLiteral("The folder cannot be read"));
        return;
    }
    const QFileInfoList entries =
        directory.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (entry.isDir()) {
            if (!entry.isSymLink()) {
                listFolder(entry.filePath(), files, failed);
            }
        } else if (isImageName(entry)) {
            files.append(entry.filePath());
        }
    }
}

} // namespace

QStringList listImageFiles(const QStringList& arguments, const PathFailure& failed)
{
    QStringList files;
    for (const QString& argument : arguments) {
        const QFileInfo path(argument);
        if (!path.exists()) {
            failed(argument, QStringLiteral("No such file or folder"));
        } else if (path.isDir()) {
            listFolder(argument, files, failed);
        } else {
            files.append(argument);
        }
    }
    return files;
}

} // namespace lumo::program
