#pragma once

#include <QUrl>
#include <functional>

class QWidget;

namespace ui {

/// Goes on at once where nothing is in the file's place; else asks, as a sheet on the window,
/// whether it may be replaced, and goes on only then. A folder is never replaced: the user is told.
/// Exactly one of the two is called, maybe from within this call. Main thread.
void whenMayBeWritten(QWidget* window, const QUrl& file, std::function<void()> goOn,
                      std::function<void()> keepAsking);

}  // namespace ui
