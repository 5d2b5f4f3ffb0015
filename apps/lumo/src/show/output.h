// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QJsonObject;

namespace lumo::program {

/// What all commands are told on the command line.
struct CommonOptions
{
    bool json = false;
    QString dataDirectory; ///< of the user: databases and settings
};

/// Exit codes of the program.
enum ExitCode : int {
    AllDone = 0,
    SomethingFailed = 1,
    WrongUsage = 2,
};

/// "lumo: FILE: reason" on the standard error stream.
void sayFailure(const QString& file, const QString& reason);

/// "lumo: FILE: note: remark": what the user should know though nothing failed.
void sayRemark(const QString& file, const QString& remark);

/// What is wrong with the command line, and where help is.
void sayUsage(const QString& reason);

/// Says a failure and is its exit code.
[[nodiscard]] ExitCode failed(const QString& what, const QString& reason);

/// The same of a file; with --json there is a record of it, too.
[[nodiscard]] ExitCode failed(
    const QString& file, const QString& reason, const CommonOptions& options);

/// The object as one line on the standard output stream.
void printJsonLine(const QJsonObject& object);

void printText(const QString& text);

/// Whether all that was printed has reached the standard output stream, at the end.
/// What did not is said.
[[nodiscard]] bool finishOutput();

} // namespace lumo::program
