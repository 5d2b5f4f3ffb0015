/* SPDX-License-Identifier: Apache-2.0 */
#ifndef LUMO_LUMOCUDA_GXC_H
#define LUMO_LUMOCUDA_GXC_H

#include "lumo/lumocuda/export.h"

#include <stddef.h>
#include <stdint.h>

/*
 * The CUDA devices of this machine, for C and C++.
 *
 * The driver library is opened by the first function that asks for devices,
 * never earlier, and all that is told about them is read then, once: a device
 * that is added later is not seen. Without a driver or a device there are zero
 * devices and the status is not 0; that is no error. Devices are numbered from 0
 * in the driver's order.
 *
 * What the driver refuses for one device is logged and does not touch the others.
 * All functions may be called from any thread.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* Values of gxcGetCudaStatus beside those of the driver itself, which are positive. */
enum {
    GxcStatusAvailable = 0,
    GxcStatusNoLibrary = -1,       /* the driver library cannot be opened */
    GxcStatusMissingFunction = -2, /* it lacks a function that is needed here */
    GxcStatusDriverTooOld = -3,    /* older than CUDA 7.0 */
    GxcStatusInvalidDevice = -4    /* there is no device of this number */
};

/* Number of devices; 0 if there is none or no driver. */
LUMO_LUMOCUDA_EXPORT int gxcGetDeviceCount(void);

/* Fills `buffer` with the device's name, cut to `size` bytes with the zero at its
 * end; "unknown device" if the driver does not tell it, empty if there is no such
 * device. Does nothing if `size` is 0.
 * Returns 0, or why the name is not known: GxcStatusInvalidDevice or what the
 * driver said. */
LUMO_LUMOCUDA_EXPORT int gxcGetDeviceName(int device, char* buffer, size_t size);

/* Clock rate in MHz; 0 if unknown or if there is no such device. */
LUMO_LUMOCUDA_EXPORT int gxcGetClockRate(int device);

/* Memory in MB of 2^20 bytes, rounded down to 1/1024 MB, so that what is below a
 * whole number of MB never reads as that number; 0 if unknown or if there is no
 * such device. */
LUMO_LUMOCUDA_EXPORT float gxcGetGlobalMemory(int device);

/* 1 if the driver ends kernels that run too long, 0 if it does not, -1 if unknown
 * or if there is no such device. */
LUMO_LUMOCUDA_EXPORT int gxcRunTimeLimitOnKernels(int device);

/* GxcStatusAvailable if there is a device to work with, else why there is none. */
LUMO_LUMOCUDA_EXPORT int gxcGetCudaStatus(void);

/* The status in words, cut to `size` bytes with the zero at its end; empty if it
 * is GxcStatusAvailable. Does nothing if `size` is 0. */
LUMO_LUMOCUDA_EXPORT void gxcGetCudaStatusText(char* buffer, size_t size);

/* Which devices processing may use: bit i stands for device i. All bits are set
 * until somebody sets the word. Neither opens the driver library. */
LUMO_LUMOCUDA_EXPORT void gxcSetGPUFlags(uint64_t flags);
LUMO_LUMOCUDA_EXPORT uint64_t gxcGetGPUFlags(void);

/* Destroys the primary context of every device, with all memory and modules in it,
 * for the whole process: nothing may be running on a device. */
LUMO_LUMOCUDA_EXPORT void gxcCudaResetAllDevices(void);

/* The device of the calling thread's current context; -1 if it has none. */
LUMO_LUMOCUDA_EXPORT int gxcGetActiveDevice(void);

enum gxcLogLevel { GxcLogInfo = 0, GxcLogWarning = 1 };

/* Receives one line of UTF-8 without line feed, valid during the call. It is called
 * on the thread that called this library, which holds no lock then, and must not
 * throw. */
typedef void (*gxcLogger)(enum gxcLogLevel level, const char* message);

/* Where messages go; NULL: nowhere for now. What was to be said while there was no
 * logger is kept and said to the next one, from within this function. */
LUMO_LUMOCUDA_EXPORT void gxcSetLoggerCallback(gxcLogger logger);

/* Uses the driver library at `path` (for dlopen) instead of the system's; NULL: the
 * system's again. What was read of the devices is forgotten, messages that nobody
 * received too, and the flags are all set. For tests, while no other thread uses
 * the devices. */
LUMO_LUMOCUDA_EXPORT void gxcUseDriverLibrary(const char* path);

#ifdef __cplusplus
}
#endif

#endif
