// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace lumo::log {

namespace {

struct Registry
{
    std::mutex mutex;
    std::vector<std::shared_ptr<Sink>> sinks;
};

Registry& registry()
{
    // Never destroyed, so that destructors of static objects may log too.
    static auto* const theOne = new Registry;
    return *theOne;
}

void dispatch(const Record& record) noexcept
{
    const std::lock_guard lock(registry().mutex);
    for (const auto& sink : registry().sinks) {
        try {
            sink->write(record);
        } catch (...) {
            // A failing log must not end the work, and there is no place to report it.
        }
    }
}

QString baseName(std::string_view path)
{
    if (const auto slash = path.find_last_of("/\\"); slash != std::string_view::npos) {
        path.remove_prefix(slash + 1);
    }
    path = path.substr(0, path.find_last_of('.'));
    return QString::fromUtf8(path.data(), static_cast<int>(path.size()));
}

} // namespace

Sink::Sink() = default;
Sink::~Sink() = default;

Streamer::Streamer(Level level, const char* file, int line, bool step)
    : m_record{level, baseName(file), line, {}, step}
{}

Streamer::~Streamer()
{
    dispatch(m_record);
}

Streamer& Streamer::operator<<(const QString& text)
{
    QString& record = m_record.text;
    const bool joint = !record.isEmpty() && !text.isEmpty();
    if (joint && !record.back().isSpace() && !text.front().isSpace()) {
        record += QLatin1Char(' ');
    }
    record += text;
    return *this;
}

Streamer& Streamer::operator<<(const char* utf8)
{
    return *this << QString::fromUtf8(utf8);
}

Streamer& Streamer::operator<<(const std::string& utf8)
{
    return *this << QString::fromStdString(utf8);
}

Streamer& Streamer::operator<<(double value)
{
    return *this << QString::number(value, 'g', 6);
}

Streamer debug(const char* file, int line)
{
    return {Level::Debug, file, line};
}

Streamer info(const char* file, int line)
{
    return {Level::Info, file, line};
}

Streamer warning(const char* file, int line)
{
    return {Level::Warning, file, line};
}

Streamer step(const char* file, int line)
{
    return {Level::Important, file, line, true};
}

Streamer important(const char* file, int line)
{
    return {Level::Important, file, line};
}

void addSink(std::shared_ptr<Sink> sink)
{
    if (!sink) {
        throw std::invalid_argument("log::addSink: the sink is null");
    }
    const std::lock_guard lock(registry().mutex);
    auto& sinks = registry().sinks;
    if (std::find(sinks.begin(), sinks.end(), sink) == sinks.end()) {
        sinks.push_back(std::move(sink));
    }
}

void removeSink(const std::shared_ptr<Sink>& sink)
{
    const std::lock_guard lock(registry().mutex);
    auto& sinks = registry().sinks;
    sinks.erase(std::remove(sinks.begin(), sinks.end(), sink), sinks.end());
}

Capture::Capture()
    : m_sink(makeCallbackSink([this](const Record& record) {
        const std::lock_guard lock(m_mutex);
        m_records.push_back(record);
    }))
{
    addSink(m_sink);
}

Capture::~Capture()
{
    removeSink(m_sink);
}

std::vector<Record> Capture::records() const
{
    const std::lock_guard lock(m_mutex);
    return m_records;
}

bool Capture::contains(Level level, const QString& text) const
{
    const std::lock_guard lock(m_mutex);
    return std::any_of(m_records.begin(), m_records.end(), [&](const Record& record) {
        return record.level == level && record.text == text;
    });
}

} // namespace lumo::log
