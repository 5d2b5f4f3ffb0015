// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

#include <vector>

/// One run of the program: what it printed and how it ended.
struct ProgramRun
{
    int exitCode = -1; ///< -1: it crashed or did not start
    QByteArray out;
    QByteArray err;

    /// The lines on the standard output stream, each of which must be a JSON object.
    [[nodiscard]] std::vector<QJsonObject> records() const;
};

/// Runs `lumo` with these arguments, waiting at most a minute.
/// \param output  file that takes the standard output stream instead of the result
ProgramRun runProgram(const QStringList& arguments, const QString& output = {});

/// A path below the sample folder.
QString samplePath(const QString& name);
