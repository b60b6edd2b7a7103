#include "ui/minibrowser/PageMenu.h"

#include <QApplication>
#include <QClipboard>
#include <QJsonObject>
#include <QMenu>
#include <QPointer>

#include "ui/minibrowser/LivePageView.h"

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds askTimeout{1};

/// What lies at a place of the page.
struct Place {
  QString link;
  bool selection = false;
  bool editable = false;
};

QString placeScript(const QPointF& position) {
  return uR"((() => {
    const element = document.elementFromPoint(%1, %2);
    const link = element && element.closest('a[href], area[href]');
    // As a press does, the right button moves the focus into the field that it points at.
    const pointed = element && element.closest('input, textarea, [contenteditable]');
    if (pointed && pointed !== document.activeElement) pointed.focus({preventScroll: true});
    const field = document.activeElement;
    const typed = field && typeof field.selectionStart === 'number';
    return {link: link ? String(link.href) : '',
            selection: typed ? field.selectionStart < field.selectionEnd : String(getSelection()) !== '',
            editable: Boolean(typed || field && field.isContentEditable)};
  })())"_s.arg(position.x())
      .arg(position.y());
}

Place readPlace(const Result<QJsonValue>& answer) {
  const QJsonObject found = answer ? answer->toObject() : QJsonObject();
  return {found[u"link"].toString(), found[u"selection"].toBool(), found[u"editable"].toBool()};
}

void addEditing(QMenu& menu, LivePageView& view, const Place& place) {
  menu.addAction(LivePageView::tr("Cut"), &view, &LivePageView::cut)
      ->setEnabled(place.selection && place.editable);
  menu.addAction(LivePageView::tr("Copy"), &view, &LivePageView::copy)->setEnabled(place.selection);
  menu.addAction(LivePageView::tr("Paste"), &view, &LivePageView::paste)
      ->setEnabled(place.editable && !QApplication::clipboard()->text().isEmpty());
  menu.addAction(LivePageView::tr("Select all"), &view, &LivePageView::selectAll);
}

void open(LivePageView& view, const QPoint& position, const Place& place) {
  auto* menu = new QMenu(&view);
  menu->setObjectName(u"pageMenu"_s);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  if (!place.link.isEmpty()) {
    menu->addAction(LivePageView::tr("Copy link address"), &view,
                    [link = place.link] { QApplication::clipboard()->setText(link); });
    menu->addSeparator();
  }
  addEditing(*menu, view, place);
  menu->addSeparator();
  menu->addAction(LivePageView::tr("Back"), &view, &LivePageView::backRequested);
  menu->addAction(LivePageView::tr("Reload"), &view, &LivePageView::reloadRequested);
  menu->popup(view.mapToGlobal(position));
}

}  // namespace

void openPageMenu(LivePageView& view, const QPoint& position) {
  const QPointF place = QPointF(position) / view.zoom();
  view.liveView()->page()->evaluate(
      placeScript(place),
      [view = QPointer(&view), position](const Result<QJsonValue>& answer) {
        if (view && view->isVisible()) open(*view, position, readPlace(answer));
      },
      askTimeout);
}
