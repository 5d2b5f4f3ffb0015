// SPDX-License-Identifier: Apache-2.0
#include "large_projects.h"
#include "lumo/core/xml/kpx_conversion_20_21.h"
#include "lumo/core/xml/param_converter.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/core/xml/xslt_converter.h"
#include "lumo/foundation/system.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iomanip>
#include <iostream>

// Time and peak memory of converting a project of 100,000 images, beside what one
// would use instead: xsltproc for a step that a stylesheet does, and a pass of a
// stream reader with a document tree for the hand-written one. Everything runs in a
// process of its own, three times; the fastest counts. Times are
// of the processor: waiting for it or for the disk is left out. With --xmlquery Qt's own
// engine is run too, which takes a minute and several gigabytes.
namespace lumo {
namespace {

constexpr int kImages = 100000;
constexpr int kRuns = 3;
constexpr int kTarget = kpx::kCurrentVersion;

void orFail(bool worked, const QString& error)
{
    if (!worked) {
        std::cerr << qPrintable(error) << '\n';
        std::exit(1);
    }
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    orFail(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), path);
}

// What a process of its own does: from one file to another.

void convertWith(IXmlConversion& conversion, const QString& input, const QString& output)
{
    QFile file(input);
    orFail(file.open(QIODevice::ReadOnly), input);
    write(output, conversion.convert(&file));
}

void runStylesheet(const QString& input, const QString& output, const QString& stylesheet)
{
    XsltConverter converter;
    converter.setXslFile(stylesheet);
    convertWith(converter, input, output);
}

void runLegacyStep(const QString& input, const QString& output, const QString& /*stylesheet*/)
{
    KpxConversion20_21 conversion(KpxConversion20_21::Mode::Project);
    convertWith(conversion, input, output);
}

/// The tree of the same document and its text: what any program that reads a
/// stream and builds a tree has to spend.
void copyThroughTree(const QString& input, const QString& output, const QString& /*stylesheet*/)
{
    QFile file(input);
    orFail(file.open(QIODevice::ReadOnly), input);
    QXmlStreamReader reader(&file);
    QDomDocument document;
    QDomNode open;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            QDomElement element = document.createElement(reader.name().toString());
            for (const QXmlStreamAttribute& attribute : reader.attributes()) {
                element.setAttribute(attribute.name().toString(), attribute.value().toString());
            }
            open = (open.isNull() ? document : open).appendChild(element);
        } else if (reader.isEndElement()) {
            open = open.parentNode();
        } else if (reader.isCharacters() && !reader.isWhitespace()) {
            open.appendChild(document.createTextNode(reader.text().toString()));
        }
    }
    write(output, document.toByteArray(2));
}

void runChain(const QString& input, const QString& output, const QString& /*stylesheet*/)
{
    ParamConverter converter(input, kTarget);
    QString error;
    orFail(converter.convert(output, error), error);
}

struct Task
{
    const char* name;
    void (*run)(const QString& input, const QString& output, const QString& stylesheet);
};

constexpr Task kTasks[] = {
    {"stylesheet", &runStylesheet},
    {"legacy", &runLegacyStep},
    {"tree", &copyThroughTree},
    {"chain", &runChain},
};

// The parent.

struct Cost
{
    double seconds = 0.0; ///< of the processor
    double peakMiB = 0.0;
};

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

