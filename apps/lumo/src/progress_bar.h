// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QString>

#include <cstddef>

namespace lumo::program {

/// One line on the standard error stream that shows how far long work has
/// come: only where that stream is a terminal, and only after the first second.
class ProgressBar
{
public:
    ProgressBar(QString text, std::size_t total);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar(); ///< removes the line

    void advance();
    /// Removes the line, so that a message can be written; it comes back later.
    void clear();

private:
    QString m_text;
    std::size_t m_total;
    std::size_t m_done = 0;
    bool m_terminal;
    bool m_shown = false;
    qint64 m_nextAt; ///< milliseconds on m_timer
    QElapsedTimer m_timer;
};

} // namespace lumo::program
