#pragma once

#include <QPointer>
#include <QWidget>

#include "delivery/CVUtils.h"

/// The program's one kind of alert: a message with one button, as a sheet on the main window. It
/// does not hold the caller up. Main thread.
class CVOkAlert : public CVAlertPresenter {
 public:
  void setMainWindow(QWidget* window) { mainWindow_ = window; }
  void displayOKAlertWithTitle(const QString& title, const QString& message) override;

 private:
  QPointer<QWidget> mainWindow_;
};
