#include "controls/AccessibleRoles.h"

#include <QAccessibleWidget>
#include <QLineEdit>

#include <algorithm>

namespace drx9 {

namespace {
constexpr const char* kRole = "accessibleRole";
constexpr const char* kReadOnly = "accessibleReadOnly";

class RoleInterface : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.invisible = state.invisible || widget()->accessibleName().isEmpty();
        return state;
    }
};

class ReadOnlyInterface : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit ReadOnlyInterface(QLineEdit& line)
        : QAccessibleWidget(&line, QAccessible::EditableText)
        , line_(line) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? line_.text() : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.selectableText = true;
        return state;
    }

    void selection(int index, int* start, int* end) const override {
        const bool any = index == 0 && line_.hasSelectedText();
        *start = any ? line_.selectionStart() : 0;
        *end = any ? line_.selectionEnd() : 0;
    }
    [[nodiscard]] int selectionCount() const override { return line_.hasSelectedText() ? 1 : 0; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int) override { line_.deselect(); }
    void setSelection(int index, int start, int end) override {
        if (index == 0) {
            line_.setSelection(start, end - start);
        }
    }
    [[nodiscard]] int cursorPosition() const override { return line_.cursorPosition(); }
    void setCursorPosition(int position) override { line_.setCursorPosition(position); }
    [[nodiscard]] QString text(int start, int end) const override {
        return line_.text().mid(start, std::max(0, end - start));
    }
    [[nodiscard]] int characterCount() const override { return static_cast<int>(line_.text().size()); }
    [[nodiscard]] QRect characterRect(int offset) const override {
        const QFontMetrics metrics(line_.font());
        const int after = metrics.horizontalAdvance(line_.text().mid(offset)); // aligned to the right
        const int wide = metrics.horizontalAdvance(line_.text().mid(offset, 1));
        return {line_.mapToGlobal(QPoint(line_.width() - after, 0)), QSize(wide, line_.height())};
    }
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override {
        return line_.cursorPositionAt(line_.mapFromGlobal(point));
    }
    void scrollToSubstring(int start, int) override { line_.setCursorPosition(start); }
    QString attributes(int offset, int* start, int* end) const override {
        *start = offset;
        *end = characterCount();
        return {};
    }

private:
    QLineEdit& line_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (object == nullptr || !object->isWidgetType()) {
        return nullptr;
    }
    if (object->property(kReadOnly).toBool()) {
        return new ReadOnlyInterface(*static_cast<QLineEdit*>(object));
    }
    const QVariant role = object->property(kRole);
    return role.isValid() ? new RoleInterface(static_cast<QWidget*>(object),
                                              static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}
} // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    QAccessible::installFactory(makeInterface); // once: the same one again has no effect
    widget.setProperty(kRole, static_cast<int>(role));
}

void setAccessibleReadOnly(QLineEdit& line) {
    QAccessible::installFactory(makeInterface);
    line.setProperty(kReadOnly, true);
}

} // namespace drx9
