// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/specificSensor/sequoia_file.h"

#include "lumo/core/specificSensor/sequoia.h"
#include "lumo/foundation/file.h"
#include "specificSensor/tiff_rows.h"

#include <QFile>
#include <QFileInfo>

namespace lumo::sequoia {
namespace {

constexpr qint64 kMaxFileBytes = 256LL << 20;

bool readWhole(const QString& path, QByteArray& content, QString& error)
{
    QFile file(path);
    if (!QFileInfo(path).isFile()) { // reading from a pipe or device might never end
        error = QStringLiteral("no such file");
    } else if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString().simplified();
    } else if (file.size() > kMaxFileBytes) {
        error = QStringLiteral("larger than %1 MiB").arg(kMaxFileBytes >> 20);
    } else {
        content = file.readAll();
        if (file.error() == QFileDevice::NoError) {
            return true;
        }
        error = file.errorString().simplified();
    }
    return false;
}

} // namespace

bool writeWithoutDebugLines(const QString& source, const QString& target, QString& error)
{
    constexpr RowRange kPicture = {kFirstUsableRow, kUsableHeight};
    QByteArray content;
    return readWhole(source, content, error) && cutTiffRows(content, kRawHeight, kPicture, error) &&
           file::writeNew(target, content, QFileInfo(source).permissions(), error);
}

} // namespace lumo::sequoia
