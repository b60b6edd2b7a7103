#include <QGuiApplication>
#include <cstdio>

#include "app/ActivationToken.h"
#include "app/CaptureCommand.h"
#include "app/Diagnostics.h"
#include "app/IntegrateCommand.h"
#include "app/Interruption.h"
#include "app/MergeCommand.h"
#include "app/NativeHostCommand.h"
#include "app/OpenCommand.h"
#include "app/PlatformServices.h"
#include "app/Services.h"
#include "app/WindowCommand.h"
#include "app/WorkFolder.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/ClientsManager.h"
#include "platform/web/Engine.h"
#include "settings/CVDefaultPreferences.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int failureStatus = 1;
constexpr int usageStatus = 2;

constexpr char helpText[] =
    "Usage: corvalis [ADDRESS...]                  open the window, with these pages\n"
    "       corvalis capture [options] SOURCE...   turn web pages into files\n"
    "       corvalis merge -o OUT.pdf FILE...      join PDF files\n"
    "       corvalis open ADDRESS...               hand pages to the window\n"
    "       corvalis integrate [--remove]          make it known to your desktop and browsers\n"
    "       corvalis --help | --version\n"
    "\n"
    "Each command lists its options with --help.\n";

int complain(const QString& problem, int status) {
  std::fprintf(stderr, "corvalis: %s\n", qPrintable(problem));
  if (status == usageStatus) std::fprintf(stderr, "\n%s", helpText);
  return status;
}

int runCapture(int& argc, char** argv, const CaptureOptions& options) {
  // Nothing is shown, so no display is needed.
  const auto platform = qEnvironmentVariableIsSet("QT_QPA_PLATFORM")
                            ? std::optional(qgetenv("QT_QPA_PLATFORM"))
                            : std::nullopt;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  installDiagnostics(options.verbosity);
  QGuiApplication application(argc, argv);
  // Programs that the result is handed to do show themselves.
  platform ? qputenv("QT_QPA_PLATFORM", *platform) : qunsetenv("QT_QPA_PLATFORM");
  dispatch::initialize();
  const auto engine = web::Engine::shared({.use = web::EngineUse::Conversions});
  engine->warmUp();
  WorkFolder workFolder;
  const bool isHandedOn = options.destination != u"Disk"_s;
  const auto settings = registerCommandLineServices(
      workFolder.url(), isHandedOn ? makePlatformServices() : CVUtils::Services());
  if (isHandedOn) {
    workFolder.keep();
    dropbox::ClientsManager::shared().setupWithAppKeyDesktop(u"k3r8tq0vz5mha2x"_s);
  }
  CaptureCommand command(options, engine);
  onInterruption([](int signal) { QCoreApplication::exit(128 + signal); });
  dispatch::mainAsync(
      [&] { command.run(*settings, [](int status) { QCoreApplication::exit(status); }); });
  const int status = QGuiApplication::exec();
  engine->shutdown();
  dispatch::finish();
  return status;
}

int printVersion();

int capture(int& argc, char** argv, const QStringList& arguments) {
  if (arguments.contains(u"--version"_s)) return printVersion();
  const auto parsed = CaptureOptions::parse(arguments);
  if (!parsed) return complain(parsed.error().localizedDescription, usageStatus);
  if (!parsed->helpWanted) return runCapture(argc, argv, parsed->options);
  std::fputs(qPrintable(CaptureOptions::help()), stdout);
  return 0;
}

int open(int& argc, char** argv, const QStringList& arguments) {
  if (arguments.contains(u"--help"_s)) {
    std::fputs(qPrintable(OpenCommand::help()), stdout);
    return 0;
  }
  if (arguments.isEmpty()) return complain(u"Name at least one address to open."_s, usageStatus);
  const auto requests = OpenCommand::readRequests(arguments);
  if (!requests) return complain(requests.error().localizedDescription, failureStatus);
  const auto handed = OpenCommand::handOver(*requests);
  if (!handed) return complain(handed.error().localizedDescription, failureStatus);
  return *handed ? 0 : runWindowCommand(argc, argv, *requests);
}

/// One of the desktop entry's actions: for the running window, or for one that opens first.
int runAction(int& argc, char** argv, const QString& name) {
  const auto outcome =
      desktop::handOverAction(name, ActivationToken::ofThisStart(), desktop::OnDemand::Start);
  if (!outcome) return complain(outcome.error().localizedDescription, failureStatus);
  if (*outcome == desktop::HandOver::HandedOver) return 0;
  return runWindowCommand(argc, argv, {}, name);
}

int printHelp() {
  std::fputs(helpText, stdout);
  return 0;
}

int printVersion() {
  std::puts("corvalis " CORVALIS_VERSION);
  return 0;
}

QStringList argumentList(int argc, char** argv) {
  QStringList arguments;
  for (int index = 1; index < argc; ++index)
    arguments.append(QString::fromLocal8Bit(argv[index]));
  return arguments;
}

bool hasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication::setApplicationName(u"corvalis"_s);
  QCoreApplication::setApplicationVersion(QStringLiteral(CORVALIS_VERSION));
  const QStringList arguments = argumentList(argc, argv);
  if (arguments.isEmpty()) return hasDisplay() ? runWindowCommand(argc, argv, {}) : printHelp();
  const QString& command = arguments.first();
  const QStringList rest = arguments.sliced(1);
  if (command == u"capture"_s) return capture(argc, argv, rest);
  if (command == u"merge"_s) return runMergeCommand(rest);
  if (command == u"open"_s) return open(argc, argv, rest);
  if (command == u"integrate"_s) return runIntegrateCommand(rest);
  if (command == u"native-host"_s) return runNativeHostCommand(rest);
  if (command.startsWith("--action="_L1)) return runAction(argc, argv, command.section(u'=', 1));
  if (command == u"--help"_s || command == u"-h"_s) return printHelp();
  if (command == u"--version"_s) return printVersion();
  if (command.contains(u':')) return open(argc, argv, arguments);
  return complain(u"“%1” is not a command."_s.arg(command), usageStatus);
}
