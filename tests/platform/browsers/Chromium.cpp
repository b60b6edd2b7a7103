#include "Chromium.h"

#include <signal.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include "platform/browsers/DevToolsEndpoint.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

Chromium::Chromium(const QUrl& start, const QStringList& arguments) {
  process_.setStandardOutputFile(QProcess::nullDevice());
  process_.setStandardErrorFile(QProcess::nullDevice());
  process_.setChildProcessModifier([] { ::setpgid(0, 0); });
  process_.start(
      QStringLiteral(CHROMIUM_PROGRAM),
      QStringList{
          u"--headless=new"_s, u"--no-sandbox"_s, u"--no-first-run"_s, u"--password-store=basic"_s,
          u"--disable-background-networking"_s, u"--disable-component-update"_s,
          u"--disable-dev-shm-usage"_s, u"--remote-debugging-port=0"_s,
          u"--user-data-dir="_s + profileFolder(),
          u"--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE localhost, EXCLUDE 127.0.0.1"_s} +
          arguments + QStringList{start.toString()});
  process_.waitForStarted();
}

Chromium::~Chromium() {
  if (process_.processId() > 0) ::kill(static_cast<pid_t>(-process_.processId()), SIGKILL);
  process_.waitForFinished();
  // Its processes end one after the other, and write until they have.
  support::waitFor([] { return QDir(profileFolder()).removeRecursively(); });
}

QString Chromium::profileFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/chromium"_s;
}

bool Chromium::isReady() {
  return support::waitFor([] { return browsers::readEndpoint(profileFolder()).has_value(); },
                          std::chrono::minutes(1));
}
