// SPDX-License-Identifier: Apache-2.0
#include "commands/project_backup.h"

#include "lumo/foundation/file.h"

#include <QFile>
#include <QFileInfo>

namespace lumo::program {
namespace {

/// Block by block: projects are large.
bool sameContent(const QString& one, const QString& other, bool& same, QString& error)
{
    constexpr qint64 kBlock = 1 << 20;
    QFile first(one);
    QFile second(other);
    for (QFile* file : {&first, &second}) {
        if (!file->open(QIODevice::ReadOnly)) {
            error = QStringLiteral("%1: %2").arg(file->fileName(), file->errorString());
            return false;
        }
    }
    QByteArray block;
    do {
        block = first.read(kBlock);
        same = block == second.read(kBlock);
    } while (same && !block.isEmpty());
    if (first.error() != QFileDevice::NoError || second.error() != QFileDevice::NoError) {
        error = QStringLiteral("%1 could not be compared with %2").arg(other, one);
        return false;
    }
    return true;
}

bool copyWithFolder(const QString& file, const QString& target, QString& error)
{
    const QString folder = file::dirname(target);
    if (!file::mkdir(folder)) {
        error = folder + QStringLiteral(": the folder cannot be made");
        return false;
    }
    return file::copy(file, target, error);
}

} // namespace

bool isSameFile(const QString& one, const QString& other)
{
    return QFileInfo(one).canonicalFilePath() == QFileInfo(other).canonicalFilePath();
}

bool mayBackUp(const QString& file, const QString& backup, QString& error)
{
    if (!file::exists(backup)) {
        return true;
    }
    if (isSameFile(file, backup)) {
        error = QStringLiteral("the backup %1 would be the file itself").arg(backup);
        return false;
    }
    bool same = false;
    if (!sameContent(file, backup, same, error)) {
        return false;
    }
    if (!same) {
        error =
            QStringLiteral("a different backup exists at %1: choose another place with --backup")
                .arg(backup);
    }
    return same;
}

bool backUp(const QString& file, const QString& backup, QString& error)
{
    if (!mayBackUp(file, backup, error)) {
        return false;
    }
    if (file::exists(backup)) {
        return true;
    }
    QString reason;
    if (!copyWithFolder(file, backup, reason)) {
        error = QStringLiteral("the backup cannot be made: ") + reason;
        return false;
    }
    bool same = false;
    if (!sameContent(file, backup, same, error)) {
        return false;
    }
    if (!same) {
        error = QStringLiteral("the backup %1 differs from the file that was copied").arg(backup);
    }
    return same;
}

} // namespace lumo::program
