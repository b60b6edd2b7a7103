#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class CVAddPopoverController;
}

/// What the add button offers: paste addresses, capture from a browser. Commands go to the
/// application delegate.
class CVAddPopoverController : public QWidget {
  Q_OBJECT

 public:
  /// Which of the two browsers is running.
  struct Browsers {
    bool showSafari = false;
    bool showChrome = false;
  };

  explicit CVAddPopoverController(Browsers browsers, QWidget* parent = nullptr);
  ~CVAddPopoverController() override;

  void onPasteURL();
  void onURLFromSafari();
  void onURLFromChrome();

  /// Called while the pointer enters and leaves the paste command.
  void onHover(bool hovering);

 private:
  void setPasteIcon(const QString& name);
  void setUpRows(Browsers browsers);

  std::unique_ptr<Ui::CVAddPopoverController> layout_;
};
