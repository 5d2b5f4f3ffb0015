// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"
#include "interrupt.h"
#include "lumo/core/services/core_services.h"
#include "lumo/foundation/log.h"
#include "progress_bar.h"

#include <QCoreApplication>

#include <clocale>

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

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lumo"));
    // Qt takes the user's locale over; numbers are written in the C locale.
    std::setlocale(LC_NUMERIC, "C");

    const lumo::program::Request request = lumo::program::parseCommandLine(argc, argv);
    if (!request.run) {
        return request.exitCode;
    }
    lumo::CoreServices::instance();
    showLog(request.verbosity);
    lumo::program::catchInterrupt();
    const lumo::program::ProgressBar progressBar;
    return request.run();
}
