#pragma once

#include "jet/Catalog.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace drx9::jet {

class Database;

/// One file's pages and parsed tables, shared by all who have it open in this process. Names the file in
/// every failure.
class SharedFile {
public:
    explicit SharedFile(PageStore store)
        : store_(std::move(store)) {}
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    [[nodiscard]] PageStore& store() { return store_; }
    [[nodiscard]] const PageStore& store() const { return store_; }
    /// The table by name; valid until its definition changes or a change is taken back.
    Table& table(const std::string& name);

    /// Runs `work` with failures named after the file.
    template<class Work>
    auto guarded(const Work& work) const {
        try {
            return work();
        } catch (JetError& error) {
            error.nameFile(store_.path());
            throw;
        }
    }

    /// Runs `work` on a table as one change: a commit of its own unless a transaction is open. The engine's
    /// own tables are refused.
    template<class Work>
    auto changed(const std::string& name, const Work& work) {
        return guarded([&] {
            Change change(store_);
            Table& subject = table(name);
            if (!subject.definition().userTable || !entries_.at(name).user) {
                rejected("the table \"" + name + "\" is not the user's");
            }
            if constexpr (std::is_void_v<decltype(work(subject))>) {
                work(subject);
                change.commit();
            } else {
                const auto result = work(subject);
                change.commit();
                return result;
            }
        });
    }

    /// Transactions nest over all who share the file; only the owner of the innermost one may end it;
    /// another gets JetError(Rejected).
    void begin(const Database& owner);
    void commit(const Database& owner);
    void rollback(const Database& owner);
    /// Takes back all that the owner began, with what others began inside.
    void abandon(const Database& owner);

private:
    void endInnermost(const Database& owner, const char* call);

    PageStore store_;
    std::map<PageNo, std::unique_ptr<Table>> tables_;
    std::map<std::string, CatalogEntry> entries_;
    std::uint64_t version_ = 0;
    std::vector<const Database*> transactions_; ///< owners, the innermost last
};

} // namespace drx9::jet
