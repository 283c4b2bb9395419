#pragma once

#include "platform/LinkPorts.h"

#include <memory>
#include <string>

namespace drx9 {

/// The USB bridges: the vendor's library SiUSBXp, looked for in the program's folder and then where the
/// system keeps its libraries; where there is none or it lacks a function, the bridges that the system shows
/// as serial ports.
class QtUsbBridge : public UsbBridge {
public:
    explicit QtUsbBridge(const std::string& programFolder);
    ~QtUsbBridge() override;

    int SI_GetNumDevices(std::uint32_t& count) override { return driver_->SI_GetNumDevices(count); }
    int SI_GetProductString(std::uint32_t index, std::string& text, int option) override {
        return driver_->SI_GetProductString(index, text, option);
    }
    int SI_Open(std::uint32_t index, std::int32_t& handle) override {
        return driver_->SI_Open(index, handle);
    }
    int SI_SetBaudRate(std::int32_t handle, std::uint32_t baud) override {
        return driver_->SI_SetBaudRate(handle, baud);
    }
    int SI_Close(std::int32_t handle) override { return driver_->SI_Close(handle); }
    int SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) override {
        return driver_->SI_FlushBuffers(handle, transmit, receive);
    }
    int SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) override {
        return driver_->SI_Write(handle, bytes, written);
    }
    int SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count,
                std::uint32_t& read) override {
        return driver_->SI_Read(handle, buffer, count, read);
    }
    [[nodiscard]] bool isGone(std::int32_t handle) const override { return driver_->isGone(handle); }
    [[nodiscard]] std::string reason() const override { return driver_->reason(); }

    /// Path of the library in use; empty when bridges are driven as serial ports.
    [[nodiscard]] const std::string& library() const { return library_; }

private:
    std::unique_ptr<UsbBridge> driver_;
    std::string library_;
};

} // namespace drx9
