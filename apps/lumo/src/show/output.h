// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QJsonObject;

namespace lumo::program {

/// The options that all commands share.
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

/// Prints "lumo: FILE: reason" on the standard error stream.
void sayFailure(const QString& file, const QString& reason);

/// Prints "lumo: FILE: note: remark" on the standard error stream: something the user
/// should know although nothing failed.
void sayRemark(const QString& file, const QString& remark);

/// Prints what is wrong with the command line, and where to find help.
void sayUsage(const QString& reason);

/// Prints the failure; returns SomethingFailed.
[[nodiscard]] ExitCode failed(const QString& what, const QString& reason);

/// Prints the failure of a file, with --json also as a record; returns SomethingFailed.
[[nodiscard]] ExitCode failed(
    const QString& file, const QString& reason, const CommonOptions& options);

/// The object as one line on the standard output stream.
void printJsonLine(const QJsonObject& object);

void printText(const QString& text);

/// Flushes the standard output stream at the end of the program. Returns false, and
/// prints a failure, if output was lost.
[[nodiscard]] bool finishOutput();

} // namespace lumo::program
