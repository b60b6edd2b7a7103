#include "ui/queue/AccessibleRoles.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "ui/queue/EntryRowView.h"
#include "ui/queue/QueueTableView.h"

namespace ui {
namespace {

QAccessibleInterface* roleOf(const QString&, QObject* object) {
  if (auto* row = qobject_cast<EntryRowView*>(object)) {
    return new QAccessibleWidget(row, QAccessible::ListItem);
  }
  if (auto* table = qobject_cast<QueueTableView*>(object)) {
    return new QAccessibleWidget(table, QAccessible::List);
  }
  return nullptr;
}

}  // namespace

void installAccessibleRoles() {
  static const bool installed = [] {
    QAccessible::installFactory(roleOf);
    return true;
  }();
  Q_UNUSED(installed);
}

}  // namespace ui
