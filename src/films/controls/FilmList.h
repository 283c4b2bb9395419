#pragma once

#include "films/FilmEditor.h"

#include <QFrame>

#include <string>
#include <vector>

class QStandardItemModel;
class QTreeView;

namespace drx9 {

/// The film window's list, `lstDBFilms`: the library's films in the order in which a download numbers them.
/// Its current row, the selected rows and the row whose film is shown are three things. What the program
/// does here tells nothing; `chosen` is the operator's.
class FilmList : public QFrame {
    Q_OBJECT
public:
    explicit FilmList(QWidget* parent);

    /// Row by row, so that the place in the list and the selection stay.
    void setFilms(const std::vector<FilmRow>& films);
    /// Nothing is selected, and no film shown.
    void clearSelection();

    [[nodiscard]] int rowCount() const { return static_cast<int>(films_.size()); }
    [[nodiscard]] bool isSelected(int row) const;
    /// Film name of the current row as it is stored; empty where none is current.
    [[nodiscard]] std::string filmName() const;

    /// Makes a row the current one; which rows are selected stays.
    void setCurrentRow(int row);
    /// The same for the first row, without scrolling to it.
    void moveToFirstRow();
    /// The same for the first of the selected rows, where the current one is not selected; none where none
    /// is.
    void moveToSelectedRow();
    /// Selects the first row alone.
    void selectFirstRow();
    /// Selects the film of that name alone, as the one that is shown; none where the name is empty.
    void selectFilm(const std::string& name);

    /// The current row's film is the one shown: it is not chosen again.
    void noteShown();

signals:
    /// The operator chose a row other than the one shown.
    void chosen(int row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setUpView();
    void choose(int row);

    QTreeView* view_;
    QStandardItemModel* model_;
    std::vector<FilmRow> films_;
    bool filling_ = false;
    int shownRow_ = -1; ///< -1: none
};

} // namespace drx9
