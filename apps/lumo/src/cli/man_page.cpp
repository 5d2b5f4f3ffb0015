// SPDX-License-Identifier: Apache-2.0
#include "cli/man_page.h"

#include "cli/command_tree.h"
#include "cli/help_format.h"

#include <cctype>

namespace lumo::program {
namespace {

/// Text as roff takes it literally.
std::string escaped(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\\') {
            result += "\\e";
        } else if (character == '-') {
            result += "\\-";
        } else if (character == '\'') {
            result += "\\(aq";
        } else if (character == '~') {
            result += "\\(ti";
        } else if (character == '.' && (result.empty() || result.back() == '\n')) {
            result += "\\&.";
        } else {
            result += character;
        }
    }
    return result;
}

std::string bold(const std::string& text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text)
{
    return "\\fI" + escaped(text) + "\\fR";
}

std::string sentence(std::string text)
{
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return escaped(text.back() == '.' ? text : text + '.') + '\n';
}

/// What follows the label of a footer ("Example: ").
std::string withoutLabel(const std::string& footer)
{
    const std::size_t label = footer.find(": ");
    return label == std::string::npos ? footer : footer.substr(label + 2);
}

/// The arguments after a command's own name.
std::string synopsis(const CLI::App& command)
{
    std::string result = " [" + italic("OPTIONS") + ']';
    for (const CLI::Option* argument : positionalsOf(command)) {
        result += ' ' + italic(argument->get_name(true, false));
        result += argument->get_expected_max() > 1 ? "..." : "";
    }
    return result;
}

std::string entries(const CLI::App& command)
{
    const HelpFormatter format;
    std::string result;
    for (const CLI::Option* argument : positionalsOf(command)) {
        result += ".TP\n" + italic(format.make_option_name(argument, true)) + '\n' +
                  sentence(format.make_option_desc(argument));
    }
    for (const CLI::Option* option : optionsOf(command)) {
        if (option == command.get_help_ptr() && command.get_parent() != nullptr) {
            continue; // listed once, for the program itself
        }
        const std::string value = valueName(*option);
        result += ".TP\n" + bold(format.make_option_name(option, false)) +
                  (value.empty() ? value : ' ' + italic(value)) + '\n' +
                  sentence(format.make_option_desc(option));
    }
    return result;
}

std::string commandSection(const CLI::App& command, const std::string& path)
{
    std::string result;
    if (commandsOf(command).empty()) {
        result = ".SS " + bold(path) + synopsis(command) + '\n' +
                 sentence(command.get_description()) + entries(command);
        result += ".PP\nExample: " + bold(withoutLabel(command.get_footer())) + '\n';
    }
    for (const CLI::App* sub : commandsOf(command)) {
        result += commandSection(*sub, path + ' ' + sub->get_name());
    }
    return result;
}

} // namespace

std::string manPage(const CLI::App& app, const std::string& version)
{
    std::string result = ".TH LUMO 1 \"\" \"lumo " + version + "\" \"User Commands\"\n";
    result +=
        ".SH NAME\nlumo \\- cameras, rigs, projects and alignment of photogrammetric images\n";
    result += ".SH SYNOPSIS\n" + bold("lumo") + " [" + italic("OPTIONS") + "] " +
              italic("COMMAND") + " [" + italic("OPTIONS") + "] [" + italic("ARGUMENTS") + "]\n";
    result += ".SH DESCRIPTION\n" + sentence(app.get_description());
    for (const CLI::App* command : commandsOf(app)) {
        result += ".TP\n" + bold(command->get_name()) + '\n' + sentence(command->get_description());
    }
    result += ".SH OPTIONS\nThese are allowed before and after any command.\n" + entries(app);
    result += ".SH COMMANDS\n" + commandSection(app, "lumo");
    result += ".SH EXIT STATUS\n" + sentence(withoutLabel(app.get_footer()));
    return result;
}

} // namespace lumo::program