Cost runOnce(const std::vector<QByteArray>& command)
{
    std::vector<char*> arguments;
    for (const QByteArray& argument : command) {
        arguments.push_back(const_cast<char*>(argument.constData()));
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    rusage usage{};
    const bool good =
        posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0 &&
        wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    orFail(good, QString::fromUtf8(command[0]) + " failed");
    return {
        seconds(usage.ru_utime) + seconds(usage.ru_stime),
        static_cast<double>(usage.ru_maxrss) / 1024.0};
}

/// The fastest of several runs, and its memory.
Cost cost(const std::vector<QByteArray>& command, int runs = kRuns)
{
    Cost best = runOnce(command);
    for (int i = 1; i < runs; ++i) {
        const Cost next = runOnce(command);
        best = next.seconds < best.seconds ? next : best;
    }
    return best;
}

void print(const std::string& what, const Cost& ours, const Cost& others)
{
    std::cout << std::left << std::setw(28) << what << std::right << std::fixed
              << std::setprecision(2) << std::setw(8) << ours.seconds << " s" << std::setw(8)
              << others.seconds << " s" << std::setw(8) << ours.seconds / others.seconds
              << std::setprecision(0) << std::setw(8) << ours.peakMiB << " MiB" << std::setw(6)
              << others.peakMiB << " MiB" << std::setprecision(2) << std::setw(8)
              << ours.peakMiB / others.peakMiB << std::endl;
}

QByteArray stylesheet(int from)
{
    return QStringLiteral("%1/resources/xsl/%2/lumo.xsl")
        .arg(system::applicationDirectory())
        .arg(from)
        .toUtf8();
}

/// The same stylesheet in the version of the language that sends it to the other engine.
QByteArray secondVersion(const QByteArray& path, const QTemporaryDir& folder)
{
    QFile file(QString::fromUtf8(path));
    orFail(file.open(QIODevice::ReadOnly), file.fileName());
    const QString copy = folder.filePath("second.xsl");
    write(copy, file.readAll().replace("stylesheet version=\"1.0\"", "stylesheet version=\"2.0\""));
    return copy.toUtf8();
}

void compare(const QByteArray& self, bool withXmlQuery)
{
    const QTemporaryDir folder;
    const auto path = [&](const char* name) { return folder.filePath(name).toUtf8(); };
    write(path("2.0"), benchmarks::projectOfVersion20(kImages));
    write(path("0"), benchmarks::projectOfFormat0(kImages));
    std::cout << "project of " << static_cast<double>(QFile(path("0")).size()) / 1e6
              << " MB, ours and other\n";
    const Cost legacy = cost({self, "legacy", path("2.0"), path("out"), ""});
    print(
        "step to 0, tree of its result", legacy,
        cost({self, "tree", path("out"), path("tree"), ""}));
    Cost largest; // memory of one step, time of all
    for (int from = 0; from < kTarget; ++from) {
        const QByteArray input = path(std::to_string(from).c_str());
        const QByteArray output = path(std::to_string(from + 1).c_str());
        const Cost ours = cost({self, "stylesheet", input, output, stylesheet(from)});
        const Cost other = cost({"xsltproc", "-o", path("out"), stylesheet(from), input});
        print(
            "step " + std::to_string(from) + " to " + std::to_string(from + 1) + ", xsltproc", ours,
            other);
        largest.seconds += other.seconds;
        largest.peakMiB = std::max(largest.peakMiB, other.peakMiB);
        if (withXmlQuery) {
            const QByteArray second = secondVersion(stylesheet(from), folder);
            print(
                "the same, QXmlQuery", ours,
                cost({self, "stylesheet", input, path("out"), second}, 1));
        }
    }
    print("0 to 3, xsltproc", cost({self, "chain", path("0"), path("out"), ""}), largest);
    print(
        "2.0 to 3, xsltproc 0 to 3", cost({self, "chain", path("2.0"), path("out"), ""}), largest);
}

} // namespace
} // namespace lumo

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    lumo::registerXmlConverters();
    if (arguments.size() <= 2) {
        lumo::compare(argv[0], arguments.contains("--xmlquery"));
        return 0;
    }
    lumo::orFail(arguments.size() == 5, "TASK INPUT OUTPUT STYLESHEET");
    for (const lumo::Task& task : lumo::kTasks) {
        if (arguments[1] == task.name) {
            task.run(arguments[2], arguments[3], arguments[4]);
            return 0;
        }
    }
    return 1;
}
