// SPDX-License-Identifier: Apache-2.0
#include "cli/command_line.h"

#include "cli/argument_checks.h"
#include "cli/help_format.h"
#include "commands/align_command.h"
#include "commands/camdb_command.h"
#include "commands/identify_command.h"
#include "commands/project_command.h"
#include "commands/resources_command.h"
#include "commands/rig_command.h"
#include "commands/sequoia_command.h"
#include "lumo/core/common/build_info.h"

#include <CLI/CLI.hpp>
#include <QFile>
#include <QStandardPaths>
#include <QStringList>

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace lumo::program {
namespace {

/// What the options of all commands are stored in.
struct Arguments
{
    CommonOptions common;
    std::string dataDirectory;
    std::vector<std::string> paths;
    std::string first;  ///< first positional argument of a camdb command
    std::string second; ///< second one
    ResourceRequest resources;
    std::string serialNumber;
    std::string rigName;
    AlignRequest align;
    std::string jsonFile;
    std::string reportFile;
    std::string cutFolder;
    project::ConvertRequest project;
    std::string output;
    std::string backup = "auto";
    bool explain = false;
    bool matrix = false;
    bool overwrite = false;
    bool internal = false;
};

/// Behind "[...]", which CLI11 would take for a list of arguments; files have such names.
constexpr char kNoList = '\x1f';

/// The arguments as CLI11 takes them for what they are, last first.
std::vector<std::string> forParser(int argc, char** argv)
{
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {
        const std::string argument = argv[i];
        const bool isList = argument.starts_with('[') && argument.ends_with(']');
        arguments.push_back(isList ? argument + kNoList : argument);
    }
    return arguments;
}

QString toQt(std::string argument)
{
    if (argument.ends_with(kNoList)) {
        argument.pop_back();
    }
    return QFile::decodeName(argument.c_str());
}

QStringList toQt(const std::vector<std::string>& arguments)
{
    QStringList result;
    for (const std::string& argument : arguments) {
        result.append(toQt(argument));
    }
    return result;
}

std::string versionText()
{
    using namespace core;
    return std::string("lumo ") + build::version() + " (" + build::commit() + ", " +
           build::compiler() + ")";
}

using Run = std::function<ExitCode()>;

/// A subcommand that runs `action` if it is the one asked for.
CLI::App* addCommand(
    CLI::App& parent, Run& run, const char* name, const char* description, const char* example,
    Run action)
{
    CLI::App* command = parent.add_subcommand(name, description);
    command->footer(std::string("Example: ") + example);
    command->callback([&run, action = std::move(action)] { run = action; });
    return command;
}

void addImageCommands(CLI::App& app, Run& run, Arguments& arguments)
{
    CLI::App* identifyCommand = addCommand(
        app, run, "identify", "Find the camera model of image files",
        "lumo identify --json flight1/", [&arguments] {
            return identify(toQt(arguments.paths), arguments.explain, arguments.common);
        });
    identifyCommand->add_option("PATH", arguments.paths, "Image files, or folders with image files")
        ->required();
    identifyCommand->add_flag(
        "--explain", arguments.explain,
        "Show why each candidate was taken or refused, and all evidence for the pixel size");

    CLI::App* rigCommand = addCommand(
        app, run, "rig", "Group image files into captures and find the rig of each",
        "lumo rig --matrix flight1/", [&arguments] {
            const QStringList paths = toQt(arguments.paths);
            return arguments.rigName.empty()
                       ? identifyRigs(paths, arguments.matrix, arguments.common)
                       : saveRig(
                             paths, toQt(arguments.rigName), arguments.overwrite, arguments.common);
        });
    CLI::Option* save =
        rigCommand
            ->add_option(
                "--save", arguments.rigName,
                "Make a rig of this name from the images' metadata and save it as your own")
            ->type_name("NAME")
            ->check(notEmpty());
    rigCommand
        ->add_flag("--overwrite", arguments.overwrite, "With --save: replace a rig of this name")
        ->needs(save);
    rigCommand->add_option("PATH", arguments.paths, "Image files, or folders with image files")
        ->required();
    rigCommand
        ->add_flag(
            "--matrix", arguments.matrix, "Show captures against the rig's cameras, with gaps")
        ->excludes(save);
}

void addSequoiaCommand(CLI::App& app, Run& run, Arguments& arguments)
{
    CLI::App* command = addCommand(
        app, run, "sequoia", "Show the Sequoia devices of image files and what they lack",
        "lumo sequoia --remove-debug-lines cut/ flight1/", [&arguments] {
            return showSequoia(toQt(arguments.paths), toQt(arguments.cutFolder), arguments.common);
        });
    command->add_option("PATH", arguments.paths, "Image files, or folders with image files")
        ->required();
    command
        ->add_option(
            "--remove-debug-lines", arguments.cutFolder,
            "Write copies of raw images (970 rows) without their debug lines into this folder")
        ->type_name("DIR")
        ->check(notEmpty());
}

void addSerialOption(CLI::App* command, Arguments& arguments)
{
    command
        ->add_option(
            "--serial", arguments.serialNumber,
            "Serial number of the one body that the camera is for (default: the camera for all)")
        ->type_name("SERIAL")
        ->check(notEmpty());
}

void addDatabaseEditing(CLI::App& camdb, Run& run, Arguments& arguments)
{
    CLI::App* add = addCommand(
        camdb, run, "add", "Make a camera from an image's metadata and save it as your own",
        "lumo camdb add DJI_0001.JPG", [&arguments] {
            return camdb::add(toQt(arguments.first), arguments.overwrite, arguments.common);
        });
    add->add_option("IMAGE", arguments.first, "Image file with metadata")->required();
    add->add_flag(
        "--overwrite", arguments.overwrite,
        "Replace an existing camera (default: only add the image's bands to it)");

    CLI::App* remove = addCommand(
        camdb, run, "remove", "Remove a camera, rig or mapping of your own",
        "lumo camdb remove FC6310_8.8_5472x3648", [&arguments] {
            return camdb::remove(
                toQt(arguments.first), toQt(arguments.serialNumber), arguments.common);
        });
    remove
        ->add_option(
            "NAME", arguments.first, "Name of the camera or rig, or the identifier that is mapped")
        ->type_name("NAME")
        ->required();
    addSerialOption(remove, arguments);

    CLI::App* map = addCommand(
        camdb, run, "map", "Map an identifier of images to a camera",
        "lumo camdb map FC6310S_8.8_5472x3648 FC6310_8.8_5472x3648", [&arguments] {
            return camdb::map(toQt(arguments.first), toQt(arguments.second), arguments.common);
        });
    map->add_option(
           "EXIFID", arguments.first, "Identifier of images: exifId of lumo identify --json")
        ->type_name("NAME")
        ->required();
    map->add_option("NAME", arguments.second, "Name of the camera")->type_name("NAME")->required();

    CLI::App* import = addCommand(
        camdb, run, "import", "Merge a database of any version into your own",
        "lumo camdb import --overwrite colleague.xml", [&arguments] {
            return camdb::import(toQt(arguments.first), arguments.overwrite, arguments.common);
        });
    import->add_option("FILE", arguments.first, "XML document, or text database (.csv)")
        ->required();
    import->add_flag(
        "--overwrite", arguments.overwrite,
        "Replace entries of the same name (default: keep them)");
}

void addDatabaseFiles(CLI::App& camdb, Run& run, Arguments& arguments)
{
    CLI::App* exportCommand = addCommand(
        camdb, run, "export", "Write your own database to a file", "lumo camdb export my.xml",
        [&arguments] {
            return camdb::exportTo(toQt(arguments.first), arguments.internal, arguments.common);
        });
    exportCommand
        ->add_option(
            "FILE", arguments.first,
            "File to write: text if its name ends in .csv, else an XML document")
        ->required();
    exportCommand->add_flag("--internal", arguments.internal, "Write the shipped database instead");

    CLI::App* validate = addCommand(
        camdb, run, "validate", "Check that a file is a valid database of the current version",
        "lumo camdb validate my.xml",
        [&arguments] { return camdb::validate(toQt(arguments.first), arguments.common); });
    validate->add_option("FILE", arguments.first, "XML document, or text database (.csv)")
        ->required();

    CLI::App* convert = addCommand(
        camdb, run, "convert", "Convert a database of an older version to the current one",
        "lumo camdb convert old.xml new.xml", [&arguments] {
            return camdb::convert(toQt(arguments.first), toQt(arguments.second), arguments.common);
        });
    convert->add_option("IN", arguments.first, "XML document of an older version")->required();
    convert->add_option("OUT", arguments.second, "XML document to write")->required();

    addCommand(
        camdb, run, "rebuild", "Make the file of the shipped database anew", "lumo camdb rebuild",
        [&arguments] { return camdb::rebuild(arguments.common); });
}

void addDatabaseCommands(CLI::App& app, Run& run, Arguments& arguments)
{
    CLI::App* camdb = app.add_subcommand("camdb", "Show and edit the camera databases");
    camdb->footer("Example: lumo camdb list");
    camdb->require_subcommand(1);
    camdb->fallthrough();
    addCommand(
        *camdb, run, "list", "List all cameras, rigs and mappings", "lumo camdb list",
        [&arguments] { return camdb::list(arguments.common); });
    CLI::App* show = addCommand(
        *camdb, run, "show", "Show a camera or rig", "lumo camdb show FC6310_8.8_5472x3648",
        [&arguments] {
            return camdb::show(
                toQt(arguments.first), toQt(arguments.serialNumber), arguments.common);
        });
    show->add_option("NAME", arguments.first, "Name of the camera or rig")
        ->type_name("NAME")
        ->required();
    addSerialOption(show, arguments);
    addDatabaseEditing(*camdb, run, arguments);
    addDatabaseFiles(*camdb, run, arguments);
    addCommand(
        *camdb, run, "selftest", "Check the entries of the shipped database", "lumo camdb selftest",
        [&arguments] { return camdb::selftest(arguments.common); });
}

void addAlignCommand(CLI::App& app, Run& run, Arguments& arguments)
{
    CLI::App* command = addCommand(
        app, run, "align", "Find the transform that maps one set of points onto another",
        "lumo align --outliers 0.2 --report site.html points.csv", [&arguments] {
            arguments.align.pointFile = toQt(arguments.first);
            arguments.align.jsonFile = toQt(arguments.jsonFile);
            arguments.align.reportFile = toQt(arguments.reportFile);
            return alignPoints(arguments.align, arguments.common);
        });
    AlignRequest& align = arguments.align;
    command
        ->add_option(
            "POINTS", arguments.first,
            "Table (.csv) with a header: x1,y1,z1,x2,y2,z2 and perhaps sx,sy,sz (standard "
            "deviations, in the unit of set 1) and name; set 2 is mapped onto set 1")
        ->required();
    command->add_option("--outliers", align.outlierRatio, "Assumed share of wrong pairs")
        ->type_name("R")
        ->transform(between(0.0, 0.99))
        ->capture_default_str();
    command->add_option("--samples", align.samplePairs, "Pairs per random sample")
        ->type_name("N")
        ->transform(between(3, 1000000))
        ->capture_default_str();
    command->add_option("--seed", align.seed, "Seed of the random samples")
        ->type_name("N")
        ->transform(between<std::uint32_t>(0, std::numeric_limits<std::uint32_t>::max()))
        ->capture_default_str();
    command->add_option("-o", arguments.jsonFile, "Write the result to this JSON file, too")
        ->type_name("FILE")
        ->check(notEmpty());
    command->add_option("--report", arguments.reportFile, "Write a report to this HTML file")
        ->type_name("FILE")
        ->check(notEmpty());
    command->add_flag(
        "--force", align.force, "Give a transform even if the points do not determine it");
}

void addResourcesCommand(CLI::App& app, Run& run, Arguments& arguments)
{
    CLI::App* command = addCommand(
        app, run, "resources",
        "Show the CPUs, memory and GPUs for processing, and the origin of each limit",
        "lumo resources --max-cpus 4",
        [&arguments] { return showResources(arguments.resources, arguments.common); });
    constexpr int kMostRamGB = 2097151; // beyond it, an int does not hold the MB
    command->add_option("--max-cpus", arguments.resources.maxCPUs, "CPU threads at most")
        ->type_name("N")
        ->transform(atLeast(1));
    command->add_option("--max-ram-gb", arguments.resources.maxRamGB, "Memory at most, in GB")
        ->type_name("N")
        ->transform(between(1, kMostRamGB));
    command
        ->add_option(
            "--disable-gpu", arguments.resources.disabledGpus,
            "Disable the GPU of this number, counted from 0; may be repeated")
        ->type_name("N")
        ->allow_extra_args(false)
        ->transform(atLeast(0));
}

void addProjectConvert(CLI::App& parent, Run& run, Arguments& arguments)
{
    CLI::App* convert = addCommand(
        parent, run, "convert", "Convert files to the current format version",
        "lumo project convert --dry-run site.kpx", [&arguments] {
            arguments.project.paths = toQt(arguments.paths);
            arguments.project.output = toQt(arguments.output);
            arguments.project.backup = toQt(arguments.backup);
            return project::convert(arguments.project, arguments.common);
        });
    convert
        ->add_option(
            "FILE", arguments.paths, "Projects (.kpx) and templates (.tmpl), or folders of them")
        ->required();
    convert
        ->add_option(
            "-o", arguments.output,
            "Write the result here (a folder, if there are several files) instead of in place")
        ->type_name("FILE")
        ->check(notEmpty());
    convert->add_option("--target", arguments.project.target, "Format version to convert to")
        ->type_name("N")
        ->transform(between(0, kpx::kCurrentVersion))
        ->capture_default_str();
    convert
        ->add_option(
            "--backup", arguments.backup,
            "Where to keep the old file when it is converted in place: auto (beside it; "
            "templates: in the data folder), none, or this file (a folder, if there are several)")
        ->type_name("auto|none|FILE")
        ->check(notEmpty())
        ->capture_default_str();
    convert->add_flag(
        "--dry-run", arguments.project.dryRun, "Show what would be done, and write nothing");
}

void addProjectCommands(CLI::App& app, Run& run, Arguments& arguments)
{
    CLI::App* parent = app.add_subcommand(
        "project", "Show, convert and validate project files and processing templates");
    parent->footer("Example: lumo project info site.kpx");
    parent->require_subcommand(1);
    parent->fallthrough();
    const auto addFiles = [&arguments](CLI::App* command) {
        command
            ->add_option(
                "FILE", arguments.paths,
                "Projects (.kpx) and templates (.tmpl), or folders of them")
            ->required();
    };
    addFiles(addCommand(
        *parent, run, "info", "Show the versions of files and the steps of a conversion",
        "lumo project info site.kpx",
        [&arguments] { return project::info(toQt(arguments.paths), arguments.common); }));
    addProjectConvert(*parent, run, arguments);
    addFiles(addCommand(
        *parent, run, "validate", "Check files against their schema",
        "lumo project validate site.kpx",
        [&arguments] { return project::validate(toQt(arguments.paths), arguments.common); }));
}

/// Everything that the program understands.
void define(CLI::App& app, Run& run, Request& request, Arguments& arguments)
{
    app.name("lumo");
    app.description("Cameras, rigs, projects and alignment of photogrammetric images.");
    app.footer("Exit codes: 0 all done; 1 something failed, each failure on the standard error "
               "stream as \"lumo: FILE: reason\"; 2 wrong usage");
    app.formatter(std::make_shared<HelpFormatter>());
    app.require_subcommand(1);
    app.fallthrough();
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", versionText(), "Print the version and exit");
    app.add_flag(
        "--json", arguments.common.json,
        "Print one JSON object per line on the standard output, and nothing else");
    app.add_flag("-v", request.verbosity, "Log more of what is done; -vv logs everything");
    app.add_option(
           "--data-dir", arguments.dataDirectory,
           "Folder of your own databases and settings (default: ~/.local/share/lumo)")
        ->type_name("DIR")
        ->check(notEmpty());
    addImageCommands(app, run, arguments);
    addSequoiaCommand(app, run, arguments);
    addDatabaseCommands(app, run, arguments);
    addResourcesCommand(app, run, arguments);
    addAlignCommand(app, run, arguments);
    addProjectCommands(app, run, arguments);
}

/// Prints what is wrong with the command line.
ExitCode sayWrongUsage(const CLI::App& app, const CLI::ParseError& error)
{
    // For an unknown name CLI11 itself only reports that a known one is missing.
    const std::vector<std::string> unknown = app.remaining(true);
    const QString reason =
        unknown.empty()
            ? QString::fromLocal8Bit(error.what())
            : QStringLiteral("'%1' is not a command or option here").arg(toQt(unknown.front()));
    sayUsage(reason);
    return WrongUsage;
}

} // namespace

Request parseCommandLine(int argc, char** argv)
{
    Request request;
    const auto arguments = std::make_shared<Arguments>();
    CLI::App app;
    Run run;
    define(app, run, request, *arguments);
    try {
        app.parse(forParser(argc, argv));
    } catch (const CLI::Success& asked) { // for help or the version
        app.exit(asked);
        return request;
    } catch (const CLI::ParseError& error) {
        request.exitCode = sayWrongUsage(app, error);
        return request;
    }
    arguments->common.dataDirectory =
        arguments->dataDirectory.empty()
            ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
            : toQt(arguments->dataDirectory);
    request.run = [run, arguments] { return run(); };
    return request;
}

void showCommandLine(const std::function<void(const CLI::App&)>& show)
{
    Request request;
    Arguments arguments;
    CLI::App app;
    Run run;
    define(app, run, request, arguments);
    show(app);
}

} // namespace lumo::program
