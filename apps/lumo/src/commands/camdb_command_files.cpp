// SPDX-License-Identifier: Apache-2.0
// lumo camdb: the subcommands that read, write and check files.
#include "commands/camdb_command.h"
#include "input/database.h"
#include "lumo/core/cameraInfo/camera_db_selftest.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/xml/camera_db_converter.h"
#include "lumo/core/xml/conversion_error.h"
#include "lumo/foundation/file.h"

#include <QJsonObject>
#include <QStringList>

#include <stdexcept>

namespace lumo::program::camdb {
namespace {

bool isTextDb(const QString& file)
{
    return file.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive);
}

/// What keeps a document of the current version, or records of it, from being used.
QStringList documentFaults(const QString& file)
{
    cameradb::CameraDBData data;
    QString error;
    return hasDbLastestFormat(file, error) && cameradb::loadDocument(file, data, error)
               ? data.skipped
               : QStringList{error};
}

QStringList textDbFaults(const QString& file)
{
    cameradb::CameraDBData data;
    QString error;
    return cameradb::loadTextDB(file, data, error) ? QStringList() : QStringList{error};
}

} // namespace

ExitCode exportTo(const QString& file, bool internal, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    const bool loaded = loadDatabase(database);
    if (!internal && !loaded) { // nothing may replace a good copy of it
        return failed(file, QStringLiteral("not written: your own database did not load"), options);
    }
    QString error;
    if (!internal && !isTextDb(file)) {
        return CameraDbIo(database).exportUserXML(file, error) ? AllDone
                                                               : failed(file, error, options);
    }
    const cameradb::CameraDBData& data = internal ? database.internalData() : database.userData();
    QString text;
    if (isTextDb(file)) {
        text = cameradb::writeTextDB(data);
    } else if (!cameradb::documentText(database.settings().headerPairs, data, text, error)) {
        return failed(file, error, options);
    }
    if (!file::replaceAtomically(file, text.toUtf8(), error)) {
        return failed(file, error, options);
    }
    return loaded ? AllDone : SomethingFailed;
}

ExitCode validate(const QString& file, const CommonOptions& options)
{
    const QStringList faults = isTextDb(file) ? textDbFaults(file) : documentFaults(file);
    if (options.json) {
        printJsonLine(
            {{"file", file},
             {"valid", faults.isEmpty()},
             {"error", faults.join(QStringLiteral("; "))}});
    }
    for (const QString& fault : faults) {
        sayFailure(file, fault);
    }
    return faults.isEmpty() ? AllDone : SomethingFailed;
}

ExitCode convert(const QString& input, const QString& output, const CommonOptions& options)
{
    try {
        QString error;
        return CameraDbConverter(input).convert(output, error) ? AllDone
                                                               : failed(input, error, options);
    } catch (const std::runtime_error& fault) {
        return failed(input, faultText(fault), options);
    }
}

ExitCode rebuild(const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    // First the user's own: without it the folder that the file is in may not be made.
    const bool loaded = loadDatabase(database);
    const QString file = database.settings().internalDBFileName(cameradb::kCurrentVersion);
    QString error;
    if (!loaded && !file::exists(file::dirname(file))) { // which has been printed with its reason
        return SomethingFailed;
    }
    if (!CameraDbIo(database).loadAndSaveInternalTextDB(QString(), error)) {
        return failed(file, error, options);
    }
    return loaded ? AllDone : SomethingFailed;
}

ExitCode selftest(const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    ExitCode exitCode = loadDatabase(database) ? AllDone : SomethingFailed;
    std::size_t doubts = 0;
    for (const DatabaseFinding& finding : checkInternalDatabase(database)) {
        if (finding.fault) {
            sayFailure(finding.entry, finding.text);
            exitCode = SomethingFailed;
        } else {
            ++doubts;
        }
        if (options.json) {
            printJsonLine(
                {{"entry", finding.entry}, {"text", finding.text}, {"fault", finding.fault}});
        } else if (!finding.fault) {
            printText(QStringLiteral("doubtful: %1: %2\n").arg(finding.entry, finding.text));
        }
    }
    if (!options.json) {
        printText(QStringLiteral("%1 cameras, %2 rigs, %3 mappings; doubtful: %4\n")
                      .arg(database.internalData().cameras.size())
                      .arg(database.internalData().rigs.size())
                      .arg(database.internalData().mappings.size())
                      .arg(doubts));
    }
    return exitCode;
}

} // namespace lumo::program::camdb
