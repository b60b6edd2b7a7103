#include "ui/window/CVOkAlert.h"

#include <QMessageBox>

/// The window may be closed with everything on it while the user reads.
void CVOkAlert::displayOKAlertWithTitle(const QString& title, const QString& message) {
  const QPointer<QMessageBox> alert = new QMessageBox(mainWindow_);
  alert->setIcon(QMessageBox::Information);
  alert->setWindowTitle(title);
  alert->setText(title);
  alert->setInformativeText(message);
  alert->setTextFormat(Qt::PlainText);
  alert->addButton(QMessageBox::tr("Ok"), QMessageBox::AcceptRole);
  alert->exec();
  delete alert;
}
