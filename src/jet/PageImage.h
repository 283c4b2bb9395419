#pragma once

#include "jet/Bytes.h"
#include "platform/FilePort.h"

#include <memory>
#include <string_view>
#include <vector>

namespace drx9::jet {

/// The bytes of a database file in memory, read in when they are first asked for.
///
/// What was read stays as it was: a file that another one replaces meanwhile is read on to its end, one that
/// is written in place gives JetError(CannotOpen).
class PageImage {
public:
    /// An image without bytes, and without a file.
    PageImage() = default;
    /// Opens the file; nothing is read yet. Throws JetError(CannotOpen).
    PageImage(const FilePort& files, const std::string& path, std::size_t largest);

    [[nodiscard]] std::size_t size() const { return size_; }
    /// The part lies within the image; valid until resize(). Throws JetError(CannotOpen) when it cannot be
    /// read.
    [[nodiscard]] std::string_view view(std::size_t at, std::size_t length) const {
        fetch(at, length);
        return {bytes_.get() + at, length};
    }
    /// The same for writing.
    [[nodiscard]] std::span<char> part(std::size_t at, std::size_t length) {
        fetch(at, length);
        return {bytes_.get() + at, length};
    }
    [[nodiscard]] std::string_view all() const { return view(0, size_); }
    /// Reads what has not been read yet, and lets the file go.
    void readAll() const;
    /// Cuts the image, or adds zeros.
    void resize(std::size_t size);
    /// The file as it was opened; nothing when there is none.
    [[nodiscard]] const std::optional<FileIdentity>& identity() const { return identity_; }

private:
    void fetch(std::size_t at, std::size_t length) const;
    void readBlocks(std::size_t first, std::size_t end) const;

    // Reading in changes none of the bytes that anybody has seen.
    std::unique_ptr<char[]> bytes_; ///< uninitialised where nothing was read yet
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
    std::optional<FileIdentity> identity_;
    mutable std::unique_ptr<InputFile> file_; ///< null once all was read
    mutable std::vector<bool> read_;          ///< by block
};

} // namespace drx9::jet
