// SPDX-License-Identifier: Apache-2.0
#include "lumo/optimisation/ceres_logger.h"

#include "lumo/foundation/log.h"

#include <glog/logging.h>

#include <mutex>

namespace lumo::optimization {
namespace {

log::Level levelOf(google::LogSeverity severity)
{
    if (severity >= google::GLOG_ERROR) {
        return log::Level::Important;
    }
    return severity == google::GLOG_WARNING ? log::Level::Warning : log::Level::Info;
}

class LumoSink : public google::LogSink
{
public:
    using google::LogSink::send; // the deprecated overload is not hidden

    void send(
        google::LogSeverity severity, const char* /*path*/, const char* file, int line,
        const google::LogMessageTime& /*time*/, const char* message, std::size_t length) override
    {
        log::Streamer(levelOf(severity), file, line)
            << QString::fromUtf8(message, static_cast<int>(length));
    }
};

void initialiseGlog()
{
    // Not initialised, glog would copy every message to the standard error stream.
    google::InitGoogleLogging("lumo");
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, ""); // no file
    }
    FLAGS_stderrthreshold = google::GLOG_FATAL;
}

} // namespace

void initCeresLumoLogger()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (!google::IsGoogleLoggingInitialized()) {
            initialiseGlog();
        }
        // Never destroyed: destructors of static objects may log too.
        static auto* const sink = new LumoSink;
        google::AddLogSink(sink);
    });
}

} // namespace lumo::optimization
