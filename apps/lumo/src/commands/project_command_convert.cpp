// SPDX-License-Identifier: Apache-2.0
// lumo project convert.
#include "commands/project_backup.h"
#include "commands/project_command.h"
#include "commands/project_files.h"
#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/core/xml/param_converter.h"
#include "lumo/foundation/file.h"
#include "show/text_table.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <stdexcept>

namespace lumo::program::project {
namespace {

using Kind = ConversionChange::Kind;

/// What is to be done with one file.
struct Job
{
    QString file;
    QString output;
    QString backup; ///< empty: none
};

QString nameOf(Kind kind)
{
    switch (kind) {
    case Kind::Renamed:
        return QStringLiteral("renamed");
    case Kind::Moved:
        return QStringLiteral("moved");
    case Kind::Rewritten:
        return QStringLiteral("rewritten");
    case Kind::Dropped:
        return QStringLiteral("dropped");
    }
    return {};
}

bool isFolder(const QString& path)
{
    return QFileInfo(path).isDir();
}

QString outputFor(const QString& file, const ConvertRequest& request)
{
    if (request.output.isEmpty()) {
        return file;
    }
    return isFolder(request.output) ? file::join(request.output, file::filename(file))
                                    : request.output;
}

/// A file that stays where it is needs no backup.
QString backupFor(
    const QString& file, const QString& output, const ParamConverter& converter,
    const ConvertRequest& request)
{
    if (request.backup == QLatin1String("none") || !isSameFile(file, output)) {
        return {};
    }
    if (request.backup == QLatin1String("auto")) {
        return converter.backupPath();
    }
    return isFolder(request.backup) ? file::join(request.backup, file::filename(file))
                                    : request.backup;
}

void followProgress(ParamConverter& converter)
{
    converter.setStepListener([](int done, int total, const QString& label) {
        if (serviceProgress().shouldStop() && done < total) {
            throw std::runtime_error("stopped before the step " + label.toStdString());
        }
        serviceProgress().setProgress(
            static_cast<unsigned long long>(done), static_cast<unsigned long long>(total), label);
    });
}

QJsonArray toJson(const std::vector<ConversionStepReport>& report)
{
    QJsonArray steps;
    for (const ConversionStepReport& step : report) {
        QJsonArray changes;
        for (const ConversionChange& change : step.changes) {
            changes.append(QJsonObject{
                {"kind", nameOf(change.kind)},
                {"what", change.what},
                {"into", change.into},
                {"line", change.line},
                {"count", change.count}});
        }
        steps.append(QJsonObject{{"step", step.label}, {"changes", changes}});
    }
    return steps;
}

void showReport(const QString& file, const std::vector<ConversionStepReport>& report)
{
    for (const ConversionStepReport& step : report) {
        printText(QStringLiteral("%1: %2\n").arg(file, step.label));
        std::vector<QStringList> rows{{"what is done", "to", "result or reason", "line", "times"}};
        for (const ConversionChange& change : step.changes) {
            rows.push_back(
                {nameOf(change.kind), change.what, change.into, QString::number(change.line),
                 QString::number(change.count)});
        }
        if (rows.size() > 1) {
            printText(formatTable(rows));
        }
    }
}

ExitCode dryRun(ParamConverter& converter, const Job& job, int target, const CommonOptions& options)
{
    QByteArray result;
    QString error;
    if (!job.backup.isEmpty() && !mayBackUp(job.file, job.backup, error)) {
        return failed(job.file, error, options);
    }
    if (!converter.convertInMemory(result, error)) {
        return failed(job.file, error, options);
    }
    QString fault;
    const bool valid = satisfiesSchema(result, target, converter.isTemplate(), fault);
    if (options.json) {
        printJsonLine(
            {{"file", job.file},
             {"output", job.output},
             {"backup", job.backup},
             {"steps", toJson(converter.report())},
             {"valid", valid},
             {"error", fault}});
    } else {
        showReport(job.file, converter.report());
        printText(valid ? QStringLiteral("%1: the result is valid\n").arg(job.file) : QString());
    }
    return valid ? AllDone : failed(job.file, QStringLiteral("the result is not valid: ") + fault);
}

ExitCode run(ParamConverter& converter, const Job& job, const CommonOptions& options)
{
    const QStringList steps = converter.plannedSteps();
    QString error;
    if (!job.backup.isEmpty() && !backUp(job.file, job.backup, error)) {
        return failed(job.file, error, options);
    }
    converter.skipBackup(); // backUp() has made, read back and compared it
    if (!converter.convert(job.output, error)) {
        return failed(job.file, error, options);
    }
    if (options.json) {
        printJsonLine(
            {{"file", job.file},
             {"output", job.output},
             {"backup", job.backup},
             {"steps", QJsonArray::fromStringList(steps)}});
    } else {
        printText(
            QStringLiteral("%1: converted to %2%3\n")
                .arg(
                    job.file, job.output,
                    job.backup.isEmpty() ? QString() : QStringLiteral(", backup: ") + job.backup));
    }
    return AllDone;
}

/// Handles a file that has the target version already. It is copied to the output, so
/// that a batch leaves all files there.
ExitCode nothingToDo(const Job& job, const ConvertRequest& request, const CommonOptions& options)
{
    const bool copied = !request.dryRun && !isSameFile(job.file, job.output);
    QString error;
    if (copied && !file::copy(job.file, job.output, error)) {
        return failed(job.file, error, options);
    }
    const QString output = copied ? job.output : QString();
    if (options.json) {
        printJsonLine(
            {{"file", job.file}, {"output", output}, {"backup", ""}, {"steps", QJsonArray()}});
    } else {
        printText(QStringLiteral("%1: is of this version already%2\n")
                      .arg(job.file, copied ? QStringLiteral(", copied to ") + output : QString()));
    }
    return AllDone;
}

ExitCode convertOne(
    const QString& file, const ConvertRequest& request, const CommonOptions& options)
{
    ParamConverter converter(file, request.target);
    if (converter.biggerVersion()) {
        return failed(
            file,
            QStringLiteral("has format version %1, newer than the requested version %2")
                .arg(converter.kpxVersion())
                .arg(request.target),
            options);
    }
    converter.setKpxBackupPath(QStringLiteral("auto"));
    Job job{file, outputFor(file, request), {}};
    job.backup = backupFor(file, job.output, converter, request);
    if (file::exists(job.output) && !isSameFile(file, job.output)) {
        return failed(
            file, QStringLiteral("the output file %1 exists already").arg(job.output), options);
    }
    if (!converter.needsConversion()) {
        return nothingToDo(job, request, options);
    }
    followProgress(converter);
    return request.dryRun ? dryRun(converter, job, request.target, options)
                          : run(converter, job, options);
}

bool isForOneFile(const QString& path)
{
    return !path.isEmpty() && path != QLatin1String("auto") && path != QLatin1String("none") &&
           !isFolder(path);
}

} // namespace

ExitCode convert(const ConvertRequest& request, const CommonOptions& options)
{
    const bool several =
        request.paths.size() > 1 || (request.paths.size() == 1 && isFolder(request.paths.front()));
    for (const QString& path : {request.output, request.backup}) {
        if (several && isForOneFile(path)) {
            return failed(
                path, QStringLiteral("is not a folder, but several files are to be written"));
        }
    }
    ParamConverter::setTemplatesDataLocation(options.dataDirectory);
    return forEachFile(request.paths, options, [&](const QString& file) {
        return convertOne(file, request, options);
    });
}

} // namespace lumo::program::project
