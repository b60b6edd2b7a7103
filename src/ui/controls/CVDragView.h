#pragma once

#include <QStringList>
#include <QWidget>
#include <memory>

class CVDragView;
class QMimeData;

/// Takes what was dropped on a drag view. Main thread.
class CVDragViewDelegate {
 public:
  virtual ~CVDragViewDelegate() = default;
  virtual void dragViewFilesWereDropped(CVDragView& view, const QStringList& paths) = 0;
  virtual void dragViewStringWasDragged(CVDragView& view, const QString& text) = 0;
};

/// The transparent part of a window that accepts files and text. Files are the local ones of
/// `text/uri-list`; text is plain text, or the addresses of a browser's link where it sends no
/// plain text. Files win where a drag carries both.
class CVDragView : public QWidget {
  Q_OBJECT

 public:
  explicit CVDragView(QWidget* parent = nullptr);

  void setDelegate(std::shared_ptr<CVDragViewDelegate> delegate);

  /// Off at first. While it is off nothing can be dropped.
  bool dragEnabled() const { return dragEnabled_; }
  void setDragEnabled(bool enabled);

  /// What a drag carries; empty and none where it carries no such thing.
  static QStringList filePaths(const QMimeData& data);
  static std::optional<QString> text(const QMimeData& data);

  /// Whether something that could be dropped is over the view.
  bool isDragHovering() const { return hovering_; }

 Q_SIGNALS:
  void dragHoverChanged(bool hovering);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void setDragHovering(bool hovering);
  void deliver(const QMimeData& data);

  std::shared_ptr<CVDragViewDelegate> delegate_;
  bool dragEnabled_ = false;
  bool hovering_ = false;
};
