// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"

#include <QFile>
#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <stdexcept>
#include <string_view>
#include <utility>

namespace lumo::log {

namespace {

/// "[6] source:line text". Control characters become blanks: a record stays on
/// its line, and no text from a file steers the terminal.
std::string formatted(const Record& record)
{
    QString line = QStringLiteral("[%1] %2:%3 ")
                       .arg(static_cast<int>(record.level))
                       .arg(record.source)
                       .arg(record.line);
    line += record.text;
    for (QChar& c : line) {
        if (c.category() == QChar::Other_Control) {
            c = QLatin1Char(' ');
        }
    }
    return line.toStdString();
}

class SpdlogSink : public Sink
{
public:
    SpdlogSink(spdlog::sink_ptr sink, const std::string& pattern, Level minimum, bool steps)
        : m_logger(std::string(), std::move(sink))
        , m_minimum(minimum)
        , m_steps(steps)
    {
        m_logger.set_pattern(pattern);
        m_logger.flush_on(spdlog::level::trace); // nothing is lost when the program dies
    }

    void write(const Record& record) override
    {
        if (record.level >= m_minimum && (m_steps || !record.step)) {
            m_logger.log(spdlog::level::info, std::string_view(formatted(record)));
        }
    }

private:
    // It reports a failed write on the standard error stream instead of throwing.
    spdlog::logger m_logger;
    Level m_minimum;
    bool m_steps;
};

class CallbackSink : public Sink
{
public:
    explicit CallbackSink(std::function<void(const Record&)> callback)
        : m_callback(std::move(callback))
    {}

    void write(const Record& record) override { m_callback(record); }

private:
    std::function<void(const Record&)> m_callback;
};

} // namespace

std::shared_ptr<Sink> makeStderrSink(Level minimum, bool steps)
{
    return std::make_shared<SpdlogSink>(
        std::make_shared<spdlog::sinks::stderr_sink_st>(), "%v", minimum, steps);
}

std::shared_ptr<Sink> makeRotatingFileSink(
    const QString& path, Level minimum, std::size_t maxBytes, std::size_t maxFiles, QString& error)
{
    if (maxBytes == 0) {
        error = path + QStringLiteral(": the size limit of a log file must not be 0");
        return nullptr;
    }
    try {
        auto file = std::make_shared<spdlog::sinks::rotating_file_sink_st>(
            QFile::encodeName(path).toStdString(), maxBytes, maxFiles);
        return std::make_shared<SpdlogSink>(
            std::move(file), "%Y-%m-%d %H:%M:%S.%e %v", minimum, true);
    } catch (const spdlog::spdlog_ex& failure) {
        error = path + QStringLiteral(": ") + QString::fromLocal8Bit(failure.what());
        return nullptr;
    }
}

std::shared_ptr<Sink> makeCallbackSink(std::function<void(const Record&)> callback)
{
    if (!callback) {
        throw std::invalid_argument("log::makeCallbackSink: the callback is empty");
    }
    return std::make_shared<CallbackSink>(std::move(callback));
}

} // namespace lumo::log
