// SPDX-License-Identifier: Apache-2.0
#include "cli/help_format.h"

#include <sstream>
#include <utility>

namespace lumo::program {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kTextColumn = 28;

/// Breaks a text at blanks; each line but the first is indented. Line ends stay.
std::string wrapped(const std::string& text, std::size_t indent)
{
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::size_t column = indent;
        result += result.empty() ? "" : "\n" + std::string(indent, ' ');
        for (std::string word; words >> word;) {
            const bool first = column == indent;
            if (!first && column + 1 + word.size() > kWidth) {
                result += '\n' + std::string(indent, ' ');
                column = indent;
            } else if (!first) {
                result += ' ';
                ++column;
            }
            result += word;
            column += word.size();
        }
    }
    return result;
}

/// An entry of a list: a name, and behind it or below it a text.
std::string entry(const std::string& name, const std::string& text)
{
    std::string result = "  " + name;
    if (result.size() + 2 > kTextColumn) {
        result += '\n' + std::string(kTextColumn, ' ');
    } else {
        result.resize(kTextColumn, ' ');
    }
    return result + wrapped(text, kTextColumn) + '\n';
}

/// The value's name, and behind a colon the range that its validator describes.
std::pair<std::string, std::string> valueAndRange(const CLI::Option& option)
{
    const std::string both = option.get_type_name();
    const std::size_t colon = both.find(':');
    return {both.substr(0, colon), colon == std::string::npos ? "" : both.substr(colon + 1)};
}

} // namespace

HelpFormatter::HelpFormatter()
{
    column_width(kTextColumn);
}

std::string HelpFormatter::make_option_name(const CLI::Option* option, bool positional) const
{
    if (positional) {
        return option->get_name(true, false);
    }
    std::string result;
    for (const std::string& name : option->get_snames()) {
        result += (result.empty() ? "-" : ", -") + name;
    }
    for (const std::string& name : option->get_lnames()) {
        result += (result.empty() ? "--" : ", --") + name;
    }
    return result;
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const
{
    const std::string name = option->get_positional() ? "" : valueName(*option);
    return name.empty() ? name : ' ' + name;
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const
{
    std::string more = valueAndRange(*option).second;
    if (!option->get_default_str().empty()) {
        more += (more.empty() ? "default: " : "; default: ") + option->get_default_str();
    }
    return option->get_description() + (more.empty() ? more : " (" + more + ')');
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool positional) const
{
    return entry(
        make_option_name(option, positional) + make_option_opts(option), make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const
{
    return entry(command->get_name(), command->get_description());
}

std::string HelpFormatter::make_description(const CLI::App* command) const
{
    return wrapped(command->get_description(), 0) + '\n';
}

std::string HelpFormatter::make_footer(const CLI::App* command) const
{
    std::string footer = command->get_footer();
    if (command->get_parent() != nullptr) {
        footer += "\nOptions of all commands: lumo --help";
    }
    return wrapped(footer, 0) + '\n';
}

std::string valueName(const CLI::Option& option)
{
    return option.get_items_expected_max() == 0 ? std::string() : valueAndRange(option).first;
}

} // namespace lumo::program
