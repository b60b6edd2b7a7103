#include "app/WindowCommand.h"

#include <QApplication>
#include <cstdio>

#include "app/Diagnostics.h"
#include "app/Interruption.h"
#include "app/WindowProgram.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace {

bool hasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int fail(const QString& reason) {
  std::fprintf(stderr, "corvalis: %s\n", qPrintable(reason));
  return 1;
}

}  // namespace

int runWindowCommand(int& argc, char** argv, const QStringList& requests, const QString& action) {
  if (!hasDisplay()) return fail(u"There is no display to open a window on."_s);
  installDiagnostics(Verbosity::Verbose);
  QGuiApplication::setDesktopFileName(QString::fromUtf16(desktop::applicationIdentifier));
  QApplication application(argc, argv);
  dispatch::initialize();
  onInterruption([](int) { QCoreApplication::quit(); });
  WindowProgram program;
  const auto first = program.becomeTheInstance(requests);
  if (!first) return fail(first.error().localizedDescription);
  if (!*first) return 0;
  program.open(requests, action);
  return QApplication::exec();
}
