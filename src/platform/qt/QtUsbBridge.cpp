#include "platform/qt/QtUsbBridge.h"

#include "platform/qt/LibraryUsbBridge.h"
#include "platform/qt/SerialUsbBridge.h"

namespace drx9 {

namespace {

constexpr char kLibrary[] = "SiUSBXp";

/// The library in the folder, under the system's name for one.
std::string libraryIn(const std::string& folder) {
#if defined(_WIN32)
    return folder + "/" + kLibrary + ".dll";
#elif defined(__APPLE__)
    return folder + "/lib" + kLibrary + ".dylib";
#else
    return folder + "/lib" + kLibrary + ".so";
#endif
}

} // namespace

QtUsbBridge::QtUsbBridge(const std::string& programFolder) {
    std::unique_ptr<LibraryUsbBridge> library = LibraryUsbBridge::load(libraryIn(programFolder));
    if (!library) {
        library = LibraryUsbBridge::load(kLibrary);
    }
    if (library) {
        library_ = library->path();
        driver_ = std::move(library);
    } else {
        driver_ = std::make_unique<SerialUsbBridge>(presentBridgePorts);
    }
}

QtUsbBridge::~QtUsbBridge() = default;

} // namespace drx9
