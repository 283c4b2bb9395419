#pragma once

#include "monitor/IniText.h"
#include "platform/FilePort.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace drx9 {

/// An INI file, read and written as the private-profile functions of Windows do it. No operation reports a
/// failure except by its result and lastResult(); reads of a missing or unreadable file give their defaults.
///
/// The program itself reads whole texts and writes texts. Numbers, booleans, parts of a list and the clearing
/// of a section complete the class for other users of such files.
///
/// Texts are UTF-8. The file keeps its own encoding (see IniText).
class cFile {
public:
    explicit cFile(FilePort& files)
        : files_(files) {}

    /// The number at the start of the text, with "." as the decimal point in every locale.
    float ReadIniSingle(std::string_view section, std::string_view key, float fallback);
    /// The whole number at the start of the text, the low 16 bits of it; 0 for other text, the default for
    /// none.
    std::int16_t ReadIniInt(std::string_view section, std::string_view key, std::int16_t fallback);
    /// True for "TRUE", "YES", "ON" and "1" in any case.
    bool ReadIniBool(std::string_view section, std::string_view key, std::string_view fallback);
    /// 1 on success, also where there is no such section; else 0.
    std::int16_t ClearIniSection(std::string_view section);
    /// 1 on success, else 0.
    std::int16_t WriteIniStr(std::string_view section, std::string_view key, std::string_view value);
    /// Text of the key, cut to 253 characters; the default where it is missing or empty. `field` 0 is the
    /// whole text, n its n-th part between commas, empty past the last one.
    std::string ReadIniStr(std::string_view section, std::string_view key, std::string_view fallback,
                           std::int16_t field);

    /// Stores the path if a file of that name exists, else an empty name.
    void setFileName(const std::string& path);
    [[nodiscard]] const std::string& FileName() const { return fileName_; }
    /// Characters that the last read copied, the number that ReadIniInt took, or 1 or 0 for the success of a
    /// write.
    [[nodiscard]] std::int32_t lastResult() const { return lastResult_; }

    // Many writes as one.

    /// Names the file, whether it exists or not, and holds back all writes until commitWrites(). False when
    /// the file exists and cannot be read: nothing is held back then.
    bool beginWrites(const std::string& path);
    /// Replaces the file in one step, or creates it; leaves it alone when nothing has changed. False when
    /// that failed: the old file stays.
    bool commitWrites();

    /// Why the last write failed, for people; empty when it succeeded.
    [[nodiscard]] const std::string& writeFailure() const { return writeFailure_; }

private:
    [[nodiscard]] std::optional<std::string> find(std::string_view section, std::string_view key) const;
    std::string profileText(std::string_view section, std::string_view key, std::string_view fallback);
    std::int16_t edit(const std::function<void(IniText&)>& change);

    FilePort& files_;
    std::string fileName_;
    std::int32_t lastResult_ = 0;
    std::string writeFailure_;
    std::optional<IniText> pending_; ///< between beginWrites() and commitWrites()
    std::string before_;             ///< the file's bytes at beginWrites()
};

} // namespace drx9
