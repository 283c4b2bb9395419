#pragma once

#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

#include <string>

namespace drx9 {

/// The controls of a window, found by their names and worked as an operator does.
class Controls {
protected:
    virtual ~Controls() = default;
    [[nodiscard]] virtual QWidget& top() const = 0;

    template<class Control = QWidget>
    Control* find(const char* name) const {
        Control* control = top().findChild<Control*>(QString::fromLatin1(name));
        if (control == nullptr) {
            ADD_FAILURE() << "no control " << name;
        }
        return control;
    }
    void click(const char* name) const {
        auto* control = find(name);
        const bool inside =
            qobject_cast<QRadioButton*>(control) != nullptr; // its text ends before its middle
        QTest::mouseClick(control, Qt::LeftButton, {}, inside ? QPoint(10, control->height() / 2) : QPoint());
    }
    /// Over what the field holds; it is still being typed afterwards.
    void type(const char* name, const char* text) const {
        auto* field = find(name);
        field->setFocus();
        QMetaObject::invokeMethod(field, "selectAll");
        QTest::keyClicks(field, QString::fromUtf8(text));
    }
    [[nodiscard]] std::string textOf(const char* name) const {
        return find(name)->property("text").toString().toStdString();
    }
};

} // namespace drx9
