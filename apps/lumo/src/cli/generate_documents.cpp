// SPDX-License-Identifier: Apache-2.0
// Writes the manual page and the completions of lumo from the definitions of its
// command line: generate_documents FOLDER
#include "cli/command_line.h"
#include "cli/completion.h"
#include "cli/man_page.h"
#include "lumo/core/common/build_info.h"
#include "lumo/foundation/file.h"

#include <cstdio>
#include <string>
#include <utility>

namespace {

bool write(const QString& folder, const char* name, const std::string& text)
{
    QString error;
    if (!lumo::file::replaceAtomically(
            lumo::file::join(folder, QString::fromLatin1(name)), QByteArray::fromStdString(text),
            error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: generate_documents FOLDER\n", stderr);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    bool written = true;
    lumo::program::showCommandLine([&folder, &written](const CLI::App& app) {
        using namespace lumo::program;
        const std::pair<const char*, std::string> documents[] = {
            {"lumo.1", manPage(app, lumo::core::build::version())},
            {"lumo.bash", bashCompletion(app)},
            {"_lumo", zshCompletion(app)}};
        for (const auto& [name, text] : documents) {
            written = write(folder, name, text) && written;
        }
    });
    return written ? 0 : 1;
}
