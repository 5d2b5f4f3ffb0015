// SPDX-License-Identifier: Apache-2.0
#include "file_listing.h"

#include <QDir>
#include <QFileInfo>

namespace lumo::program {
namespace {

void listFolder(
    const QString& folder, const QSet<QString>& extensions, QStringList& files,
    const PathFailure& failed)
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
                listFolder(entry.filePath(), extensions, files, failed);
            }
        } else if (extensions.contains(entry.suffix().toLower())) {
            files.append(entry.filePath());
        }
    }
}

} // namespace

QStringList listFiles(
    const QStringList& arguments, const QSet<QString>& extensions, const PathFailure& failed)
{
    QStringList files;
    for (const QString& argument : arguments) {
        const QFileInfo path(argument);
        if (!path.exists()) {
            failed(argument, QStringLiteral("No such file or folder"));
        } else if (path.isDir()) {
            listFolder(argument, extensions, files, failed);
        } else {
            files.append(argument);
        }
    }
    return files;
}

} // namespace lumo::program
