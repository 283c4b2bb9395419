#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace drx9 {

/// Least and greatest of some values; empty while least is above greatest.
struct ValueRange {
    float least = std::numeric_limits<float>::infinity();
    float greatest = -std::numeric_limits<float>::infinity();

    [[nodiscard]] bool empty() const { return !(least <= greatest); }
    void add(float value);
    void add(const ValueRange& other);
};

/// The readings of a run by rows: one time axis in elapsed seconds for all columns, one float a value. A
/// column need not have a value in every row.
///
/// Rows lie in pieces that never move, each with the least and greatest values of 64 rows at a time, so that
/// a new row costs the same at any length.
class RunPoints {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    static constexpr std::size_t kSpan = 64; ///< rows that share one least and greatest value

    explicit RunPoints(std::size_t columns)
        : columns_(columns)
        , used_(columns) {}

    [[nodiscard]] std::size_t rows() const { return rows_; }
    [[nodiscard]] double time(std::size_t row) const { return piece(row).time[row % kPiece]; }
    /// No reading was taken between the row before and this one.
    [[nodiscard]] bool gapBefore(std::size_t row) const { return gaps(row) != (row > 0 ? gaps(row - 1) : 0); }
    /// Number of gaps up to the row, with the one before it: rows with the same number have none between
    /// them.
    [[nodiscard]] std::uint32_t gaps(std::size_t row) const { return piece(row).gaps[row % kPiece]; }
    /// NaN where the column has none.
    [[nodiscard]] float value(std::size_t column, std::size_t row) const {
        return piece(row).value[column * kPiece + row % kPiece];
    }

    /// Number of values of the column.
    [[nodiscard]] std::size_t count(std::size_t column) const { return used_[column].count; }
    /// One past the row of the column's newest value; 0 while it has none.
    [[nodiscard]] std::size_t end(std::size_t column) const { return used_[column].end; }
    /// Row of the column's n-th value, counted from 0; its end when there are not so many.
    [[nodiscard]] std::size_t rowOf(std::size_t column, std::size_t n) const;
    /// First row at or after a time; rows() when there is none. The search begins at a row that is known not
    /// to lie behind it.
    [[nodiscard]] std::size_t firstAt(double time, std::size_t low = 0) const;
    /// Least and greatest value of the column in the rows from .. to - 1.
    [[nodiscard]] ValueRange range(std::size_t column, std::size_t from, std::size_t to) const;

    /// The usual time between two readings: the median of the first ones; 0 while there are too few to tell.
    /// It stays the same for the rest of the run.
    [[nodiscard]] double usualStep() const;
    /// Grows with every loss of points. While it stays, points have only come at the end.
    [[nodiscard]] std::size_t losses() const { return losses_; }

    /// Row of this time, added when it is later than all others. A time that goes back to where no row lies
    /// starts a new run: the rows from there on are dropped.
    std::size_t rowAt(double time);
    /// Sets a value in a row after the column's newest one. What is no number is dropped; a value beyond what
    /// a float holds is taken as the greatest one.
    void set(std::size_t column, std::size_t row, double value);
    void markGap(std::size_t row);
    /// Keeps the column's first `count` values. The rows go when no column has a value any more.
    void cut(std::size_t column, std::size_t count);
    void clear();

private:
    static constexpr std::size_t kPiece = 1024; ///< rows of a piece

    struct Piece {
        explicit Piece(std::size_t columns);
        std::array<double, kPiece> time{};
        std::array<std::uint32_t, kPiece> gaps{};
        std::vector<float> value;      ///< by column, then row
        std::vector<ValueRange> spans; ///< by column, then span
    };
    struct Used {
        std::size_t first = 0;
        std::size_t end = 0;
        std::size_t count = 0;
    };

    [[nodiscard]] const Piece& piece(std::size_t row) const { return *pieces_[row / kPiece]; }
    [[nodiscard]] Piece& piece(std::size_t row) { return *pieces_[row / kPiece]; }
    [[nodiscard]] static std::size_t spanIndex(std::size_t column, std::size_t row);
    void addRow(double time);
    void dropFrom(std::size_t row);
    void cutRows(std::size_t column, std::size_t end);
    void renewSpan(std::size_t column, std::size_t row);

    std::size_t columns_;
    std::size_t rows_ = 0;
    std::size_t losses_ = 0;
    std::vector<std::unique_ptr<Piece>> pieces_;
    std::vector<Used> used_;
};

} // namespace drx9
