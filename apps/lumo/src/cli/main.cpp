// SPDX-License-Identifier: Apache-2.0
#include "cli/command_line.h"
#include "cli/interrupt.h"
#include "lumo/core/services/core_services.h"
#include "lumo/foundation/log.h"
#include "show/output.h"
#include "show/progress_bar.h"

#include <QCoreApplication>

#include <clocale>
#include <exception>

namespace {

lumo::log::Level shownLevel(int verbosity)
{
    using lumo::log::Level;
    if (verbosity == 0) {
        return Level::Warning;
    }
    return verbosity == 1 ? Level::Info : Level::Debug;
}

void showLog(int verbosity)
{
    using namespace lumo;
    const log::Level shown = shownLevel(verbosity);
    // Sinks are written to in the order in which they were added.
    log::addSink(log::makeCallbackSink([shown](const log::Record& record) {
        if (record.level >= shown) {
            program::hideProgressBar();
        }
    }));
    log::addSink(log::makeStderrSink(shown, verbosity > 0));
}

int run(const lumo::program::Request& request)
{
    using namespace lumo::program;
    const ProgressBar progressBar;
    try {
        return request.run();
    } catch (const std::exception& fault) { // of which no command knows
        return failed(QStringLiteral("stopped"), QString::fromUtf8(fault.what()));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lumo"));
    // Qt takes the user's locale over; numbers are written in the C locale.
    std::setlocale(LC_NUMERIC, "C");

    const lumo::program::Request request = lumo::program::parseCommandLine(argc, argv);
    if (!request.run) {
        return lumo::program::finishOutput() ? request.exitCode : lumo::program::SomethingFailed;
    }
    lumo::CoreServices::instance();
    showLog(request.verbosity);
    lumo::program::catchInterrupt();
    const int exitCode = run(request);
    return lumo::program::finishOutput() ? exitCode : lumo::program::SomethingFailed;
}
