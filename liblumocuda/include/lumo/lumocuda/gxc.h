/* SPDX-License-Identifier: Apache-2.0 */
#ifndef LUMO_LUMOCUDA_GXC_H
#define LUMO_LUMOCUDA_GXC_H

#include "lumo/lumocuda/export.h"

#include <stddef.h>
#include <stdint.h>

/*
 * The CUDA devices of this machine, for C and C++.
 *
 * The first function that needs the devices opens the driver library and reads
 * their properties, once: devices that are added later do not appear. Without a
 * driver or a device there are zero devices and the status is not 0; this is no
 * error. Devices are numbered from 0 in the driver's order.
 *
 * If the driver refuses a request for one device, that is logged and the other
 * devices remain usable. All functions may be called from any thread.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* Values of gxcGetCudaStatus. Positive values are error codes of the driver. */
enum {
    GxcStatusAvailable = 0,
    GxcStatusNoLibrary = -1,       /* the driver library cannot be opened */
    GxcStatusMissingFunction = -2, /* it lacks a function that this library needs */
    GxcStatusDriverTooOld = -3,    /* older than CUDA 7.0 */
    GxcStatusInvalidDevice = -4    /* there is no device of this number */
};

/* Number of devices; 0 if there is none or no driver. */
LUMO_LUMOCUDA_EXPORT int gxcGetDeviceCount(void);

/* Writes the device's name to `buffer`, cut to `size` bytes including the final
 * zero: "unknown device" if the driver refuses to name it, empty if there is no such
 * device. Does nothing if `size` is 0.
 * Returns 0, GxcStatusInvalidDevice, or the driver's error code. */
LUMO_LUMOCUDA_EXPORT int gxcGetDeviceName(int device, char* buffer, size_t size);

/* Clock rate in MHz; 0 if unknown or if there is no such device. */
LUMO_LUMOCUDA_EXPORT int gxcGetClockRate(int device);

/* Memory in MB of 2^20 bytes; 0 if unknown or if there is no such device. Rounded
 * down to 1/1024 MB, so that converting to float never rounds it up to the next
 * whole MB. */
LUMO_LUMOCUDA_EXPORT float gxcGetGlobalMemory(int device);

/* 1 if the driver stops kernels that run too long (as on a GPU that drives a display),
 * 0 if not, -1 if unknown or if there is no such device. */
LUMO_LUMOCUDA_EXPORT int gxcRunTimeLimitOnKernels(int device);

/* GxcStatusAvailable if there is a usable device, else the reason why there is none. */
LUMO_LUMOCUDA_EXPORT int gxcGetCudaStatus(void);

/* Writes the status in words to `buffer`, cut to `size` bytes including the final
 * zero; empty for GxcStatusAvailable. Does nothing if `size` is 0. */
LUMO_LUMOCUDA_EXPORT void gxcGetCudaStatusText(char* buffer, size_t size);

/* The devices that processing may use: bit i is set if it may use device i. All bits
 * are set at first. These functions do not open the driver library. */
LUMO_LUMOCUDA_EXPORT void gxcSetGPUFlags(uint64_t flags);
LUMO_LUMOCUDA_EXPORT uint64_t gxcGetGPUFlags(void);

/* Destroys the primary context of every device, with all memory and modules in it,
 * for the whole process: nothing may be running on a device. */
LUMO_LUMOCUDA_EXPORT void gxcCudaResetAllDevices(void);

/* The device of the calling thread's current context; -1 if it has none. */
LUMO_LUMOCUDA_EXPORT int gxcGetActiveDevice(void);

enum gxcLogLevel { GxcLogInfo = 0, GxcLogWarning = 1 };

/* Receives a message: one line of UTF-8 without line feed, valid during the call. It is
 * called on the thread that called this library; it may call this library, and must
 * not throw. */
typedef void (*gxcLogger)(enum gxcLogLevel level, const char* message);

/* Sets the function that receives messages, or none (NULL). Messages without a receiver
 * are kept, and this function passes them to the next logger. */
LUMO_LUMOCUDA_EXPORT void gxcSetLoggerCallback(gxcLogger logger);

/* Uses the driver library at `path` (a name for dlopen), or the system's again (NULL).
 * Forgets the devices and the messages without a receiver, and sets all flags. For
 * tests, while no other thread uses the devices. */
LUMO_LUMOCUDA_EXPORT void gxcUseDriverLibrary(const char* path);

#ifdef __cplusplus
}
#endif

#endif
