#include "app/IntegrateCommand.h"

#include <QCoreApplication>
#include <cstdio>

#include "platform/browsers/HostManifests.h"
#include "platform/desktop/DesktopIntegration.h"
#include "ui/look/ApplicationMark.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int usageStatus = 2;

constexpr char helpText[] =
    "Usage: corvalis integrate            make Corvalis known to the desktop and the browsers\n"
    "       corvalis integrate --remove   take that back exactly\n";

/// Desktops that draw no SVG want the mark in sizes of its own, in pixels.
constexpr int iconSides[] = {16, 32, 48, 64, 128, 256};

desktop::DesktopIntegrationSettings settingsFor(const QString& program) {
  desktop::DesktopIntegrationSettings settings{program, ui::applicationMarkAsSvg(), {}};
  for (const int side : iconSides)
    settings.icons.insert(side, ui::applicationMarkAsPng(side));
  return settings;
}

/// The browsers first: their part makes the folder that both keep their records in, and takes it
/// away again when it goes last.
MaybeError integrate() {
  const QString program = QCoreApplication::applicationFilePath();
  if (auto error = browsers::installHostManifests(program)) return error;
  return desktop::integrateWithDesktop(settingsFor(program));
}

MaybeError removeIntegration() {
  if (auto error = desktop::removeDesktopIntegration()) return error;
  return browsers::removeHostManifests();
}

}  // namespace

int runIntegrateCommand(const QStringList& arguments) {
  const bool isRemoval = arguments == QStringList{u"--remove"_s};
  if (arguments == QStringList{u"--help"_s}) {
    std::fputs(helpText, stdout);
    return 0;
  }
  if (!arguments.isEmpty() && !isRemoval) {
    std::fputs(helpText, stderr);
    return usageStatus;
  }
  // The path of the program is the application object's knowledge.
  int argumentCount = 1;
  char name[] = "corvalis";
  char* argumentValues[] = {name, nullptr};
  const QCoreApplication application(argumentCount, argumentValues);
  const MaybeError error = isRemoval ? removeIntegration() : integrate();
  if (!error) return 0;
  std::fprintf(stderr, "corvalis: %s\n", qPrintable(error->localizedDescription));
  return 1;
}
