#pragma once

class QWidget;

namespace ui {

/// Flashes the widget half white, 0.2 s up and 0.2 s down. Main thread.
void flash(QWidget& content);

}  // namespace ui
