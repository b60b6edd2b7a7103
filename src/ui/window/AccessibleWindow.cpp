#include "ui/window/AccessibleWindow.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "ui/popovers/Popover.h"
#include "ui/window/CVMainWindowController.h"

namespace ui {
namespace {

class AccessibleWindow : public QAccessibleWidget {
 public:
  explicit AccessibleWindow(QWidget* window) : QAccessibleWidget(window, QAccessible::Window) {}

  int childCount() const override {
    return QAccessibleWidget::childCount() + int(popovers().size());
  }

  QAccessibleInterface* child(int index) const override {
    const int others = QAccessibleWidget::childCount();
    if (index < others) return QAccessibleWidget::child(index);
    return QAccessible::queryAccessibleInterface(popovers().value(index - others));
  }

  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto place = popovers().indexOf(qobject_cast<Popover*>(child->object()));
    if (place < 0) return QAccessibleWidget::indexOfChild(child);
    return QAccessibleWidget::childCount() + int(place);
  }

 private:
  QList<Popover*> popovers() const {
    QList<Popover*> open = widget()->findChildren<Popover*>(QString(), Qt::FindDirectChildrenOnly);
    open.removeIf([](const Popover* popover) { return !popover->isVisible(); });
    return open;
  }
};

class AccessiblePopover : public QAccessibleWidget {
 public:
  explicit AccessiblePopover(QWidget* popover) : QAccessibleWidget(popover, QAccessible::Dialog) {}

  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(widget()->parentWidget());
  }
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object) {
  if (auto* window = qobject_cast<CVMainWindowController*>(object))
    return new AccessibleWindow(window);
  if (auto* popover = qobject_cast<Popover*>(object)) return new AccessiblePopover(popover);
  return nullptr;
}

}  // namespace

void installAccessibleWindow() {
  static const bool installed = [] {
    QAccessible::installFactory(interfaceOf);
    return true;
  }();
  Q_UNUSED(installed);
}

}  // namespace ui
