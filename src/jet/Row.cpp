#include "jet/Row.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::size_t kJumpStep = 256; ///< bytes that a 1-byte offset spans
constexpr char kFillerJump = '\xFF';

bool maskBit(const Bytes& row, std::size_t maskAt, std::size_t number) {
    return (row.u8(maskAt + number / 8) >> (number % 8) & 1) != 0;
}

std::size_t rowLength(const Layout& layout, const std::vector<std::size_t>& offsets, std::size_t maskSize,
                      std::size_t jumps) {
    return offsets.back() + layout.entryWidth * (offsets.size() + 1) + jumps + maskSize;
}

/// The jump bytes of a row with 1-byte offsets, in the order in which they lie before the count: the last one
/// first.
std::string jumpBytes(const Layout& layout, const std::vector<std::size_t>& offsets, std::size_t maskSize) {
    if (!layout.jumpTable) {
        return {};
    }
    std::size_t count = 0;
    while ((rowLength(layout, offsets, maskSize, count) - 1) / kJumpStep > count) {
        ++count;
    }
    std::string bytes;
    for (std::size_t jump = count; jump-- > 0;) {
        const auto passed = std::find_if(offsets.begin(), offsets.end(), [&](std::size_t offset) {
            return offset >= kJumpStep * (jump + 1);
        });
        bytes.push_back(passed == offsets.end() ? kFillerJump : static_cast<char>(passed - offsets.begin()));
    }
    return bytes;
}

std::string nullMask(const Definition& definition, const Fields& fields, std::size_t columns) {
    std::string mask((columns + 7) / 8, '\0');
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = definition.columns[i];
        const bool set =
            column.isBoolean() ? fields[i] && *fields[i] != std::string(1, '\0') : fields[i].has_value();
        if (set) {
            auto& byte = mask[column.number / 8];
            byte = static_cast<char>(static_cast<unsigned char>(byte) | 1u << column.number % 8);
        }
    }
    return mask;
}

std::string fixedPart(const Layout& layout, const Definition& definition, const Fields& fields,
                      std::size_t size) {
    std::string bytes(layout.countWidth + size, '\0');
    Patch part{std::span(bytes)};
    part.number(0, layout.countWidth, static_cast<std::uint32_t>(definition.rowColumns()));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = definition.columns[i];
        if (column.isFixed() && !column.isBoolean() && fields[i]) {
            part.bytes(layout.countWidth + column.fixedOffset, *fields[i]);
        }
    }
    return bytes;
}

} // namespace

RowReader::RowReader(const Layout& layout, const Definition& definition, std::string_view row)
    : layout_(layout)
    , definition_(definition)
    , row_(row) {
    columns_ = row_.number(0, layout.countWidth);
    const std::size_t maskSize = (columns_ + 7) / 8;
    if (columns_ == 0 || layout.countWidth + maskSize > row.size()) {
        damaged("a row is too short for its columns");
    }
    maskAt_ = row.size() - maskSize;
    readVariableTable();
}

/// A row older than the table's first variable column has no variable table.
void RowReader::readVariableTable() {
    std::size_t fixedEnd = layout_.countWidth;
    bool hasVariable = false;
    for (const auto& column : definition_.columns) {
        if (column.number >= columns_) {
            continue;
        }
        hasVariable = hasVariable || !column.isFixed();
        if (column.isFixed() && !column.isBoolean()) {
            fixedEnd = std::max<std::size_t>(fixedEnd, layout_.countWidth + column.fixedOffset +
                                                           std::size_t{column.length});
        }
    }
    if (!hasVariable && fixedEnd == maskAt_) {
        return;
    }
    const std::size_t width = layout_.entryWidth;
    if (maskAt_ < layout_.countWidth + width) {
        damaged("a row has no room for its variable values");
    }
    variables_ = row_.number(maskAt_ - width, width);
    jumps_ = layout_.jumpTable ? (row_.size() - 1) / kJumpStep : 0;
    const std::size_t tableSize = width * (variables_ + 1);
    if (maskAt_ - layout_.countWidth < width + jumps_ + tableSize) {
        damaged("a row's list of variable values is longer than the row");
    }
    tableEnd_ = maskAt_ - width - jumps_;
    if (jumps_ > 0 && tableEnd_ - tableSize < kJumpStep * jumps_) {
        --jumps_; // the last one is a filler; it lies first, so the others keep their places
    }
}

/// Offset at which the value in a slot starts; slot `variables_` = the end of the last one.
std::size_t RowReader::entry(std::size_t slot) const {
    const std::size_t width = layout_.entryWidth;
    std::size_t offset = row_.number(tableEnd_ - width * (slot + 1), width);
    for (std::size_t jump = 0; jump < jumps_; ++jump) {
        if (row_.u8(maskAt_ - width - 1 - jump) <= slot) {
            offset += kJumpStep;
        }
    }
    return offset;
}

bool RowReader::bit(const Column& column) const {
    return column.number < columns_ && maskBit(row_, maskAt_, column.number);
}

std::optional<std::string_view> RowReader::field(const Column& column) const {
    if (!bit(column)) {
        return std::nullopt;
    }
    if (column.isFixed()) {
        const std::size_t at = layout_.countWidth + column.fixedOffset;
        if (at + column.length > maskAt_) {
            damaged("a row is too short for its columns");
        }
        return row_.part(at, column.length);
    }
    if (column.slot >= variables_) {
        return std::nullopt;
    }
    const std::size_t start = entry(column.slot);
    const std::size_t end = entry(column.slot + 1u);
    if (start > end || end > maskAt_) {
        damaged("a row's variable values overlap");
    }
    return row_.part(start, end - start);
}

Fields RowReader::fields() const {
    Fields fields;
    for (const auto& column : definition_.columns) {
        if (column.isBoolean()) {
            fields.emplace_back(std::string(1, bit(column) ? '\1' : '\0'));
        } else if (const auto value = field(column)) {
            fields.emplace_back(*value);
        } else {
            fields.emplace_back();
        }
    }
    return fields;
}

std::size_t RowReader::fixedArea() const {
    if (tableEnd_ == 0) {
        return maskAt_ - layout_.countWidth;
    }
    const std::size_t start = entry(0);
    return start >= layout_.countWidth && start <= maskAt_ ? start - layout_.countWidth : 0;
}

std::string encodeRow(const Layout& layout, const Definition& definition, const Fields& fields,
                      std::size_t fixedArea) {
    std::string row = fixedPart(layout, definition, fields, std::max(fixedArea, definition.fixedArea()));
    const std::string mask = nullMask(definition, fields, definition.rowColumns());
    if (definition.variableColumns > 0) {
        std::vector<const std::string*> values(definition.variableColumns);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const Column& column = definition.columns[i];
            if (!column.isFixed() && !column.isBoolean() && fields[i]) {
                if (column.slot >= values.size()) {
                    damaged("a variable column has no place in the row");
                }
                values[column.slot] = &*fields[i];
            }
        }
        std::vector<std::size_t> offsets;
        for (const auto* value : values) {
            offsets.push_back(row.size());
            row += value != nullptr ? *value : std::string();
        }
        offsets.push_back(row.size());
        for (std::size_t i = offsets.size(); i-- > 0;) {
            append(row, layout.entryWidth, offsets[i]);
        }
        row += jumpBytes(layout, offsets, mask.size());
        append(row, layout.entryWidth, values.size());
    }
    row += mask;
    if (row.size() > layout.largestRow) {
        rejected("the row would be longer than a row can be");
    }
    return row;
}

} // namespace drx9::jet
