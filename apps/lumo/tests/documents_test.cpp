// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

const QString kFolder = QStringLiteral(LUMO_DOCUMENTS "/");

/// What --help says of a command.
struct Help
{
    QStringList path; ///< begins with "lumo"
    QStringList commands;
    QStringList options; ///< "-h", "--help"
};

QStringList matches(const QString& pattern, const QString& text)
{
    QStringList result;
    QRegularExpressionMatchIterator found = QRegularExpression(pattern).globalMatch(text);
    while (found.hasNext()) {
        result.append(found.next().captured(1));
    }
    return result;
}

/// Of a command and all below it.
void readHelp(const QStringList& path, std::vector<Help>& all)
{
    const ProgramRun run = runProgram(path.mid(1) + QStringList{"--help"});
    const QString text = QString::fromUtf8(run.out).section("\nExample: ", 0, 0);
    const QString below = text.section("\nSubcommands:\n", 1);
    Help help{path, matches("(?m)^  (\\w+)", below), {}};
    for (const QString& entry : matches("(?m)^  (-.*?)(?:  |$)", text)) {
        help.options += matches("(?:^|, )(--?[\\w-]+)", entry);
    }
    all.push_back(help);
    for (const QString& command : help.commands) {
        readHelp(path + QStringList{command}, all);
    }
}

const std::vector<Help>& allHelp()
{
    static const std::vector<Help> all = [] {
        std::vector<Help> result;
        readHelp({"lumo"}, result);
        return result;
    }();
    return all;
}

/// What a program prints on both streams.
QString outputOf(
    const QString& program, const QStringList& arguments, const QString& folder = QString())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("MANWIDTH", "200");
    environment.insert("LC_ALL", "C.UTF-8");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0) << qPrintable(program);
    return QString::fromUtf8(process.readAll());
}

/// What bash makes of these words, the last of which is being typed.
QSet<QString> completed(const QStringList& words, const QString& folder = QString())
{
    const QString script = "source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _lumo; "
                           "printf '%s\\n' \"${COMPREPLY[@]}\"";
    const QString out = outputOf(
        "bash", QStringList{"--norc", "-c", script, kFolder + "lumo.bash"} + words, folder);
    const QStringList lines = out.split('\n', Qt::SkipEmptyParts);
    return {lines.begin(), lines.end()};
}

TEST(Documents, HelpKnowsAllCommandsAndFitsATerminal)
{
    EXPECT_GE(allHelp().size(), 22u); // else the tests below look at nothing
    for (const Help& help : allHelp()) {
        const ProgramRun run = runProgram(help.path.mid(1) + QStringList{"--help"});
        EXPECT_TRUE(help.options.contains("--help")) << qPrintable(help.path.join(' '));
        for (const QByteArray& line : run.out.split('\n')) {
            EXPECT_LE(line.size(), line.startsWith("Example: ") ? 100 : 80) << line.constData();
        }
    }
}

TEST(Documents, TheManualHasEveryCommandAndOption)
{
    const QString file = kFolder + "lumo.1";
    const QString format = "man --warnings -E UTF-8 -l -Tutf8 -Z \"$0\" 2>&1 >/dev/null";
    EXPECT_EQ(outputOf("bash", {"-c", format, file}).toStdString(), "");
    const QString page = '\n' + outputOf("man", {"-P", "cat", "-l", file});
    for (const Help& help : allHelp()) {
        const bool root = help.path.size() == 1;
        const QString title = root ? QString("\nOPTIONS\n") : "\n   " + help.path.join(' ') + " [";
        const bool section = root || help.commands.isEmpty();
        ASSERT_EQ(page.count(title), section ? 1 : 0) << title.toStdString();
        const QString text =
            page.section(title, 1).section(root ? "\nCOMMANDS\n" : "\n   lumo ", 0, 0);
        for (const QString& option : section ? help.options : QStringList()) {
            if (!root && (option == "-h" || option == "--help")) {
                continue; // said once
            }
            const QRegularExpression entry("\n       (-\\w, )?" + option + "\\b");
            EXPECT_TRUE(text.contains(entry)) << (title + option).toStdString();
        }
    }
}

TEST(Documents, BashCompletesEveryCommandAndOption)
{
    const QStringList& common = allHelp().front().options;
    for (const Help& help : allHelp()) {
        const QStringList options = help.options + common;
        EXPECT_EQ(
            completed(help.path + QStringList{"-"}), QSet<QString>(options.begin(), options.end()))
            << qPrintable(help.path.join(' '));
        if (!help.commands.isEmpty()) {
            EXPECT_EQ(
                completed(help.path + QStringList{""}),
                QSet<QString>(help.commands.begin(), help.commands.end()));
        }
    }
}

TEST(Documents, BashCompletesValuesByTheirKind)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("a folder"));
    QFile file(folder.filePath("a file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QSet<QString> all{"a file", "a folder"};
    const std::pair<QStringList, QSet<QString>> cases[] = {
        {{"lumo", "--data-dir", ""}, {"a folder"}},
        {{"lumo", "camdb", "list", "--data-dir", "=", "a"}, {"a folder"}},
        {{"lumo", "--data-dir", "camdb", "id"}, {"identify"}}, // a value is not a command
        {{"lumo", "identify", "--json", "a"}, all},
        {{"lumo", "project", "convert", "--backup", ""}, all + QSet<QString>{"auto", "none"}},
        {{"lumo", "project", "convert", "--backup", "="}, all + QSet<QString>{"auto", "none"}},
        {{"lumo", "align", "--seed", ""}, {}},
        {{"lumo", "camdb", "show", ""}, {}}};
    for (const auto& [words, expected] : cases) {
        EXPECT_EQ(completed(words, folder.path()), expected) << qPrintable(words.join(' '));
    }
}

TEST(Documents, ZshHasEveryCommandAndOption)
{
    QFile file(kFolder + "_lumo");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString script = QString::fromUtf8(file.readAll());
    for (const Help& help : allHelp()) {
        const QString body =
            script.section("\n_" + help.path.join('_') + "()\n", 1).section("\n}\n", 0, 0);
        for (const QString& command : help.commands) {
            EXPECT_TRUE(body.contains('\'' + command + ':')) << qPrintable(command);
        }
        for (const QString& option : help.options) {
            EXPECT_TRUE(body.contains(QRegularExpression("[*)]" + option + "=?\\[")))
                << qPrintable((help.path + QStringList{option}).join(' '));
        }
    }
    if (QStandardPaths::findExecutable("zsh").isEmpty()) {
        GTEST_SKIP() << "without zsh its syntax is not looked at";
    }
    EXPECT_EQ(outputOf("zsh", {"-f", "-n", file.fileName()}).toStdString(), "");
}

} // namespace
