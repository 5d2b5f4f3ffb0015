// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/specificSensor/sequoia_file.h"

#include "lumo/core/specificSensor/sequoia.h"
#include "lumo/foundation/file.h"
#include "specificSensor/tiff_rows.h"

#include <QFileInfo>

namespace lumo::sequoia {
namespace {

constexpr qint64 kMaxFileBytes = 256LL << 20;

} // namespace

bool writeWithoutDebugLines(const QString& source, const QString& target, QString& error)
{
    constexpr RowRange kPicture = {kFirstUsableRow, kUsableHeight};
    QByteArray content;
    return file::read(source, kMaxFileBytes, content, error) &&
           cutTiffRows(content, kRawHeight, kPicture, error) &&
           file::writeNew(target, content, QFileInfo(source).permissions(), error);
}

} // namespace lumo::sequoia
