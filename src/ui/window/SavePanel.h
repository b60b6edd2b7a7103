#pragma once

#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

class QWidget;

namespace ui {

/// Asks for a file to save to, as a sheet on the window: the extension is hidden and folders can be
/// made. `completion` comes once, with none when the user cancels. Main thread.
void beginSavePanel(QWidget* window, const QString& name, const std::optional<QUrl>& folder,
                    std::function<void(std::optional<QUrl> chosen)> completion);

}  // namespace ui
