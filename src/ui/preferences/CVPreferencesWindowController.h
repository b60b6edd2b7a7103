#pragma once

#include <QWidget>
#include <memory>

#include "ui/preferences/CVPreferencesViewController.h"

class QVariantAnimation;

/// The preferences window, on the application settings. Every change is stored and applied at once,
/// so closing it saves nothing. Main thread.
class CVPreferencesWindowController : public QWidget {
  Q_OBJECT

 public:
  explicit CVPreferencesWindowController(CVDropBoxPreferencesViewController::Account account = {},
                                         QWidget* parent = nullptr);
  ~CVPreferencesWindowController() override;

  void makeKeyAndOrderFront();

  CVPreferencesViewController& preferencesViewController() const {
    return *preferencesViewController_;
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void fitToSwitcher();

  CVPreferencesViewController* preferencesViewController_;
  QVariantAnimation* heightAnimation_;
};
