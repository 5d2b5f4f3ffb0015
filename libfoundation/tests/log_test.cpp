// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>

namespace lumo::log {

namespace {

QString lastText(const Capture& capture)
{
    const auto records = capture.records();
    return records.empty() ? QStringLiteral("(none)") : records.back().text;
}

QStringList linesOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

TEST(Log, RecordNamesLevelSourceAndLine)
{
    const Capture capture;
    debug() << "a";
    info() << "b";
    warning() << "c";
    important() << "d";
    const int line = __LINE__ - 1;

    const auto records = capture.records();
    ASSERT_EQ(records.size(), 4U);
    const int levels[] = {2, 3, 6, 7};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(static_cast<int>(records[i].level), levels[i]);
        EXPECT_EQ(records[i].source, QStringLiteral("log_test"));
        EXPECT_EQ(records[i].line, line - 3 + static_cast<int>(i));
        EXPECT_EQ(records[i].text, QString(QChar('a' + static_cast<int>(i))));
    }
}

TEST(Log, SourceIsTheFileNameWithoutFolderAndExtension)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/a.b/sequoia.cpp", "sequoia"},
        {"C:\\src\\lumo_camera_db_xml.cpp", "lumo_camera_db_xml"},
        {"plain", "plain"},
        {"a/b.moc.cpp", "b.moc"},
    };
    for (const auto& [file, source] : cases) {
        const Capture capture;
        Streamer(Level::Info, file, 1);
        ASSERT_EQ(capture.records().size(), 1U);
        EXPECT_EQ(capture.records()[0].source, QString::fromLatin1(source));
    }
}

TEST(Log, ItemsAreJoinedByOneBlankUnlessWhiteSpaceIsThere)
{
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{"one", "two", "drei ü"}, "one two drei ü"},
        {{"file ", "a", "\nb", "\t", "c", "", "d"}, "file a\nb\tc d"},
        {{"", "first"}, "first"},
        {{}, ""},
    };
    const Capture capture;
    for (const auto& [items, text] : cases) {
        {
            Streamer streamer = info();
            for (const char* item : items) {
                streamer << item;
            }
        }
        EXPECT_EQ(lastText(capture), QString::fromUtf8(text));
    }
    info() << std::string("n") << 1 << -2LL << std::size_t(3) << short(4) << true << 1e6 << 1e-30F;
    EXPECT_EQ(lastText(capture), QStringLiteral("n 1 -2 3 4 true 1e+06 1e-30"));
}

TEST(Log, EachSinkGetsEachRecordOnceWhileItIsAdded)
{
    int count = 0;
    const auto sink = makeCallbackSink([&count](const Record&) { ++count; });
    info() << "before";
    addSink(sink);
    addSink(sink);
    info() << "during";
    removeSink(sink);
    removeSink(sink);
    info() << "after";
    EXPECT_EQ(count, 1);
    EXPECT_THROW(addSink(nullptr), std::invalid_argument);
    EXPECT_THROW(std::ignore = makeCallbackSink({}), std::invalid_argument);
}

TEST(Log, SinkThatThrowsDoesNotKeepTheRecordFromOthers)
{
    const auto throwing = makeCallbackSink([](const Record&) { throw std::runtime_error("full"); });
    addSink(throwing);
    const Capture capture;
    info() << "still here";
    EXPECT_TRUE(capture.contains(Level::Info, QStringLiteral("still here")));
    EXPECT_FALSE(capture.contains(Level::Warning, QStringLiteral("still here")));
    removeSink(throwing);
}

TEST(Log, RecordsOfManyThreadsAreWholeAndInOrder)
{
    constexpr int kThreads = 6;
    constexpr int kRecords = 500;
    const Capture capture;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kRecords; ++i) {
                info() << t << i << "end";
                if (i % 50 == 0) { // sinks come and go meanwhile
                    const Capture brief;
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    int next[kThreads] = {};
    for (const Record& record : capture.records()) {
        const QStringList parts = record.text.split(QLatin1Char(' '));
        ASSERT_EQ(parts.size(), 3) << qPrintable(record.text);
        const int thread = parts[0].toInt();
        ASSERT_LT(thread, kThreads);
        EXPECT_EQ(parts[1].toInt(), next[thread]++);
        EXPECT_EQ(parts[2], QStringLiteral("end"));
    }
    for (const int count : next) {
        EXPECT_EQ(count, kRecords);
    }
}

TEST(StderrSink, WritesOneLineEachFromItsLevelUp)
{
    const auto sink = makeStderrSink(Level::Warning, false);
    addSink(sink);
    testing::internal::CaptureStderr();
    step() << "hidden: a step";
    Streamer(Level::Info, "a.cpp", 1) << "hidden";
    Streamer(Level::Warning, "dir/b.cpp", 23) << "100% {} two\nlines\x1b[31m ü";
    Streamer(Level::Important, "c.cpp", 4) << "shown";
    removeSink(sink);
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "[6] b:23 100% {} two lines [31m ü\n[7] c:4 shown\n");
}

TEST(RotatingFileSink, KeepsTheNewestRecordsInTheNumberOfFilesAllowed)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("sub/lumo.log"));
    QString error;
    const auto sink = makeRotatingFileSink(path, Level::Info, 1000, 2, error);
    ASSERT_TRUE(sink) << qPrintable(error);
    EXPECT_TRUE(error.isEmpty());
    for (int i = 0; i < 100; ++i) {
        sink->write({Level::Info, QStringLiteral("source"), i, QStringLiteral("text")});
        sink->write({Level::Debug, QStringLiteral("source"), i, QStringLiteral("hidden")});
    }

    QDir kept(folder.filePath(QStringLiteral("sub")));
    EXPECT_EQ(
        kept.entryList(QDir::Files, QDir::Name),
        QStringList({"lumo.1.log", "lumo.2.log", "lumo.log"}));
    QStringList lines;
    for (const char* name : {"lumo.2.log", "lumo.1.log", "lumo.log"}) {
        EXPECT_LE(QFileInfo(kept.filePath(name)).size(), 1000);
        lines += linesOf(kept.filePath(name));
    }
    ASSERT_GT(lines.size(), 20);
    const QRegularExpression form(QStringLiteral(
        "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} \\[3\\] source:(\\d+) text$"));
    for (int i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(form.match(lines[i]).captured(1).toInt(), 100 - lines.size() + i)
            << qPrintable(lines[i]);
    }
}

TEST(RotatingFileSink, SaysWhyItCannotBeMade)
{
    const QTemporaryDir folder;
    QFile blocker(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    const QString path = folder.filePath(QStringLiteral("file/lumo.log"));
    QString error;
    EXPECT_FALSE(makeRotatingFileSink(path, Level::Info, 1000, 2, error));
    EXPECT_TRUE(error.startsWith(path + QStringLiteral(": ")) && error.contains("Not a directory"))
        << qPrintable(error);
    EXPECT_FALSE(
        makeRotatingFileSink(folder.filePath(QStringLiteral("a")), Level::Info, 0, 2, error));
    EXPECT_TRUE(error.contains(QStringLiteral("size limit"))) << qPrintable(error);
}

} // namespace lumo::log
