#include "ui/preferences/PreferencesPane.h"

#include <QLayout>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace ui {

qint64 integerValue(const QString& text) {
  static const QRegularExpression leading(u"^\\s*([+-]?[0-9]{1,18})"_s);
  return leading.match(text).captured(1).toLongLong();
}

void fitHeight(QWidget& pane) {
  pane.ensurePolished();
  if (pane.layout()) pane.layout()->activate();
  const int height = pane.layout() && pane.layout()->hasHeightForWidth()
                         ? pane.layout()->totalHeightForWidth(pane.width())
                         : pane.sizeHint().height();
  pane.resize(pane.width(), height);
}

}  // namespace ui
