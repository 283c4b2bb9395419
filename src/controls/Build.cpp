#include "controls/Build.h"

#include "controls/Theme.h"

#include <QLabel>
#include <QPushButton>

namespace drx9 {

namespace {
constexpr int kButtonWidth = 92;
}

QPushButton* makeButton(QWidget* parent, const char* name, const char* caption, const char* toolTip) {
    auto* made = new QPushButton(latin(caption), parent);
    made->setObjectName(latin(name));
    made->setToolTip(latin(toolTip));
    made->setAutoDefault(false);
    made->setMinimumWidth(kButtonWidth);
    return made;
}

QLabel* makeMutedLabel(QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(kMutedRole);
    return label;
}

void keepRoomWhenHidden(QWidget& widget, bool keep) {
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(keep);
    widget.setSizePolicy(policy);
}

} // namespace drx9
