#pragma once

#include "films/JetHeaders.h"
#include "link/Records.h"
#include "platform/FilePort.h"

#include <string>
#include <vector>

namespace drx9 {

/// Converts a library of the old format (any index on `Film`) in place: the films, in the order of that
/// index, are numbered and written over the stored rows in stored order. A library without such an index is
/// left alone.
///
/// The conversion is one commit as a whole. When it is ready to commit, the file is kept as "NAME.mdb.bak"
/// (or ".bak1" and on, whichever is free); without that copy there is no conversion, and a conversion that
/// fails leaves none.
class LibraryUpgrade {
public:
    LibraryUpgrade(jet::DBEngine& engine, FilePort& files, std::string path)
        : engine_(engine)
        , files_(files)
        , path_(std::move(path)) {}

    struct Outcome {
        bool converted = false;
        std::string told; ///< for the bottom line; empty when there was nothing to convert
    };
    /// Throws JetError where the file cannot be opened or has no table `Film`: whoever opens it next meets
    /// the same.
    Outcome DBUpgrade();

private:
    using Row = std::vector<jet::Value>; ///< in the order of kFields

    void convert(jet::Database& database, const std::string& index);
    std::vector<Row> films(jet::Database& database, const std::string& index);
    static void number(jet::Database& database, const std::vector<Row>& films);
    void commit(jet::Database& database);
    void keepOldFile();
    [[nodiscard]] std::string told(bool indexLeft) const;

    jet::DBEngine& engine_;
    FilePort& files_;
    std::string path_;
    std::string backup_; ///< empty until there is one
    std::string warning_;
    std::size_t stood_ = 0;
};

} // namespace drx9
