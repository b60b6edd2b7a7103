#pragma once

#include <QByteArray>

namespace ui {

/// The mark of the program as a file. Needs no application with windows. Any thread.
QByteArray applicationMarkAsSvg();

/// A square, sides in pixels.
QByteArray applicationMarkAsPng(int side);

}  // namespace ui
