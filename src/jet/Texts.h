#pragma once

/// Reasons that the file engine gives for people, where they can do something about it. "{}" stands for what
/// `filled` puts in. Each has an entry in the manual. Reasons that name a page, a row or an index are said
/// where they are found: all of them mean that the file is damaged.
namespace drx9::jet::jetText {

// Why a file cannot be opened.
inline constexpr const char* kNoSuchFile = "there is no such file";
inline constexpr const char* kNotRead = "it cannot be read: {}";
inline constexpr const char* kNoSize = "the system does not tell its size";
inline constexpr const char* kTooLarge = "it is larger than an Access database can be";
inline constexpr const char* kBeingWritten = "it is being written by another program";
inline constexpr const char* kExists = "it exists already";
inline constexpr const char* kMoney = "it is a Microsoft Money file, not an Access database";
inline constexpr const char* kNoDatabase = "it is not an Access database";
inline constexpr const char* kLaterVersion =
    "it is an Access {} file; only Access 97 to 2003 files (.mdb) can be opened";
inline constexpr const char* kUnknownVersion = "it is of an Access version that is not known";
inline constexpr const char* kCutShort = "it is cut short";
inline constexpr const char* kEncrypted = "it is encrypted";
inline constexpr const char* kPassword = "it is protected by a password";

// Why it cannot be written, or a change was not saved.
inline constexpr const char* kNotSaved = "the change was not saved: {}";
inline constexpr const char* kMayNotLast =
    "the change is in the file but may not outlast a power failure: {}";
inline constexpr const char* kChangedMeanwhile = "another program changed the file meanwhile";
inline constexpr const char* kFull = "the database is full: it cannot grow beyond {} GiB";
inline constexpr const char* kLastPageCut = "the file is cut short";
inline constexpr const char* kReadOnly = "the file is read-only";
inline constexpr const char* kFolderReadOnly = "its folder is read-only";
inline constexpr const char* kNoFolder = "its folder does not exist";
inline constexpr const char* kInUse = "in use by {}";
inline constexpr const char* kHolder = "user {} on computer {}"; ///< as the lock file names it
inline constexpr const char* kUnknownHolder = "another program (it has a lock file)";

} // namespace drx9::jet::jetText
