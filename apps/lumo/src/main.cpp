// SPDX-License-Identifier: Apache-2.0
#include "identify_command.h"
#include "interrupt.h"
#include "lumo/core/common/build_info.h"
#include "lumo/foundation/log.h"
#include "output.h"
#include "rig_command.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QFile>

#include <clocale>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace lumo::program;

QStringList toQt(const std::vector<std::string>& arguments)
{
    QStringList result;
    for (const std::string& argument : arguments) {
        result.append(QFile::decodeName(argument.c_str()));
    }
    return result;
}

lumo::log::Level shownLevel(int verbosity)
{
    using lumo::log::Level;
    return verbosity == 0 ? Level::Warning : verbosity == 1 ? Level::Info : Level::Debug;
}

std::string versionText()
{
    using namespace lumo::core;
    return std::string("lumo ") + build::version() + " (" + build::commit() + ", " +
           build::compiler() + ")";
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    // Qt takes the user's locale over; numbers are written in the C locale.
    std::setlocale(LC_NUMERIC, "C");

    CLI::App app("Cameras, rigs, projects and alignment of photogrammetric images.", "lumo");
    app.require_subcommand(1);
    app.fallthrough();
    CommonOptions options;
    int verbosity = 0;
    app.add_flag("--json", options.json, "One JSON object per line on the standard output");
    app.add_flag("-v", verbosity, "Say more of what is done; -vv says all");
    app.set_version_flag("--version", versionText());

    std::vector<std::string> paths;
    CLI::App* identifyCommand =
        app.add_subcommand("identify", "Find the camera model of image files");
    identifyCommand->add_option("PATH", paths, "Image files, or folders with image files")
        ->required();
    identifyCommand->footer("Example: lumo identify --json flight1/");

    bool matrix = false;
    CLI::App* rigCommand =
        app.add_subcommand("rig", "Group image files into captures and find the rig of each");
    rigCommand->add_option("PATH", paths, "Image files, or folders with image files")->required();
    rigCommand->add_flag("--matrix", matrix, "Show captures against the rig's cameras, with gaps");
    rigCommand->footer("Example: lumo rig --matrix flight1/");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? AllDone : WrongUsage;
    }
    lumo::log::addSink(lumo::log::makeStderrSink(shownLevel(verbosity)));
    catchInterrupt();
    return rigCommand->parsed() ? identifyRigs(toQt(paths), matrix, options)
                                : identify(toQt(paths), options);
}
