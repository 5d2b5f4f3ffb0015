// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace lumo::program {

/// While it lives, one line on the standard error stream shows the progress that
/// is reported to the progress service: only where that stream is a terminal,
/// only after the first second, and only until 100 %. There is one at a time.
class ProgressBar
{
public:
    ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar(); ///< removes the line

private:
    int m_listener;
};

/// Removes the line, so that something else can be written; it comes back with
/// the next progress. May be called from any thread, and without a bar.
void hideProgressBar();

} // namespace lumo::program
