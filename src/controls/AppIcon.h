#pragma once

#include <QIcon>

class QPainter;
class QRectF;

namespace drx9 {

/// The program's mark: a thickness that rises to its final value.
void paintAppIcon(QPainter& painter, const QRectF& rect);

/// The mark in the sizes that desktops ask for.
QIcon appIcon();

} // namespace drx9
