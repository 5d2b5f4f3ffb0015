// SPDX-License-Identifier: Apache-2.0
// Keeps the system awake until it is killed; says when it has begun.
#include "lumo/power/power_save.h"

#include <QCoreApplication>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    lumo::system::disablePowerSave();
    std::puts("asked");
    std::fflush(stdout);
    pause();
}
