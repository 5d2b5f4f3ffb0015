// SPDX-License-Identifier: Apache-2.0
// lumo project info and validate.
#include "commands/project_command.h"
#include "commands/project_files.h"
#include "input/file_listing.h"
#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/core/xml/conversion_error.h"
#include "lumo/core/xml/lumo_xml_validator.h"
#include "lumo/core/xml/param_converter.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/system.h"
#include "lumo/foundation/text.h"
#include "show/text_table.h"

#include <QBuffer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include <stdexcept>

namespace lumo::program::project {
namespace {

constexpr const char* kSchemasSince = "2.1"; ///< product version

QString kindOf(const ParamConverter& converter)
{
    return converter.isTemplate() ? QStringLiteral("template") : QStringLiteral("project");
}

bool isLegacy(const ParamConverter& converter)
{
    return text::versionSmallerThan(converter.getProjectVersion(), QLatin1String(kSchemasSince));
}

/// Backups that a conversion in place has left beside the project are no projects of
/// their own; given by name they are files like others.
bool isProjectName(const QString& name)
{
    static const QRegularExpression backup(QStringLiteral("_backup_[0-9._]+\\.kpx$"));
    return (name.endsWith(QLatin1String(".kpx"), Qt::CaseInsensitive) &&
            !backup.match(name).hasMatch()) ||
           name.endsWith(QLatin1String(".tmpl"), Qt::CaseInsensitive);
}

ExitCode validateOne(const QString& file, const CommonOptions& options)
{
    const ParamConverter converter(file, kpx::kCurrentVersion);
    QFile input(file);
    QString error;
    bool valid = false;
    if (isLegacy(converter)) {
        error = QStringLiteral("product version %1 has no schema: convert the file first")
                    .arg(converter.getProjectVersion());
    } else if (!input.open(QIODevice::ReadOnly)) {
        error = input.errorString();
    } else {
        valid =
            satisfiesSchema(input.readAll(), converter.kpxVersion(), converter.isTemplate(), error);
    }
    if (options.json) {
        printJsonLine(
            {{"file", file},
             {"kpxVersion", converter.kpxVersion()},
             {"valid", valid},
             {"error", error}});
    }
    return valid ? AllDone : failed(file, error);
}

} // namespace

ExitCode forEachFile(
    const QStringList& paths, const CommonOptions& options,
    const std::function<ExitCode(const QString& file)>& action)
{
    ExitCode exitCode = AllDone;
    const PathFailure fail = [&](const QString& file, const QString& reason) {
        if (options.json) {
            printJsonLine({{"file", file}, {"error", reason}});
        }
        exitCode = failed(file, reason);
    };
    for (const QString& file : listFiles(paths, isProjectName, fail)) {
        if (serviceProgress().shouldStop()) {
            fail(file, QStringLiteral("stopped before this file"));
            break;
        }
        try {
            if (action(file) != AllDone) {
                exitCode = SomethingFailed;
            }
        } catch (const std::runtime_error& fault) {
            fail(file, faultText(fault));
        }
    }
    return exitCode;
}

bool satisfiesSchema(const QByteArray& document, int version, bool isTemplate, QString& error)
{
    const QString schema = file::join(
        system::applicationDirectory(),
        QStringLiteral("resources/xsd/%1/%2.xsd")
            .arg(version)
            .arg(isTemplate ? QStringLiteral("template") : QStringLiteral("lumo")));
    xml::XmlValidator validator;
    if (!validator.loadXsd(schema)) {
        error = QStringLiteral("the schema %1 cannot be loaded").arg(schema);
        return false;
    }
    QBuffer device;
    device.setData(document);
    return device.open(QIODevice::ReadOnly) && validator.validateXml(device, error);
}

ExitCode info(const QStringList& paths, const CommonOptions& options)
{
    std::vector<QStringList> rows{{"file", "kind", "product", "format", "to be done"}};
    const ExitCode exitCode = forEachFile(paths, options, [&](const QString& file) {
        const ParamConverter converter(file, kpx::kCurrentVersion);
        const QStringList steps = converter.plannedSteps();
        if (options.json) {
            printJsonLine(
                {{"file", file},
                 {"kind", kindOf(converter)},
                 {"projectVersion", converter.getProjectVersion()},
                 {"kpxVersion", converter.kpxVersion()},
                 {"steps", QJsonArray::fromStringList(steps)},
                 {"newer", converter.biggerVersion()}});
            return AllDone;
        }
        QString toBeDone = QStringLiteral("nothing");
        if (converter.biggerVersion()) {
            toBeDone = QStringLiteral("newer than %1, the newest version that this program knows")
                           .arg(kpx::kCurrentVersion);
        } else if (!steps.isEmpty()) {
            toBeDone = QStringLiteral("steps to version %1: %2")
                           .arg(kpx::kCurrentVersion)
                           .arg(steps.size());
        }
        rows.push_back(
            {file, kindOf(converter), converter.getProjectVersion(),
             isLegacy(converter) ? QStringLiteral("-") : QString::number(converter.kpxVersion()),
             toBeDone});
        return AllDone;
    });
    if (!options.json && rows.size() > 1) {
        printText(formatTable(rows));
    }
    return exitCode;
}

ExitCode validate(const QStringList& paths, const CommonOptions& options)
{
    return forEachFile(
        paths, options, [&](const QString& file) { return validateOne(file, options); });
}

} // namespace lumo::program::project
