#include "jet/SharedFile.h"

#include <algorithm>

namespace drx9::jet {

Table& SharedFile::table(const std::string& name) {
    if (version_ != store_.version()) {
        tables_.clear();
        entries_.clear();
        version_ = store_.version();
    }
    auto entry = entries_.find(name);
    if (entry == entries_.end()) {
        entry = entries_.emplace(name, Catalog(store_).find(name)).first;
    }
    auto& parsed = tables_[entry->second.page];
    if (!parsed) {
        parsed = std::make_unique<Table>(store_, entry->second.page);
    }
    return *parsed;
}

void SharedFile::begin(const Database& owner) {
    transactions_.push_back(&owner);
    store_.begin();
}

void SharedFile::endInnermost(const Database& owner, const char* call) {
    if (std::find(transactions_.begin(), transactions_.end(), &owner) == transactions_.end()) {
        rejected(std::string(call) + " without BeginTrans");
    }
    if (transactions_.back() != &owner) {
        rejected(std::string(call) + " while a transaction is open inside that another database began");
    }
    transactions_.pop_back();
}

void SharedFile::commit(const Database& owner) {
    endInnermost(owner, "CommitTrans");
    store_.release();
}

void SharedFile::rollback(const Database& owner) {
    endInnermost(owner, "Rollback");
    store_.rollback();
}

void SharedFile::abandon(const Database& owner) {
    while (std::find(transactions_.begin(), transactions_.end(), &owner) != transactions_.end()) {
        transactions_.pop_back();
        store_.rollback();
    }
}

} // namespace drx9::jet
