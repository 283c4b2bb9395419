#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QUrl;

namespace drx9 {

class TextView;

/// The manual in a window of its own: contents, pages with links, a find box over all pages. Pages are
/// Markdown in one folder, which may be a resource; its index.md names them as links in the order of reading.
/// A link is the name of a page, with "#" and a heading in lower case with "-" for blanks where one is meant.
///
/// Belongs to no other window, but to a modal one as long as that is open, and so stays usable over it. Runs
/// no event loop of its own.
class ManualViewer : public QWidget {
    Q_OBJECT
public:
    explicit ManualViewer(const QString& folder);

    /// Shows the window at this link, before whatever is modal. A link that leads nowhere gives an empty
    /// page.
    void openAt(const QString& link);

    /// The fragment that a heading is linked by.
    static QString fragmentOf(const QString& heading);

    /// Property of windows that follow what is modal: nothing else may belong to one.
    static constexpr const char* kFollowsModal = "followsModal";

protected:
    bool event(QEvent* event) override;

private:
    void build();
    void buildKeys();
    void fillContents();
    void goTo(const QString& link);
    void arrived(const QUrl& url);
    void showHeading(const QString& fragment);
    void markContents(const QString& link);
    void resizeText(int steps);
    void find(bool backward);
    [[nodiscard]] QString pageShown() const;
    void escape();
    void comeBeforeModal();

    QString folder_; ///< with "/" at its end
    QStringList pages_;
    QPushButton* back_ = nullptr;
    QPushButton* forward_ = nullptr;
    QPushButton* contents_ = nullptr;
    QLineEdit* find_ = nullptr;
    QLabel* found_ = nullptr;
    QTreeWidget* tree_ = nullptr;
    TextView* text_ = nullptr;
    int textSteps_ = 0; ///< points above the usual size
};

} // namespace drx9
