#pragma once

#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

class QWidget;

namespace ui {

/// Asks for a file to save to, as a sheet on the window: the extension is hidden and folders can be
/// made. The caller will append `extension`, without a dot; before a file of that whole name is
/// replaced the user is asked. `completion` comes once, with none when the user cancels. Main
/// thread.
void beginSavePanel(QWidget* window, const QString& name, const QString& extension,
                    const std::optional<QUrl>& folder,
                    std::function<void(std::optional<QUrl> chosen)> completion);

}  // namespace ui
