// SPDX-License-Identifier: Apache-2.0
#include "input/file_listing.h"

#include "show/output.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>

#include <filesystem>
#include <system_error>

namespace lumo::program {
namespace {

/// Files that are read beside images, and the notes on a file that macOS leaves on cards.
bool isCompanion(const QString& name)
{
    return name == QLatin1String("sequoia_therm.dat") || name.startsWith(QLatin1String("._"));
}

/// Below one argument that is a folder.
class FolderListing
{
public:
    FolderListing(const NameFilter& wanted, const PathFailure& failed)
        : m_wanted(wanted)
        , m_failed(failed)
    {}

    void list(const QString& folder)
    {
        if (!QFileInfo(folder).isReadable() || !QFileInfo(folder).isExecutable()) {
            fail(folder, QStringLiteral("The folder cannot be read"));
            return;
        }
        // System: links that lead nowhere, too.
        const QFileInfoList entries = QDir(folder).entryInfoList(
            QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
        for (const QFileInfo& entry : entries) {
            if (!entry.isDir()) {
                take(entry);
            } else if (!entry.isSymLink()) {
                list(entry.filePath());
            }
        }
        findUndecodable(folder);
    }

    [[nodiscard]] const QStringList& files() const { return m_files; }
    [[nodiscard]] bool foundNothing() const { return m_files.isEmpty() && !m_hasFailed; }

    /// "left out 12 files of other kinds: 8 .mp4, 3 .txt, 1 without an ending"; empty if
    /// none was.
    [[nodiscard]] QString leftOut() const
    {
        constexpr int kMostNamed = 5;
        QStringList kinds;
        int files = 0;
        int unnamed = 0;
        for (auto kind = m_leftOut.begin(); kind != m_leftOut.end(); ++kind) {
            files += kind.value();
            if (kinds.size() < kMostNamed) {
                kinds += kind.key().isEmpty()
                             ? QStringLiteral("%1 without an ending").arg(kind.value())
                             : QStringLiteral("%1 .%2").arg(kind.value()).arg(kind.key());
            } else {
                unnamed += kind.value();
            }
        }
        if (unnamed > 0) {
            kinds += QStringLiteral("%1 others").arg(unnamed);
        }
        return files == 0 ? QString()
                          : QStringLiteral("left out %1 %2 of other kinds: %3")
                                .arg(files)
                                .arg(files == 1 ? "file" : "files", kinds.join(", "));
    }

private:
    /// Qt leaves out what it has no name for, which may be a whole flight.
    void findUndecodable(const QString& folder)
    {
        std::error_code fault;
        const std::filesystem::path path(QFile::encodeName(folder).toStdString());
        std::filesystem::directory_iterator entry(path, fault);
        while (!fault && entry != std::filesystem::directory_iterator()) {
            const QByteArray bytes = QByteArray::fromStdString(entry->path().filename().string());
            const QString name = QFile::decodeName(bytes);
            std::error_code unknown;
            if (QFile::encodeName(name) != bytes &&
                (entry->is_directory(unknown) || m_wanted(name))) {
                fail(QDir(folder).filePath(name), QStringLiteral("The name is not valid UTF-8"));
            }
            entry.increment(fault);
        }
        if (fault) {
            fail(folder, QString::fromStdString(fault.message()));
        }
    }

    void take(const QFileInfo& entry)
    {
        if (!m_wanted(entry.fileName())) {
            if (!isCompanion(entry.fileName())) {
                ++m_leftOut[entry.suffix().toLower()];
            }
            return;
        }
        if (!entry.exists()) {
            fail(entry.filePath(), QStringLiteral("The link leads nowhere"));
        } else if (entry.isFile()) {
            m_files.append(entry.filePath());
        }
    }

    void fail(const QString& path, const QString& reason)
    {
        m_failed(path, reason);
        m_hasFailed = true;
    }

    const NameFilter& m_wanted;
    const PathFailure& m_failed;
    QStringList m_files;
    QMap<QString, int> m_leftOut; ///< number of files by their ending
    bool m_hasFailed = false;
};

} // namespace

QStringList listFiles(
    const QStringList& arguments, const NameFilter& wanted, const PathFailure& failed)
{
    QStringList files;
    for (const QString& argument : arguments) {
        const QFileInfo path(argument);
        if (!path.exists()) {
            failed(argument, QStringLiteral("No such file or folder"));
        } else if (path.isDir()) {
            FolderListing folder(wanted, failed);
            folder.list(argument);
            if (folder.foundNothing()) {
                sayRemark(argument, QStringLiteral("the folder contains no files of this kind"));
            }
            if (!folder.leftOut().isEmpty()) {
                sayRemark(argument, folder.leftOut());
            }
            files += folder.files();
        } else {
            files.append(argument);
        }
    }
    return files;
}

} // namespace lumo::program
