// SPDX-License-Identifier: Apache-2.0
#include "commands/resources_command.h"

#include "lumo/core/common/cuda.h"
#include "lumo/core/common/processing_resources.h"
#include "lumo/foundation/system_limits.h"
#include "show/text_table.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace lumo::program {
namespace {

QString sourceText(system::LimitSource source)
{
    switch (source) {
    case system::LimitSource::Host:
        return QStringLiteral("host");
    case system::LimitSource::Affinity:
        return QStringLiteral("affinity");
    case system::LimitSource::Cgroup:
        return QStringLiteral("cgroup");
    }
    return {};
}

QString sourceText(system::LimitSource source, bool byUser)
{
    return byUser ? QStringLiteral("user") : sourceText(source);
}

/// In MB of 2^20 bytes, rounded down.
qint64 wholeMB(std::uint64_t bytes)
{
    constexpr std::uint64_t kBytesPerMB = 1024 * 1024;
    return static_cast<qint64>(bytes / kBytesPerMB);
}

/// Sets what the user asks for.
/// \param[out] what, error  what of it cannot be, and why
bool apply(
    const ResourceRequest& request, ProcessingResources& resources, QString& what, QString& error)
{
    for (const int gpu : request.disabledGpus) {
        if (static_cast<std::size_t>(gpu) >= resources.gpuCount()) {
            what = QStringLiteral("--disable-gpu %1").arg(gpu);
            error = resources.gpuCount() == 0
                        ? QString::fromStdString(cuda::unavailableReason())
                        : QStringLiteral("the last GPU is %1").arg(resources.gpuCount() - 1);
            return false;
        }
    }
    // Only after all numbers were checked: a refused request changes nothing.
    for (const int gpu : request.disabledGpus) {
        resources.setGpuEnabled(static_cast<std::size_t>(gpu), false);
    }
    if (request.maxCPUs) {
        resources.setMaxCPUs(*request.maxCPUs);
    }
    if (request.maxRamGB) {
        resources.setMaxRAMGB(*request.maxRamGB);
    }
    return true;
}

/// Why a GPU is not enabled.
QString disabledReason(int gpu, bool byUser)
{
    if (byUser) {
        return QStringLiteral("--disable-gpu");
    }
    if (cuda::getGlobalMemory(gpu) <= 0.0F) {
        return QStringLiteral("the driver does not report its memory");
    }
    if (!cuda::isDeviceRecommended(gpu)) {
        return QStringLiteral("less than %1 MB").arg(double{cuda::kRecommendedMemoryMB});
    }
    return QStringLiteral("only the first 64 GPUs can be enabled");
}

QJsonObject gpuRecord(
    std::size_t index, const ProcessingResources& resources, const ResourceRequest& request)
{
    const int gpu = static_cast<int>(index);
    const std::vector<int>& disabled = request.disabledGpus;
    const bool byUser = std::find(disabled.begin(), disabled.end(), gpu) != disabled.end();
    const bool enabled = resources.gpuEnabled(index);
    QJsonObject record{
        {"index", gpu},
        {"name", QString::fromStdString(resources.gpuName(index))},
        {"memoryMB", double{cuda::getGlobalMemory(gpu)}},
        {"clockMHz", cuda::getClockRate(gpu)},
        {"kernelTimeLimit", cuda::runTimeLimitOnKernels(gpu)},
        {"enabled", enabled},
        {"enabledFrom", byUser ? "user" : "driver"},
    };
    if (!enabled) {
        record["reason"] = disabledReason(gpu, byUser);
    }
    return record;
}

QJsonObject toJson(const ProcessingResources& resources, const ResourceRequest& request)
{
    const system::CpuLimit cpus = system::cpuLimit();
    const system::MemoryLimit memory = system::memoryLimit();
    QJsonArray gpus;
    for (std::size_t i = 0; i < resources.gpuCount(); ++i) {
        gpus.append(gpuRecord(i, resources, request));
    }
    QJsonObject record{
        {"maxCPUs", resources.maxCPUs()},
        {"maxCPUsFrom", sourceText(cpus.source, request.maxCPUs.has_value())},
        {"grantedCPUs", cpus.cpus},
        {"grantedCPUsFrom", sourceText(cpus.source)},
        {"maxRamGB", resources.maxRamGB()},
        {"maxRamFrom", sourceText(memory.source, request.maxRamGB.has_value())},
        {"grantedRamMB", wholeMB(memory.bytes)},
        {"grantedRamFrom", sourceText(memory.source)},
        {"gpus", gpus},
        {"gpuFlags", QString::number(static_cast<qulonglong>(resources.gpuFlags()), 16)},
    };
    if (resources.gpuCount() == 0) {
        record["noGpuReason"] = QString::fromStdString(cuda::unavailableReason());
    }
    return record;
}

QStringList gpuRow(const QJsonObject& gpu)
{
    const QString reason = gpu["reason"].toString();
    return {
        QString::number(gpu["index"].toInt()),
        gpu["name"].toString(),
        QString::number(std::floor(gpu["memoryMB"].toDouble()), 'f', 0),
        QString::number(gpu["clockMHz"].toInt()),
        gpu["kernelTimeLimit"].toBool() ? QStringLiteral("yes") : QStringLiteral("no"),
        gpu["enabled"].toBool() ? QStringLiteral("yes") : QStringLiteral("no: ") + reason,
        gpu["enabledFrom"].toString(),
    };
}

void printTables(const QJsonObject& record)
{
    const auto granted = [&record](const char* from, const QString& amount) {
        return QStringLiteral("%1 (%2)").arg(amount, record[from].toString());
    };
    printText(formatTable(
        {{"limit", "value", "set by", "granted"},
         {"CPU threads", QString::number(record["maxCPUs"].toInt()),
          record["maxCPUsFrom"].toString(),
          granted("grantedCPUsFrom", QString::number(record["grantedCPUs"].toInt()))},
         {"memory", QStringLiteral("%1 GB").arg(record["maxRamGB"].toInt()),
          record["maxRamFrom"].toString(),
          granted(
              "grantedRamFrom", QStringLiteral("%1 MB").arg(record["grantedRamMB"].toDouble()))}}));
    const QJsonArray gpus = record["gpus"].toArray();
    if (gpus.isEmpty()) {
        printText(QStringLiteral("\nNo GPU: %1\n").arg(record["noGpuReason"].toString()));
        return;
    }
    std::vector<QStringList> rows{
        {"GPU", "name", "memory MB", "clock MHz", "kernel time limit", "enabled", "set by"}};
    for (const QJsonValue gpu : gpus) {
        rows.push_back(gpuRow(gpu.toObject()));
    }
    printText(QLatin1Char('\n') + formatTable(rows));
}

} // namespace

ExitCode showResources(const ResourceRequest& request, const CommonOptions& options)
{
    ProcessingResources& resources = ProcessingResources::instance();
    QString what;
    QString error;
    if (!apply(request, resources, what, error)) {
        sayFailure(what, error);
        return WrongUsage;
    }
    const QJsonObject record = toJson(resources, request);
    if (options.json) {
        printJsonLine(record);
    } else {
        printTables(record);
    }
    return AllDone;
}

} // namespace lumo::program
