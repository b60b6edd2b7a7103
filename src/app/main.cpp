#include <QGuiApplication>
#include <cstdio>

#include "app/CaptureCommand.h"
#include "app/Diagnostics.h"
#include "app/Interruption.h"
#include "app/Services.h"
#include "app/WorkFolder.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/web/Engine.h"
#include "settings/CVDefaultPreferences.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int usageStatus = 2;

constexpr char helpText[] =
    "Usage: corvalis capture [options] SOURCE...   turn web pages into files\n"
    "       corvalis --help | --version\n"
    "\n"
    "\"corvalis capture --help\" lists the options.\n";

int printUsageError(const QString& problem) {
  std::fprintf(stderr, "corvalis: %s\n\n%s", qPrintable(problem), helpText);
  return usageStatus;
}

int runCapture(int& argc, char** argv, const CaptureOptions& options) {
  // Nothing is shown, so no display is needed.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  installDiagnostics(options.verbosity);
  QGuiApplication application(argc, argv);
  dispatch::initialize();
  const auto engine = web::Engine::shared();
  engine->warmUp();
  const WorkFolder workFolder;
  const auto settings = registerCommandLineServices(workFolder.url());
  CaptureCommand command(options, engine);
  onInterruption([](int signal) { QCoreApplication::exit(128 + signal); });
  command.run(*settings, [](int status) { QCoreApplication::exit(status); });
  const int status = QGuiApplication::exec();
  engine->shutdown();
  dispatch::finish();
  return status;
}

int capture(int& argc, char** argv, const QStringList& arguments) {
  const auto parsed = CaptureOptions::parse(arguments);
  if (!parsed) return printUsageError(parsed.error().localizedDescription);
  if (!parsed->helpWanted) return runCapture(argc, argv, parsed->options);
  std::fputs(qPrintable(CaptureOptions::help()), stdout);
  return 0;
}

QStringList argumentList(int argc, char** argv) {
  QStringList arguments;
  for (int index = 1; index < argc; ++index)
    arguments.append(QString::fromLocal8Bit(argv[index]));
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication::setApplicationName(u"corvalis"_s);
  QCoreApplication::setApplicationVersion(QStringLiteral(CORVALIS_VERSION));
  QStringList arguments = argumentList(argc, argv);
  const QString command = arguments.isEmpty() ? u"--help"_s : arguments.takeFirst();
  if (command == u"capture"_s) return capture(argc, argv, arguments);
  if (command == u"--help"_s || command == u"-h"_s) {
    std::fputs(helpText, stdout);
    return 0;
  }
  if (command == u"--version"_s) {
    std::puts("corvalis " CORVALIS_VERSION);
    return 0;
  }
  return printUsageError(u"“%1” is not a command."_s.arg(command));
}
