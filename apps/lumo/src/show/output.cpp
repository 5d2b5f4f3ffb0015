// SPDX-License-Identifier: Apache-2.0
#include "show/output.h"

#include "lumo/foundation/text.h"
#include "show/progress_bar.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace lumo::program {

void sayFailure(const QString& file, const QString& reason)
{
    hideProgressBar();
    // Some reasons name the file themselves.
    const QString name = file + QStringLiteral(": ");
    const QString rest = text::withoutPrefix(reason, name);
    std::fputs((QStringLiteral("lumo: ") + name + rest + QLatin1Char('\n')).toUtf8(), stderr);
}

void sayRemark(const QString& file, const QString& remark)
{
    sayFailure(file, QStringLiteral("note: ") + remark);
}

void sayUsage(const QString& reason)
{
    std::fputs(
        (QStringLiteral("lumo: ") + reason + QStringLiteral("\nSee lumo --help\n")).toUtf8(),
        stderr);
}

ExitCode failed(const QString& what, const QString& reason)
{
    sayFailure(what, reason);
    return SomethingFailed;
}

ExitCode failed(const QString& file, const QString& reason, const CommonOptions& options)
{
    if (options.json) {
        printJsonLine({{"file", file}, {"error", reason}});
    }
    return failed(file, reason);
}

void printJsonLine(const QJsonObject& object)
{
    const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    hideProgressBar();
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

void printText(const QString& text)
{
    hideProgressBar();
    std::fputs(text.toUtf8().constData(), stdout);
}

bool finishOutput()
{
    const bool flushed = std::fflush(stdout) == 0;
    const QString reason = flushed ? QString() : QString::fromLocal8Bit(std::strerror(errno));
    if (flushed && std::ferror(stdout) == 0) {
        return true;
    }
    sayFailure(
        QStringLiteral("standard output"),
        reason.isEmpty() ? QStringLiteral("cannot be written") : reason);
    return false;
}

} // namespace lumo::program
