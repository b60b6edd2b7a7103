#include "app/Diagnostics.h"

#include <QLoggingCategory>
#include <cstdio>

namespace {

QtMsgType leastShown = QtInfoMsg;

/// Qt numbers its kinds of message in the order of their making, not of their weight.
int weight(QtMsgType type) {
  switch (type) {
    case QtDebugMsg:
      return 0;
    case QtInfoMsg:
      return 1;
    case QtWarningMsg:
      return 2;
    case QtCriticalMsg:
      return 3;
    case QtFatalMsg:
      return 4;
  }
  return 4;
}

void writeLine(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (weight(type) < weight(leastShown)) return;
  std::fprintf(stderr, "%s\n", qPrintable(text));
}

}  // namespace

void installDiagnostics(Verbosity verbosity) {
  leastShown = verbosity == Verbosity::Verbose ? QtInfoMsg : QtCriticalMsg;
  qInstallMessageHandler(writeLine);
}
