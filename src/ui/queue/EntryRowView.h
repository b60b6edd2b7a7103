#pragma once

#include <QWidget>
#include <memory>

#include "ui/queue/EntryAppearance.h"

class QToolButton;
namespace Ui {
class CVEntryViewController;
}

namespace ui {

/// The widgets of a row (layout "CVEntryViewController"). The row itself takes the keyboard: with
/// it, as under the pointer, the lesser actions appear.
///
/// Keys of a row: Return processes, Delete removes, F2 edits the title, Alt+Up and Alt+Down move
/// it.
class EntryRowView : public QWidget {
  Q_OBJECT

 public:
  explicit EntryRowView(QWidget* parent = nullptr);
  ~EntryRowView() override;

  void show(const EntryAppearance& appearance, const QString& title, bool titleEditable);
  using QWidget::show;
  void setThumbnail(const QImage& image);
  void setSpinning(bool spinning);
  void setMovable(bool up, bool down);
  void updateTheme();

  /// Forgets what a user did in it.
  void prepareForReuse();

  /// Whether the keyboard is in the row; such a row is kept while it is out of sight.
  bool holdsFocus() const;

 Q_SIGNALS:
  void processRequested();
  void removeRequested();
  void revealRequested();
  void adjustRequested();
  void upRequested();
  void downRequested();
  void titleEdited(const QString& title);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void setTextFonts();
  void connectControls();
  void nameControls();
  void titleEditingFinished();
  void showState();
  void showLesserActions();
  void describe();

  std::unique_ptr<Ui::CVEntryViewController> layout_;
  EntryAppearance appearance_;
  bool hovered_ = false;
  bool movableUp_ = false;
  bool movableDown_ = false;
};

}  // namespace ui
