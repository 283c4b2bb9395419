#pragma once

#include "jet/Definition.h"

#include <optional>
#include <string>

namespace drx9::jet {

/// An index entry's key: what comes before the row pointer.
struct IndexKey {
    std::string bytes;
    bool hasNull = false; ///< never a duplicate of another key
    bool allNull = true;
};

/// Appends one column's share to a key: start byte and value, so coded that comparing bytes compares values.
/// `stored` is nothing for null, and the value itself for memos. Throws JetError(NoSortKey) for a value, type
/// or order whose key is not known.
void addKeyColumn(IndexKey& key, const TextCodec& text, const Column& column, bool ascending,
                  const std::optional<std::string>& stored);

/// The key of a row in an index; `valueAt` gives the stored value (for memos: the value itself) by column
/// position. The message of a NoSortKey names the index.
template<class ValueAt>
IndexKey rowKey(const TextCodec& text, const Definition& definition, const RealIndex& index,
                const ValueAt& valueAt) {
    IndexKey key;
    try {
        for (const auto& part : index.columns) {
            const std::size_t position = definition.positionOf(part.number);
            addKeyColumn(key, text, definition.columns[position], part.ascending, valueAt(position));
        }
        if (key.bytes.size() > kLongestEntry - kRowPointerSize) {
            throw JetError(Fault::NoSortKey, "a value this long");
        }
    } catch (const JetError& error) {
        if (error.fault() != Fault::NoSortKey) {
            throw;
        }
        throw JetError(Fault::NoSortKey, "the index \"" + index.name + "\" cannot take " + error.reason());
    }
    return key;
}

} // namespace drx9::jet
