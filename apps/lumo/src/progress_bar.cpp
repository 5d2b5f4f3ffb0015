// SPDX-License-Identifier: Apache-2.0
#include "progress_bar.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace lumo::program {
namespace {

constexpr qint64 kFirstAfterMs = 1000;
constexpr qint64 kThenEveryMs = 100;
constexpr int kBarWidth = 30;

} // namespace

ProgressBar::ProgressBar(QString text, std::size_t total)
    : m_text(std::move(text))
    , m_total(total)
    , m_terminal(isatty(STDERR_FILENO) != 0)
    , m_nextAt(kFirstAfterMs)
{
    m_timer.start();
}

ProgressBar::~ProgressBar()
{
    clear();
}

void ProgressBar::advance()
{
    ++m_done;
    if (!m_terminal || m_timer.elapsed() < m_nextAt) {
        return;
    }
    m_nextAt = m_timer.elapsed() + kThenEveryMs;
    const int filled = static_cast<int>(m_done * kBarWidth / m_total);
    const QString bar =
        QString(filled, QLatin1Char('#')).leftJustified(kBarWidth, QLatin1Char('.'));
    const QString line =
        QStringLiteral("\r%1 [%2] %3/%4").arg(m_text, bar).arg(m_done).arg(m_total);
    std::fputs(line.toLocal8Bit().constData(), stderr);
    m_shown = true;
}

void ProgressBar::clear()
{
    if (m_shown) {
        std::fputs("\r\033[K", stderr);
        m_shown = false;
    }
}

} // namespace lumo::program
