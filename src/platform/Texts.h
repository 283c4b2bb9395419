#pragma once

/// Reasons that the ports give for people. "{}" stands for what `filled` puts in. Each has an entry in the
/// manual.
namespace drx9::platformText {

// Serial ports.
inline constexpr const char* kNoSerialDevice = "There is no serial device for COM{}.";
inline constexpr const char* kNoSettings = "Not the settings of a serial port: {}";
inline constexpr const char* kMapInManager =
    "{} is none of COM1 to COM9: give it a number from 1 to 9 in the Device Manager.";
inline constexpr const char* kMapByLink = "{} is none of COM1 to COM9. Make a link to it: ln -sfn {} \"{}\"";
inline constexpr const char* kDeviceGone = "{} is not there: is the adapter plugged in?";
inline constexpr const char* kDeviceInUse = "{} is in use by another program.";
inline constexpr const char* kNoPermission =
    "{} belongs to group {}: sudo usermod -a -G {} {}, then log in again.";

// Sockets.
inline constexpr const char* kNoAddress = "No valid address: \"{}\" port {}";
inline constexpr const char* kConnectionClosed = "Connection closed";

// Files.
inline constexpr const char* kUnknownError = "unknown error";
inline constexpr const char* kErrorNumber = "error {}";
inline constexpr const char* kFileShorter = "the file has become shorter";
inline constexpr const char* kWriteProtected = "The file is write-protected";
inline constexpr const char* kTooManyTemporaries = "Too many temporary files are left in the folder";
inline constexpr const char* kTemporaryLeft = "{} ({} is left: {})"; ///< the reason, the file, its own reason

// Documents and programs that are started.
inline constexpr const char* kNoSuchFile = "{}: there is no such file.";
inline constexpr const char* kNotReadable = "{}: no permission to read it.";
inline constexpr const char* kNoProgramForIt = "{}: no program is associated with this kind of file.";
inline constexpr const char* kNotAProgram = "{} is not a program that can be run here.";
inline constexpr const char* kProgramNotFound = "{} was not found.";
inline constexpr const char* kProgramNowhere = "{} was not found, neither in {} nor where programs are kept.";
inline constexpr const char* kProgramNotStarted = "{} could not be started: {}.";

// Printing.
inline constexpr const char* kPrinterRefuses = "the printer does not take it";

// To those who look after the program.
inline constexpr const char* kLoopAboveWait =
    "An event loop runs above a wait for the instrument and holds it up.";

} // namespace drx9::platformText
