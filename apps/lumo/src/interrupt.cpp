// SPDX-License-Identifier: Apache-2.0
#include "interrupt.h"

#include <csignal>

namespace lumo::program {
namespace {

volatile std::sig_atomic_t stopAsked = 0;

void askForStop(int)
{
    stopAsked = 1;
    std::signal(SIGINT, SIG_DFL);
}

} // namespace

void catchInterrupt()
{
    std::signal(SIGINT, askForStop);
}

bool interrupted()
{
    return stopAsked != 0;
}

} // namespace lumo::program
