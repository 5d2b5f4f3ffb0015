/* SPDX-License-Identifier: Apache-2.0 */
/* Prints all CUDA devices, or why there is none. Needs nothing but liblumocuda. */
#include "lumo/lumocuda/gxc.h"

#include <stdio.h>

static void say(enum gxcLogLevel level, const char* message)
{
    fprintf(stderr, "%s: %s\n", level == GxcLogWarning ? "warning" : "info", message);
}

int main(int argc, char** argv)
{
    char text[512];
    int i;
    if (argc > 1) {
        gxcUseDriverLibrary(argv[1]);
    }
    gxcSetLoggerCallback(say);
    if (gxcGetCudaStatus() != GxcStatusAvailable) {
        gxcGetCudaStatusText(text, sizeof text);
        printf("status %d: %s\n", gxcGetCudaStatus(), text);
    }
    for (i = 0; i < gxcGetDeviceCount(); ++i) {
        gxcGetDeviceName(i, text, sizeof text);
        printf(
            "device %d: %s, %d MHz, %.2f MB, kernel time limit %d\n", i, text, gxcGetClockRate(i),
            (double)gxcGetGlobalMemory(i), gxcRunTimeLimitOnKernels(i));
    }
    printf("active device: %d\n", gxcGetActiveDevice());
    gxcCudaResetAllDevices();
    return 0;
}
