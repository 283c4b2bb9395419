#pragma once

#include <cstdint>

// The functions of the USB bridge's library, as far as the operator's program declares them. A double word is
// 32 bits on every system. Every function returns 0 for success. Handles are opaque; one is good from SI_Open
// to SI_Close.

#if defined(_WIN32)
#define DRX9_USB_API __declspec(dllexport)
#define DRX9_USB_CALL __stdcall
#else
#define DRX9_USB_API __attribute__((visibility("default")))
#define DRX9_USB_CALL
#endif

extern "C" {

/// How many devices are attached.
DRX9_USB_API int DRX9_USB_CALL SI_GetNumDevices(std::uint32_t* count);
/// `text` takes up to 256 bytes, zero-terminated: option 0 the serial number, option 4 the product
/// identifier.
DRX9_USB_API int DRX9_USB_CALL SI_GetProductString(std::uint32_t index, void* text, std::uint32_t option);
DRX9_USB_API int DRX9_USB_CALL SI_Open(std::uint32_t index, void** handle);
DRX9_USB_API int DRX9_USB_CALL SI_Close(void* handle);
DRX9_USB_API int DRX9_USB_CALL SI_SetBaudRate(void* handle, std::uint32_t baud);
/// Throws away what waits to be sent and to be read, where the flag is not 0.
DRX9_USB_API int DRX9_USB_CALL SI_FlushBuffers(void* handle, unsigned char transmit, unsigned char receive);
DRX9_USB_API int DRX9_USB_CALL SI_Write(void* handle, void* buffer, std::uint32_t bytes,
                                        std::uint32_t* written, void* overlapped);
/// Returns at once; `*read` is 0 when no bytes wait.
DRX9_USB_API int DRX9_USB_CALL SI_Read(void* handle, void* buffer, std::uint32_t bytes, std::uint32_t* read,
                                       void* overlapped);

// Declared by the program and never called.
DRX9_USB_API int DRX9_USB_CALL SI_GetPartNumber(void* handle, unsigned char* part);
DRX9_USB_API int DRX9_USB_CALL SI_SetTimeouts(std::uint32_t read, std::uint32_t write);
DRX9_USB_API int DRX9_USB_CALL SI_GetTimeouts(std::uint32_t* read, std::uint32_t* write);
DRX9_USB_API int DRX9_USB_CALL SI_SetLineControl(void* handle, std::uint16_t control);
DRX9_USB_API int DRX9_USB_CALL SI_SetFlowControl(void* handle, unsigned char cts, unsigned char rts,
                                                 unsigned char dtr, unsigned char dsr, unsigned char dcd,
                                                 int xonXoff);
DRX9_USB_API int DRX9_USB_CALL SI_GetModemmlStatus(void* handle, unsigned char* lines); // kept: its spelling
DRX9_USB_API int DRX9_USB_CALL SI_CheckRXQueue(void* handle, std::uint32_t* bytes, std::uint32_t* state);
}
