// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QString>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

/// The application's log. A record is one message with a level, the base name
/// of the source file and the line it comes from:
///
///     log::warning() << "Unable to open file" << path << reason;
///
/// Every added sink receives every record; without sinks records are dropped.
/// All functions may be called from any thread. Records do not interleave.
namespace lumo::log {

/// The log shows these numbers. A higher number is more urgent.
enum class Level : int {
    Debug = 2,     ///< diagnostic detail, such as each message of a validation
    Info = 3,      ///< normal progress of the work
    Warning = 6,   ///< a problem that does not stop the work
    Important = 7, ///< errors, and the steps of a conversion
};

/// One message, as sinks receive it.
struct Record
{
    Level level = Level::Info;
    QString source; ///< base name of the source file, without folder and extension
    int line = 0;
    QString text;
    bool step = false; ///< the record announces a step of a conversion
};

/// Receives records. `write` is called under the log's lock, from the thread
/// that logs: it must return quickly and must not log, add or remove sinks. Its
/// exceptions are ignored, so that a failing log never stops the work.
class LUMO_FOUNDATION_EXPORT Sink
{
public:
    Sink();
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink();
    virtual void write(const Record& record) = 0; ///< see the class
};

/// Collects the items of one record and passes it to the sinks when it is destroyed,
/// at the end of the statement. Puts one blank between two items, unless the first
/// ends or the second begins with white space.
class LUMO_FOUNDATION_EXPORT Streamer
{
public:
    Streamer(Level level, const char* file, int line, bool step = false);
    Streamer(const Streamer&) = delete;
    Streamer& operator=(const Streamer&) = delete;
    ~Streamer();

    Streamer& operator<<(const QString& text);
    Streamer& operator<<(const char* utf8);
    Streamer& operator<<(const std::string& utf8);
    Streamer& operator<<(double value); ///< 6 significant digits, C locale

    /// A number, or "true" or "false". A template, so that no pointer becomes a bool.
    template <typename T>
    requires std::is_integral_v<T> Streamer& operator<<(T value)
    {
        if constexpr (std::is_same_v<T, bool>) {
            return *this << (value ? "true" : "false");
        } else {
            return *this << QString::number(value);
        }
    }

private:
    Record m_record;
};

// The default arguments are taken where the function is called, so a record
// names its origin without a macro.

/// Begins a record of Level::Debug.
[[nodiscard]] LUMO_FOUNDATION_EXPORT Streamer
debug(const char* file = __builtin_FILE(), int line = __builtin_LINE());
/// Begins a record of Level::Info.
[[nodiscard]] LUMO_FOUNDATION_EXPORT Streamer
info(const char* file = __builtin_FILE(), int line = __builtin_LINE());
/// Begins a record of Level::Warning.
[[nodiscard]] LUMO_FOUNDATION_EXPORT Streamer
warning(const char* file = __builtin_FILE(), int line = __builtin_LINE());
/// Begins a record of Level::Important.
[[nodiscard]] LUMO_FOUNDATION_EXPORT Streamer
important(const char* file = __builtin_FILE(), int line = __builtin_LINE());
/// Begins a record of Level::Important that announces a step of a conversion. A log
/// file needs these as much as errors; a terminal may leave them out (makeStderrSink).
[[nodiscard]] LUMO_FOUNDATION_EXPORT Streamer
step(const char* file = __builtin_FILE(), int line = __builtin_LINE());

/// Adds a sink. Does nothing if it was added before.
/// \throws std::invalid_argument if it is null
LUMO_FOUNDATION_EXPORT void addSink(std::shared_ptr<Sink> sink);
/// Removes a sink: it receives nothing after this returns. Does nothing if it was
/// not added.
LUMO_FOUNDATION_EXPORT void removeSink(const std::shared_ptr<Sink>& sink);

/// Writes records of `minimum` and up to the standard error stream, a line each:
/// "[6] source:line text". Control characters in the text become blanks.
/// \param steps  whether to write the records of log::step, too
[[nodiscard]] LUMO_FOUNDATION_EXPORT std::shared_ptr<Sink> makeStderrSink(
    Level minimum, bool steps = true);

/// Appends records of `minimum` and up to `path`, with local date and time before
/// the same line. Before the file outgrows `maxBytes` (at least 1) it is renamed,
/// from "a.log" to "a.1.log", and at most `maxFiles` older ones are kept. Reports a
/// write that fails later on the standard error stream.
/// \param[out] error  on failure "PATH: reason", else untouched
/// \returns null if the file cannot be opened
[[nodiscard]] LUMO_FOUNDATION_EXPORT std::shared_ptr<Sink> makeRotatingFileSink(
    const QString& path, Level minimum, std::size_t maxBytes, std::size_t maxFiles, QString& error);

/// Passes each record to `callback`, which must obey the rules of Sink::write.
/// \throws std::invalid_argument if it is empty
[[nodiscard]] LUMO_FOUNDATION_EXPORT std::shared_ptr<Sink> makeCallbackSink(
    std::function<void(const Record&)> callback);

/// Stores all records that are logged during its lifetime; for tests.
class LUMO_FOUNDATION_EXPORT Capture
{
public:
    Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;
    ~Capture();

    /// The records so far, oldest first.
    [[nodiscard]] std::vector<Record> records() const;
    /// Whether a record of this level has exactly this text.
    [[nodiscard]] bool contains(Level level, const QString& text) const;

private:
    mutable std::mutex m_mutex;
    std::vector<Record> m_records;
    std::shared_ptr<Sink> m_sink;
};

} // namespace lumo::log
