#include "platform/base/Log.h"

Q_LOGGING_CATEGORY(corvalisLog, "corvalis")

void logLine(const QString& line) {
  qCInfo(corvalisLog).noquote() << line;
}
