// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include "progress_bar.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace lumo::program {

void sayFailure(const QString& file, const QString& reason)
{
    hideProgressBar();
    // Some reasons name the file themselves.
    const QString name = file + QStringLiteral(": ");
    const QString rest = reason.startsWith(name) ? reason.mid(name.size()) : reason;
    std::fputs((QStringLiteral("lumo: ") + name + rest + QLatin1Char('\n')).toUtf8(), stderr);
}

void sayRemark(const QString& file, const QString& remark)
{
    sayFailure(file, remark);
}

ExitCode failed(const QString& what, const QString& reason)
{
    sayFailure(what, reason);
    return SomethingFailed;
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

} // namespace lumo::program
