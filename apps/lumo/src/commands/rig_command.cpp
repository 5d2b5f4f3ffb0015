// SPDX-License-Identifier: Apache-2.0
#include "commands/rig_command.h"

#include "input/database.h"
#include "input/image_reading.h"
#include "lumo/core/cameraInfo/rig_from_captures.h"
#include "lumo/core/cameraInfo/rig_identification.h"
#include "show/text_table.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <map>
#include <utility>
#include <vector>

namespace lumo::program {
namespace {

/// One capture and its identification.
struct Row
{
    const Capture& capture;
    const RigIdentification& found;
};

QString fileName(const Capture& capture, std::size_t image)
{
    return QFileInfo(capture.images[image].path()).fileName();
}

QString sourceText(const RigIdentification& found)
{
    return found.source ? text::toString(*found.source) : QStringLiteral("none");
}

QString cameraText(const RigIdentification& found, std::size_t image)
{
    const std::size_t camera = found.assignment[image];
    return camera == npos ? QString() : found.cameraNames[static_cast<int>(camera)];
}

QJsonObject toJson(const Row& row)
{
    const auto& [capture, found] = row;
    QJsonArray files;
    QJsonArray serialNumbers;
    QJsonArray assignment;
    QJsonArray cameras;
    for (std::size_t i = 0; i < capture.images.size(); ++i) {
        files.append(capture.images[i].path());
        serialNumbers.append(capture.images[i].serialNumber());
        if (found.fits) {
            assignment.append(static_cast<int>(found.assignment[i]));
            cameras.append(cameraText(found, i));
        }
    }
    QJsonObject record;
    record["capture"] = capture.id;
    record["files"] = files;
    record["serialNumbers"] = serialNumbers;
    record["rig"] = found.fits ? found.rigName : QString();
    record["source"] = sourceText(found);
    record["score"] = found.score;
    record["assignment"] = assignment;
    record["cameras"] = cameras;
    record["serialMatched"] = found.serialMatched;
    if (!found.fits) {
        record["reason"] = found.reasons.join(QStringLiteral(" | "));
    }
    return record;
}

/// The file of each camera of the rig; empty where there is none.
QStringList filesByCamera(const Row& row)
{
    QStringList files;
    for (int i = 0; i < row.found.cameraNames.size(); ++i) {
        files.append(QString());
    }
    for (std::size_t i = 0; i < row.capture.images.size(); ++i) {
        const std::size_t camera = row.found.assignment[i];
        if (camera != npos) {
            files[static_cast<int>(camera)] = fileName(row.capture, i);
        }
    }
    return files;
}

QJsonObject toMatrixJson(const Row& row)
{
    QJsonObject cameras;
    const QStringList files = filesByCamera(row);
    for (int i = 0; i < files.size(); ++i) {
        const QString& name = row.found.cameraNames[i];
        cameras[name] = files[i].isEmpty() ? QJsonValue() : QJsonValue(files[i]);
    }
    return {
        {"capture", row.capture.id},
        {"rig", row.found.rigName},
        {"complete", row.found.fits},
        {"cameras", cameras}};
}

/// Prints one block of rows per capture. Captures of cameras that no rig has are only
/// counted: in a mixed folder they would bury the others.
void printTable(const std::vector<Row>& rows)
{
    const QString sameCapture = QStringLiteral(" ");
    std::vector<QStringList> table{{"capture", "rig", "source", "score", "camera", "file"}};
    std::size_t others = 0;
    for (const Row& row : rows) {
        if (row.found.rigName.isEmpty()) {
            ++others;
            continue;
        }
        QStringList cells{
            row.capture.id, row.found.fits ? row.found.rigName : QStringLiteral("none"),
            sourceText(row.found), row.found.fits ? QString::number(row.found.score) : QString()};
        for (std::size_t i = 0; i < row.capture.images.size(); ++i) {
            table.push_back(
                cells + QStringList{cameraText(row.found, i), fileName(row.capture, i)});
            cells = QStringList{sameCapture, sameCapture, sameCapture, sameCapture};
        }
    }
    if (table.size() > 1) {
        printText(formatTable(table));
    }
    if (others > 0) {
        printText(QStringLiteral("Captures of cameras that no rig has: %1\n").arg(others));
    }
}

/// One table for each rig: its captures against its cameras.
void printMatrices(const std::vector<Row>& rows)
{
    std::map<QString, std::vector<QStringList>> tables;
    for (const Row& row : rows) {
        if (row.found.rigName.isEmpty()) {
            continue;
        }
        std::vector<QStringList>& table = tables[row.found.rigName];
        if (table.empty()) {
            table.push_back(QStringList{row.found.rigName} + row.found.cameraNames);
        }
        table.push_back(QStringList{row.capture.id} + filesByCamera(row));
    }
    for (const auto& [rig, table] : tables) {
        printText(formatTable(table) + QLatin1Char('\n'));
    }
}

/// The serial numbers of a capture's images, each once.
QString bodyText(const Capture& capture)
{
    QStringList serialNumbers;
    for (const InputImage& image : capture.images) {
        if (!image.serialNumber().isEmpty()) {
            serialNumbers.append(image.serialNumber());
        }
    }
    serialNumbers.removeDuplicates();
    serialNumbers.sort();
    return serialNumbers.join(QLatin1Char('+'));
}

/// Prints the bodies of each rig of which the images show several.
void printBodies(const std::vector<Row>& rows)
{
    std::map<QString, std::map<QString, int>> bodies;
    for (const Row& row : rows) {
        const QString body = bodyText(row.capture);
        if (!row.found.rigName.isEmpty() && !body.isEmpty()) {
            ++bodies[row.found.rigName][body];
        }
    }
    for (const auto& [rig, captures] : bodies) {
        if (captures.size() < 2) {
            continue;
        }
        QStringList parts;
        for (const auto& [body, count] : captures) {
            parts.append(QStringLiteral("%1 (captures: %2)").arg(body).arg(count));
        }
        printText(QStringLiteral("Bodies of %1: %2\n").arg(rig, parts.join(QStringLiteral(", "))));
    }
}

void print(const std::vector<Row>& rows, bool matrix, bool json)
{
    if (json) {
        for (const Row& row : rows) {
            printJsonLine(matrix ? toMatrixJson(row) : toJson(row));
        }
    } else if (matrix) {
        printMatrices(rows);
    } else {
        printTable(rows);
        printBodies(rows);
    }
}

/// Prints a failure for each capture that has cameras of a rig but does not fit it. The
/// other captures were taken by cameras that no rig has, which is no failure.
/// \returns whether there was no failure
bool sayMismatches(const std::vector<Row>& rows)
{
    bool none = true;
    for (const auto& [capture, found] : rows) {
        if (!found.fits && !found.rigName.isEmpty()) {
            sayFailure(capture.id, found.reasons.join(QStringLiteral(" | ")));
            none = false;
        }
    }
    return none;
}

std::vector<Capture> readCaptures(
    const QStringList& paths, const CommonOptions& options, ExitCode& exitCode)
{
    std::vector<InputImage> images;
    readImages(
        paths,
        [&images](const QString& file, const ExifInfo& exif) { images.emplace_back(file, exif); },
        [&exitCode, &options](const QString& path, const QString& reason) {
            exitCode = failed(path, reason, options);
        });
    return groupCaptures(images);
}

} // namespace

ExitCode identifyRigs(const QStringList& paths, bool matrix, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    ExitCode exitCode = loadDatabase(database) ? AllDone : SomethingFailed;
    const std::vector<Capture> captures = readCaptures(paths, options, exitCode);
    const std::vector<RigIdentification> found = lumo::identifyRigs(captures, database);
    std::vector<Row> rows;
    for (std::size_t i = 0; i < captures.size(); ++i) {
        rows.push_back({captures[i], found[i]});
    }
    print(rows, matrix, options.json);
    return sayMismatches(rows) ? exitCode : SomethingFailed;
}

ExitCode saveRig(
    const QStringList& paths, const QString& name, bool overwrite, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    RigModel held;
    const bool known = database.findRigModel(name, held, false);
    if (known && !overwrite) {
        return failed(name, QStringLiteral("exists already: replace it with --overwrite"), options);
    }
    ExitCode exitCode = AllDone;
    const std::vector<Capture> captures = readCaptures(paths, options, exitCode);
    if (exitCode != AllDone) { // a rig of what could be read might lack a camera
        return failed(name, QStringLiteral("not saved: not all images were read"), options);
    }
    RigModel rig;
    QString error;
    if (!makeRigFromCaptures(captures, database, name, rig, error)) {
        return failed(name, error, options);
    }
    const bool asItWas = known && held.equal(rig);
    if (!asItWas && !database.setRigModel(rig, true)) {
        return failed(name, QStringLiteral("could not be saved"), options);
    }
    if (options.json) {
        printJsonLine({{"rig", rig.name}, {"cameras", static_cast<int>(rig.cameraCount())}});
    } else {
        printText(
            QStringLiteral("%1: %2 cameras\n").arg(rig.name, QString::number(rig.cameraCount())));
    }
    return AllDone;
}

} // namespace lumo::program
