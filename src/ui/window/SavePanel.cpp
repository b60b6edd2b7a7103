#include "ui/window/SavePanel.h"

#include <QFileDialog>
#include <QUrl>

namespace ui {

void beginSavePanel(QWidget* window, const QString& name, const std::optional<QUrl>& folder,
                    std::function<void(std::optional<QUrl> chosen)> completion) {
  auto* panel = new QFileDialog(window, QFileDialog::tr("Save"));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setWindowModality(Qt::WindowModal);
  panel->setAcceptMode(QFileDialog::AcceptSave);
  panel->setOption(QFileDialog::DontConfirmOverwrite);  // the extension is appended later
  if (folder) panel->setDirectoryUrl(*folder);
  panel->selectFile(name);
  QObject::connect(panel, &QFileDialog::finished, panel, [panel, completion](int result) {
    const QList<QUrl> chosen = panel->selectedUrls();
    const bool accepted = result == QDialog::Accepted && !chosen.isEmpty();
    completion(accepted ? std::optional(chosen.first()) : std::nullopt);
  });
  panel->open();
}

}  // namespace ui
