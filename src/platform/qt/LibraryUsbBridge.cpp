#include "platform/qt/LibraryUsbBridge.h"

#include <algorithm>

namespace drx9 {

namespace {

constexpr int kInvalidHandle = 1; // the library's own result for it

} // namespace

template<class Function>
bool LibraryUsbBridge::resolve(Function& function, const char* name) {
    function = reinterpret_cast<Function>(library_.resolve(name));
    return function != nullptr;
}

bool LibraryUsbBridge::resolveAll() {
    return resolve(call_.getNumDevices, "SI_GetNumDevices") &&
           resolve(call_.getProductString, "SI_GetProductString") && resolve(call_.open, "SI_Open") &&
           resolve(call_.close, "SI_Close") && resolve(call_.setBaudRate, "SI_SetBaudRate") &&
           resolve(call_.flushBuffers, "SI_FlushBuffers") && resolve(call_.write, "SI_Write") &&
           resolve(call_.read, "SI_Read");
}

std::unique_ptr<LibraryUsbBridge> LibraryUsbBridge::load(const std::string& path) {
    std::unique_ptr<LibraryUsbBridge> bridge(new LibraryUsbBridge);
    bridge->library_.setFileName(QString::fromStdString(path));
    if (!bridge->library_.load() || !bridge->resolveAll()) {
        return nullptr;
    }
    return bridge;
}

void* LibraryUsbBridge::deviceOf(std::int32_t handle) const {
    const auto found = open_.find(handle);
    return found == open_.end() ? nullptr : found->second;
}

int LibraryUsbBridge::SI_GetNumDevices(std::uint32_t& count) {
    count = 0;
    return call_.getNumDevices(&count);
}

int LibraryUsbBridge::SI_GetProductString(std::uint32_t index, std::string& text, int option) {
    char buffer[256] = {};
    const int status = call_.getProductString(index, buffer, static_cast<Dword>(option));
    buffer[255] = '\0';
    text = buffer;
    return status;
}

int LibraryUsbBridge::SI_Open(std::uint32_t index, std::int32_t& handle) {
    void* device = nullptr;
    handle = 0;
    const int status = call_.open(index, &device);
    if (status == 0) {
        handle = ++lastHandle_;
        open_[handle] = device;
    }
    return status;
}

int LibraryUsbBridge::SI_SetBaudRate(std::int32_t handle, std::uint32_t baud) {
    return open_.count(handle) == 0 ? kInvalidHandle : call_.setBaudRate(deviceOf(handle), baud);
}

int LibraryUsbBridge::SI_Close(std::int32_t handle) {
    if (open_.count(handle) == 0) {
        return kInvalidHandle;
    }
    const int status = call_.close(deviceOf(handle));
    open_.erase(handle);
    return status;
}

int LibraryUsbBridge::SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) {
    return open_.count(handle) == 0 ? kInvalidHandle
                                    : call_.flushBuffers(deviceOf(handle), transmit, receive);
}

int LibraryUsbBridge::SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) {
    written = 0;
    if (open_.count(handle) == 0) {
        return kInvalidHandle;
    }
    std::string copy(bytes); // the library takes a buffer that it may write to
    return call_.write(deviceOf(handle), copy.data(), static_cast<Dword>(copy.size()), &written, nullptr);
}

int LibraryUsbBridge::SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count,
                              std::uint32_t& read) {
    read = 0;
    if (open_.count(handle) == 0) {
        return kInvalidHandle;
    }
    const int status = call_.read(deviceOf(handle), buffer, count, &read, nullptr);
    read = std::min(read, count);
    return status;
}

} // namespace drx9
