#pragma once

#include <QPointer>
#include <QWidget>

#include "delivery/CVUtils.h"

/// The program's one kind of alert: a message with one button, modal to the whole program. The main
/// queue is served while it waits for its dismissal. Main thread.
class CVOkAlert : public CVAlertPresenter {
 public:
  void setMainWindow(QWidget* window) { mainWindow_ = window; }
  void displayOKAlertWithTitle(const QString& title, const QString& message) override;

 private:
  QPointer<QWidget> mainWindow_;
};
