// SPDX-License-Identifier: Apache-2.0
#include "show/progress_bar.h"

#include "lumo/processing/processing_blob.h"

#include <QString>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <mutex>

namespace lumo::program {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kFirstAfter{1};
constexpr int kBarWidth = 30;

/// Progress may come from any thread.
std::mutex lineMutex;
bool lineShown = false;

void hideLine()
{
    if (lineShown) {
        std::fputs("\r\033[K", stderr);
        lineShown = false;
    }
}

void showLine(const Progress& progress)
{
    const std::lock_guard lock(lineMutex);
    hideLine();
    if (progress.percent >= 100) {
        return;
    }
    const QString bar = QString(progress.percent * kBarWidth / 100, QLatin1Char('#'))
                            .leftJustified(kBarWidth, QLatin1Char('.'));
    const QString line =
        QStringLiteral("%1 [%2] %3 %").arg(progress.text, bar).arg(progress.percent);
    std::fputs(line.toLocal8Bit().constData(), stderr);
    lineShown = true;
}

} // namespace

ProgressBar::ProgressBar()
    : m_listener(ProcessingBlob::instance().addListener(
          [terminal = isatty(STDERR_FILENO) != 0, begin = Clock::now()](const Progress& progress) {
              if (terminal && Clock::now() - begin >= kFirstAfter) {
                  showLine(progress);
              }
          }))
{}

ProgressBar::~ProgressBar()
{
    ProcessingBlob::instance().removeListener(m_listener);
    hideProgressBar();
}

void hideProgressBar()
{
    const std::lock_guard lock(lineMutex);
    hideLine();
}

} // namespace lumo::program
