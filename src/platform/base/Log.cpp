#include "platform/base/Log.h"

Q_LOGGING_CATEGORY(corvalisLog, "corvalis")

void logLine(const QString& line) {
  qCInfo(corvalisLog).noquote() << line;
}

void logProblem(const QString& line) {
  qCCritical(corvalisLog).noquote() << line;
}
