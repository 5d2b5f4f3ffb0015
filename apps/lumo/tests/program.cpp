// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include "source_dir.h"

#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

std::vector<QJsonObject> ProgramRun::records() const
{
    std::vector<QJsonObject> result;
    for (const QByteArray& line : out.split('\n')) {
        if (line.isEmpty()) {
            continue;
        }
        const QJsonDocument document = QJsonDocument::fromJson(line);
        EXPECT_TRUE(document.isObject()) << line.toStdString();
        result.push_back(document.object());
    }
    return result;
}

ProgramRun runProgram(const QStringList& arguments, const QString& output)
{
    constexpr int kTimeoutMs = 60000;
    static const QTemporaryDir home; // the user's own data are not for tests
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(output);
    process.start(QStringLiteral(LUMO_PROGRAM), arguments);
    ProgramRun run;
    if (process.waitForFinished(kTimeoutMs) && process.exitStatus() == QProcess::NormalExit) {
        run.exitCode = process.exitCode();
    }
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QString samplePath(const QString& name)
{
    return sourcePath("samples/") + name;
}
