#pragma once

#include "jet/Layout.h"
#include "jet/PageImage.h"

#include <span>

namespace drx9::jet {

inline constexpr std::uint16_t kUsualCodePage = 1252; ///< of files that name none, and of new ones

/// What the first page tells of a whole file. Part of it lies under a mask that is the same in all files.
struct FileHeader {
    const Layout* layout; ///< never null
    unsigned codePage;

    /// Throws JetError(CannotOpen), with a reason for people, for what is no Jet 3 or 4 database, is
    /// encrypted, is protected by a password or ends before its third page.
    static FileHeader read(const PageImage& image);
    /// Fills the zeroed bytes of a new file's first page: no password, General sort order, the usual code
    /// page.
    static void write(const Layout& layout, std::span<char> bytes);
};

} // namespace drx9::jet
