#pragma once

/// What the link and its window tell the operator, apart from captions. "{}" stands for what `filled` puts
/// in. Each has an entry in the manual.
namespace drx9::linkText {

// What an exchange ended in, by its status from 1 on.
inline constexpr const char* kTimeout = "Timeout";
inline constexpr const char* kNoData = "No Data";
inline constexpr const char* kNotReady = "Not Ready";
inline constexpr const char* kBadCommand = "Bad Command";
inline constexpr const char* kBadData = "Bad Data";
inline constexpr const char* kBadMode = "Bad Mode";
inline constexpr const char* kChecksum = "Checksum Error";
inline constexpr const char* kPortNotReady = "Port Not Ready";
inline constexpr const char* kBusy = "Instrument Busy";
inline constexpr const char* kLost = "Lost Communications";
inline constexpr const char* kUnknown = "Unknown Error";

// A reading whose answers do not belong to its commands.
inline constexpr const char* kLateAnswer = "Late answer";
inline constexpr const char* kOutOfStep = "Answers out of step";
inline constexpr const char* kAlsoLate = ", answered late"; ///< behind another failure
inline constexpr const char* kAlsoOutOfStep = ", answers out of step";

// Boxes.
inline constexpr const char* kGetDataError = "Get Data Error";
inline constexpr const char* kGetFilmBusy = "Get Film Error: Busy";
inline constexpr const char* kGetFilmError = "Get Film Error: {}";
inline constexpr const char* kNotFound = "Instrument not found.";
inline constexpr const char* kPortNotAvailable = "Comm Port {} not available.";
inline constexpr const char* kFound = "Found DRX-9 Ver. {}";

// Why there is no link.
inline constexpr const char* kNotFoundBecause = "Instrument not found. ({})";
inline constexpr const char* kPortNotAvailableBecause = "Comm Port {} not available. {}";
inline constexpr const char* kOnlyNinePorts = "Only COM1 to COM9 can be used.";
inline constexpr const char* kPortClosed = "The port closed at once.";
inline constexpr const char* kUsbNone = "No DRX-9 found on USB.";
inline constexpr const char* kUsbOthers = "No DRX-9 with serial number {} among the {} found on USB.";
inline constexpr const char* kUsbRefuses = "The USB device with serial number {} cannot be opened.";
inline constexpr const char* kNoConnection = "No connection to {} port {}: {}";
inline constexpr const char* kNoAnswerInTime = "no answer within 1 s";

// The communications window.
inline constexpr const char* kHoldReason = "DRX-9 Comm Setup is open";
inline constexpr const char* kOtherPortSet = "COM{} is set: choose another";
inline constexpr const char* kNoDevice = "no device";
inline constexpr const char* kBaud = "baud, 8 N 1";
inline constexpr const char* kOtherBaudSet = "{} baud is set";
inline constexpr const char* kNoBridges = "No DRX-9 bridge attached";
inline constexpr const char* kOneBridge = "1 DRX-9 bridge attached";
inline constexpr const char* kBridges = "{} DRX-9 bridges attached";
inline constexpr const char* kListed = ", {} listed: press Find"; ///< behind the number attached
inline constexpr const char* kSerialNumber = "serial number";
inline constexpr const char* kOtherNumberSet = "{} is set: choose one";
inline constexpr const char* kNotTried = "Not tried yet: {}. Find looks for the instrument there.";
inline constexpr const char* kLooking = "Looking for the DRX-9 on {}";
inline constexpr const char* kOnLine = "On line";
inline constexpr const char* kOnLineVersion = "On line: Ver. {}";
inline constexpr const char* kOffLine = "Off line: {}";
inline constexpr const char* kNoAnswer = "Off line: no answer on {}";
inline constexpr const char* kNoLongerOpen = "Off line: {} is no longer open";
inline constexpr const char* kNoAnswerToCommand = "No answer on {} to this command";
inline constexpr const char* kAnswers = "The command was answered. Find connects to the instrument.";
inline constexpr const char* kAccepted = "Accepted, no data";
inline constexpr const char* kStrangeCharacter = "Not sent: \"{}\" is no character of Windows-1252.";
inline constexpr const char* kTooLong = "Not sent: {} characters, the most is {}.";

} // namespace drx9::linkText
