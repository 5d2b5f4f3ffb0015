// SPDX-License-Identifier: Apache-2.0
// readTextDB(): from rows to tables.
#include "cameraInfo/textdb/text_db_builder.h"
#include "cameraInfo/textdb/text_db_rows.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/foundation/text.h"

#include <QSet>

#include <array>
#include <utility>

namespace lumo::cameradb {
namespace {

using namespace textdb;

/// The first line: title and version.
bool readTitle(RowSource& source)
{
    if (!source.next() || source.row().front().text != kTitle || source.row().size() < 2) {
        return source.fail(
            {1, 1}, QStringLiteral("the first line is not '%1,%2'").arg(kTitle).arg(kFormVersion));
    }
    const csv::Cell& cell = source.row()[1];
    bool ok = false;
    const int version = text::fromString<int>(cell.text, &ok);
    if (!ok || version < 1) {
        return source.fail(
            cell.place,
            cellFault(QStringLiteral("version"), cell.text, QStringLiteral("is not a version")));
    }
    return version <= kFormVersion ||
           source.fail(
               cell.place, QStringLiteral("version %1 is higher than %2, the current one")
                               .arg(version)
                               .arg(kFormVersion));
}

/// Reads a section into a builder.
using ReadSection = bool (*)(RowSource&, TablesBuilder&);

template <typename Row, const std::vector<Column<Row>>& (*columns)()>
bool readSection(RowSource& source, TablesBuilder& builder)
{
    return readRows(source, columns(), [&source, &builder](Row& row) {
        builder.setPlace(source.place());
        const Reason reason = builder.add(row);
        return !reason || source.fail(source.place(), *reason);
    });
}

constexpr std::array<std::pair<const char*, ReadSection>, 8> kSections{{
    {"[cameras]", readSection<CameraModelFromDB, cameraColumns>},
    {"[bands]", readSection<BandRow, bandColumns>},
    {"[vignetting]", readSection<VignettingRow, vignettingColumns>},
    {"[pixelValues]", readSection<PixelValuesRow, pixelValuesColumns>},
    {"[mappings]", readSection<MappingRow, mappingColumns>},
    {"[rigs]", readSection<RigModel, rigColumns>},
    {"[rigCameras]", readSection<RigCameraRow, rigCameraColumns>},
    {"[rigBands]", readSection<RigBandRow, rigBandColumns>},
}};

ReadSection sectionNamed(const QString& name)
{
    for (const auto& [known, read] : kSections) {
        if (name == QLatin1String(known)) {
            return read;
        }
    }
    return nullptr;
}

/// Reads from the current row, a section's name, to the end mark.
bool readSections(RowSource& source, TablesBuilder& builder)
{
    QSet<QString> seen;
    while (source.atSection() && source.row().front().text != kEndMark) {
        const csv::Cell name = source.row().front();
        const ReadSection read = sectionNamed(name.text);
        if (read == nullptr) {
            return source.fail(name.place, QStringLiteral("unknown section '%1'").arg(name.text));
        }
        if (seen.contains(name.text)) {
            return source.fail(
                name.place, QStringLiteral("section '%1' occurs twice").arg(name.text));
        }
        seen.insert(name.text);
        if (!read(source, builder)) {
            return false;
        }
        if (source.atEnd()) {
            return source.fail(
                source.place(),
                QStringLiteral("the last line, '%1', is missing: the text was cut off")
                    .arg(kEndMark));
        }
    }
    return true;
}

bool readAll(RowSource& source, TablesBuilder& builder)
{
    if (!readTitle(source)) {
        return false;
    }
    if (!source.next()) {
        return source.fail(
            source.place(),
            QStringLiteral("the last line, '%1', is missing: the text was cut off").arg(kEndMark));
    }
    if (!source.atSection()) {
        return source.fail(source.place(), QStringLiteral("a row outside of any section"));
    }
    if (!readSections(source, builder)) {
        return false;
    }
    if (source.next()) {
        return source.fail(source.place(), QStringLiteral("a row after '%1'").arg(kEndMark));
    }
    return !source.failed();
}

} // namespace

bool readTextDB(const QString& text, CameraDBData& data, QString& error)
{
    RowSource source(text);
    TablesBuilder builder;
    csv::Fault fault;
    if (!readAll(source, builder)) {
        error = source.fault().toString();
        return false;
    }
    if (!builder.finish(fault)) {
        error = fault.toString();
        return false;
    }
    data = builder.takeData();
    return true;
}

} // namespace lumo::cameradb
