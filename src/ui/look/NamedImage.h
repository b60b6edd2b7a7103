#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace ui {

struct Theme;

/// The program's pictures by file name, for instance "icon-add-inactive-dark@2x.png". They are
/// drawn from vector sources at the density that is asked for; the "@2x" of a name is not needed
/// and its case does not matter. A null icon or pixmap where there is no such picture. Main thread.
QIcon namedIcon(const QString& name);
QPixmap namedPixmap(const QString& name, qreal devicePixelRatio);

/// A glyph of the set (the name of its source) in one colour, at 20 points.
QIcon glyphIcon(const QString& glyph, const QColor& colour);

/// The mark of the program, at every size.
QIcon applicationIcon();

}  // namespace ui
