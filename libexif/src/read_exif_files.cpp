// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/read_exif_files.h"

#include "lumo/exif/read_exif.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace lumo::exif {
namespace {

constexpr int kAheadPerThread = 64;

FileMetadata readOne(const QString& path)
{
    FileMetadata file;
    file.path = path;
    static_cast<void>(readExif(path, file.exif, file.notes, file.error));
    return file;
}

/// Files that threads read ahead, in the order of the list.
class ReadAhead
{
public:
    ReadAhead(const QStringList& paths, int threads)
        : m_paths(paths)
        , m_window(threads * kAheadPerThread)
    {
        for (int i = 0; i < threads; ++i) {
            m_threads.emplace_back([this] { work(); });
        }
    }
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stopped = true;
        }
        m_roomOrStop.notify_all();
        for (std::thread& thread : m_threads) {
            thread.join();
        }
    }

    /// The next file; waits until it is read.
    [[nodiscard]] FileMetadata next()
    {
        std::unique_lock lock(m_mutex);
        m_read.wait(lock, [this] { return !m_files.empty() && m_files.front().has_value(); });
        FileMetadata file = std::move(*m_files.front());
        m_files.pop_front();
        ++m_first;
        lock.unlock();
        m_roomOrStop.notify_one();
        return file;
    }

private:
    void work()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_roomOrStop.wait(lock, [this] {
                return m_stopped || begun() == m_paths.size() || begun() - m_first < m_window;
            });
            if (m_stopped || begun() == m_paths.size()) {
                return;
            }
            const int index = begun();
            m_files.emplace_back();
            lock.unlock();
            FileMetadata file = readOne(m_paths[index]);
            lock.lock();
            m_files[static_cast<std::size_t>(index - m_first)] = std::move(file);
            m_read.notify_one();
        }
    }

    /// How many files were begun.
    [[nodiscard]] int begun() const { return m_first + static_cast<int>(m_files.size()); }

    const QStringList& m_paths;
    const int m_window;
    std::mutex m_mutex;
    std::condition_variable m_read;
    std::condition_variable m_roomOrStop;
    std::deque<std::optional<FileMetadata>> m_files; ///< begun and not handed on
    int m_first = 0;                                 ///< index of the first of them
    bool m_stopped = false;
    std::vector<std::thread> m_threads;
};

} // namespace

void readExifFiles(
    const QStringList& paths, int threads, const std::function<bool(FileMetadata&)>& take)
{
    const int used = std::min(threads, static_cast<int>(paths.size()));
    if (used <= 1) {
        for (const QString& path : paths) {
            FileMetadata file = readOne(path);
            if (!take(file)) {
                return;
            }
        }
        return;
    }
    ReadAhead ahead(paths, used);
    for (int i = 0; i < paths.size(); ++i) {
        FileMetadata file = ahead.next();
        if (!take(file)) {
            return;
        }
    }
}

} // namespace lumo::exif
