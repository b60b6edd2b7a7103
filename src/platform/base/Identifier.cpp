#include "platform/base/Identifier.h"

#include <QUuid>

QString newUniversallyUniqueIdentifier() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}
