#pragma once

#include <QList>
#include <QObject>
#include <QRect>
#include <QString>

class QWidget;

namespace drx9 {

/// Where windows were when they were last closed, by their object names. Kept in a small file of the user's
/// own, apart from the program's settings; a file that cannot be read or written is no fault.
class WindowPlaces : public QObject {
public:
    /// An empty file name keeps nothing.
    explicit WindowPlaces(QString file);

    /// Puts a window, not yet shown, where it was, and keeps its place whenever it is closed. False where
    /// no place is known: then it stays where it was put, or where Qt puts it; one without an owner goes over
    /// the active window. A window of fixed size keeps its position only.
    bool follow(QWidget& window);

    /// The nearest place to `wanted` that lies wholly on one of the screens, or as much of it as fits there.
    /// The first screen is the main one.
    static QRect onScreen(const QRect& wanted, const QList<QRect>& screens);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void keep(const QWidget& window) const;

    QString file_;
};

} // namespace drx9
