#pragma once

#include <QWidget>

/// The manual, which comes with the program and needs no network. Deletes itself when it is closed.
class HelpWindow : public QWidget {
  Q_OBJECT

 public:
  /// A window of its own, which closes with `mainWindow`.
  explicit HelpWindow(QWidget* mainWindow);

  void makeKeyAndOrderFront();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};
