#pragma once

#include "platform/LinkPorts.h"

#include <QLibrary>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#if defined(_WIN32) && !defined(_WIN64)
#define DRX9_SI_CALL __stdcall
#else
#define DRX9_SI_CALL
#endif

namespace drx9 {

/// The bridge vendor's library, loaded at run time.
class LibraryUsbBridge : public UsbBridge {
public:
    /// Loads the library; null when it is not there or lacks one of the functions.
    static std::unique_ptr<LibraryUsbBridge> load(const std::string& path);

    int SI_GetNumDevices(std::uint32_t& count) override;
    int SI_GetProductString(std::uint32_t index, std::string& text, int option) override;
    int SI_Open(std::uint32_t index, std::int32_t& handle) override;
    int SI_SetBaudRate(std::int32_t handle, std::uint32_t baud) override;
    int SI_Close(std::int32_t handle) override;
    int SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) override;
    int SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) override;
    int SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count, std::uint32_t& read) override;

    [[nodiscard]] std::string path() const { return library_.fileName().toStdString(); }

private:
    using Dword = std::uint32_t;
    struct Functions {
        int(DRX9_SI_CALL* getNumDevices)(Dword*) = nullptr;
        int(DRX9_SI_CALL* getProductString)(Dword, void*, Dword) = nullptr;
        int(DRX9_SI_CALL* open)(Dword, void**) = nullptr;
        int(DRX9_SI_CALL* close)(void*) = nullptr;
        int(DRX9_SI_CALL* setBaudRate)(void*, Dword) = nullptr;
        int(DRX9_SI_CALL* flushBuffers)(void*, unsigned char, unsigned char) = nullptr;
        int(DRX9_SI_CALL* write)(void*, void*, Dword, Dword*, void*) = nullptr;
        int(DRX9_SI_CALL* read)(void*, void*, Dword, Dword*, void*) = nullptr;
    };

    LibraryUsbBridge() = default;
    template<class Function>
    bool resolve(Function& function, const char* name);
    bool resolveAll();
    [[nodiscard]] void* deviceOf(std::int32_t handle) const;

    QLibrary library_;
    Functions call_;
    std::map<std::int32_t, void*> open_; ///< the library's handles are pointers, ours are numbers
    std::int32_t lastHandle_ = 0;
};

} // namespace drx9
