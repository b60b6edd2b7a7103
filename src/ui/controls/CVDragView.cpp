#include "ui/controls/CVDragView.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

constexpr auto mozillaLink = "text/x-moz-url"_L1;

/// UTF-16 without a byte order mark: an address and its title, on lines of their own, in turn.
QString addressesOfMozillaLink(const QByteArray& data) {
  const QString text(reinterpret_cast<const QChar*>(data.constData()), data.size() / 2);
  QStringList addresses;
  const QStringList lines = text.split(u'\n');
  for (qsizetype line = 0; line < lines.size(); line += 2)
    addresses += lines[line].trimmed();
  return addresses.join(u'\n');
}

QString addressesOfList(const QList<QUrl>& urls) {
  QStringList addresses;
  for (const QUrl& url : urls)
    addresses += url.toString(QUrl::FullyEncoded);
  return addresses.join(u'\n');
}

}  // namespace

CVDragView::CVDragView(QWidget* parent) : QWidget(parent) {}

void CVDragView::setDelegate(std::shared_ptr<CVDragViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void CVDragView::setDragEnabled(bool enabled) {
  if (dragEnabled_ == enabled) return;
  dragEnabled_ = enabled;
  setAcceptDrops(enabled);
  if (!enabled) setDragHovering(false);
}

QStringList CVDragView::filePaths(const QMimeData& data) {
  QStringList paths;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) paths += url.toLocalFile();
  }
  return paths;
}

std::optional<QString> CVDragView::text(const QMimeData& data) {
  if (data.hasFormat(mozillaLink)) return addressesOfMozillaLink(data.data(mozillaLink));
  if (data.hasUrls()) return addressesOfList(data.urls());
  if (data.hasText()) return data.text();
  return std::nullopt;
}

void CVDragView::dragEnterEvent(QDragEnterEvent* event) {
  const QMimeData& data = *event->mimeData();
  if (!data.hasUrls() && !data.hasText() && !data.hasFormat(mozillaLink)) {
    event->ignore();
    return;
  }
  event->setDropAction(Qt::CopyAction);
  event->accept();
  setDragHovering(true);
}

void CVDragView::dragLeaveEvent(QDragLeaveEvent* event) {
  setDragHovering(false);
  event->accept();
}

void CVDragView::dropEvent(QDropEvent* event) {
  setDragHovering(false);
  event->setDropAction(Qt::CopyAction);
  event->accept();
  if (delegate_) deliver(*event->mimeData());
}

void CVDragView::deliver(const QMimeData& data) {
  const QStringList paths = filePaths(data);
  if (!paths.isEmpty()) {
    delegate_->dragViewFilesWereDropped(*this, paths);
  } else if (const auto dragged = text(data)) {
    delegate_->dragViewStringWasDragged(*this, *dragged);
  }
}

void CVDragView::setDragHovering(bool hovering) {
  if (hovering_ == hovering) return;
  hovering_ = hovering;
  Q_EMIT dragHoverChanged(hovering);
}
