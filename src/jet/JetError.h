#pragma once

#include <exception>
#include <string>
#include <utility>

namespace drx9::jet {

/// What kind of failure it was, for callers that must tell them apart.
enum class Fault {
    CannotOpen, ///< no such file, unreadable, no Jet 3 or 4 database, encrypted, protected by a password
    Damaged,    ///< the file contradicts itself
    Rejected,   ///< not possible: unknown name, bad value, duplicate key, relationship
    NoSortKey,  ///< a value for which no index key can be built; a case of Rejected
    ReadOnly,   ///< the file may not be written, or another program has it open
    NotSaved,   ///< the commit failed: disk full, changed by another program
};

/// The engine's one exception type. what() is a message for people; once it has passed the database objects'
/// edge it begins with the file's name.
class JetError : public std::exception {
public:
    JetError(Fault fault, std::string reason)
        : fault_(fault)
        , reason_(std::move(reason)) {}

    [[nodiscard]] Fault fault() const { return fault_; }
    [[nodiscard]] const std::string& reason() const { return reason_; }
    [[nodiscard]] const std::string& file() const { return file_; }
    [[nodiscard]] const char* what() const noexcept override {
        return text_.empty() ? reason_.c_str() : text_.c_str();
    }

    /// Names the file the failure is about; the first name given stays.
    void nameFile(const std::string& file) {
        if (file_.empty()) {
            file_ = file;
            text_ = file + ": " + reason_;
        }
    }

private:
    Fault fault_;
    std::string reason_;
    std::string file_;
    std::string text_;
};

[[noreturn]] inline void damaged(const std::string& what) {
    throw JetError(Fault::Damaged, "the file is damaged: " + what);
}

[[noreturn]] inline void rejected(const std::string& why) {
    throw JetError(Fault::Rejected, why);
}

} // namespace drx9::jet
