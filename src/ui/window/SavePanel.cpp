#include "ui/window/SavePanel.h"

#include <QFileDialog>
#include <QUrl>

#include "ui/window/ReplaceQuestion.h"

namespace ui {

void beginSavePanel(QWidget* window, const QString& name, const QString& extension,
                    const std::optional<QUrl>& folder,
                    std::function<void(std::optional<QUrl> chosen)> completion) {
  auto* panel = new QFileDialog(window, QFileDialog::tr("Save"));
  panel->setWindowModality(Qt::WindowModal);
  panel->setAcceptMode(QFileDialog::AcceptSave);
  // The panel would look for the name without the extension.
  panel->setOption(QFileDialog::DontConfirmOverwrite);
  if (folder) panel->setDirectoryUrl(*folder);
  panel->selectFile(name);
  QObject::connect(panel, &QFileDialog::finished, panel, [=](int result) {
    const auto end = [panel, completion](const std::optional<QUrl>& chosen) {
      panel->deleteLater();
      completion(chosen);
    };
    const QList<QUrl> chosen = panel->selectedUrls();
    if (result != QDialog::Accepted || chosen.isEmpty()) return end(std::nullopt);
    const QString path = chosen.first().toLocalFile();
    whenMayBeWritten(
        window, QUrl::fromLocalFile(path + u'.' + extension), [=] { end(chosen.first()); },
        [=] { panel->open(); });
  });
  panel->open();
}

}  // namespace ui
