#pragma once

#include <QString>
#include <QWidget>

namespace ui {

/// The number that a text begins with, as a number field reads it: 0 where there is none.
qint64 integerValue(const QString& text);

/// Gives a pane the height that its contents need.
void fitHeight(QWidget& pane);

}  // namespace ui
