#include "ui/window/CVOkAlert.h"

#include <QMessageBox>

void CVOkAlert::displayOKAlertWithTitle(const QString& title, const QString& message) {
  auto* alert = new QMessageBox(mainWindow_);
  alert->setAttribute(Qt::WA_DeleteOnClose);
  alert->setIcon(QMessageBox::Information);
  alert->setWindowTitle(title);
  alert->setText(title);
  alert->setInformativeText(message);
  alert->setTextFormat(Qt::PlainText);
  alert->addButton(QMessageBox::tr("Ok"), QMessageBox::AcceptRole);
  alert->open();
}
