// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"
#include "interrupt.h"
#include "lumo/core/services/core_services.h"
#include "lumo/foundation/log.h"

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
    static_cast<void>(lumo::CoreServices::instance());
    lumo::log::addSink(
        lumo::log::makeStderrSink(shownLevel(request.verbosity), request.verbosity > 0));
    lumo::program::catchInterrupt();
    return request.run();
}
