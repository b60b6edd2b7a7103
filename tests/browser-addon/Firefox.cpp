#include "Firefox.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <chrono>
#include <csignal>

#include "support/Wait.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto limit = 1min;

constexpr char preferences[] = R"(
user_pref("marionette.port", 0);
user_pref("network.proxy.type", 1);
user_pref("network.proxy.http", "127.0.0.1");
user_pref("network.proxy.http_port", 9);
user_pref("network.proxy.ssl", "127.0.0.1");
user_pref("network.proxy.ssl_port", 9);
user_pref("network.proxy.no_proxies_on", "localhost,127.0.0.1");
user_pref("network.captive-portal-service.enabled", false);
user_pref("network.connectivity-service.enabled", false);
user_pref("toolkit.telemetry.server", "");
user_pref("app.update.enabled", false);
)";

constexpr char button[] =
    "const button = Services.wm.getMostRecentWindow('navigator:browser').document"
    ".getElementById('corvalis_maplebrook_com-browser-action');";

QString profileFolder() {
  return QDir::homePath() + u"/firefox-profile"_s;
}

}  // namespace

Firefox::Firefox() {
  QDir().mkpath(profileFolder());
  QFile file(profileFolder() + u"/user.js"_s);
  if (file.open(QIODevice::WriteOnly)) file.write(preferences);
  file.close();
  process_.setStandardOutputFile(QProcess::nullDevice());
  process_.setStandardErrorFile(QProcess::nullDevice());
  process_.setChildProcessModifier([] { ::setpgid(0, 0); });
  process_.start(QStringLiteral(FIREFOX_PROGRAM),
                 {u"--headless"_s, u"--no-remote"_s, u"--marionette"_s,
                  u"--remote-allow-system-access"_s, u"--profile"_s, profileFolder()});
  process_.waitForStarted();
}

Firefox::~Firefox() {
  if (process_.processId() > 0) ::kill(static_cast<pid_t>(-process_.processId()), SIGKILL);
  process_.waitForFinished();
  support::waitFor([] { return QDir(profileFolder()).removeRecursively(); });
}

QString Firefox::userFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         u"/mozilla/firefox"_s;
}

bool Firefox::isReady() {
  const QJsonObject addOn{{u"path"_s, QStringLiteral(CORVALIS_SOURCE_DIR "/browser-addon")},
                          {u"temporary"_s, true}};
  return connect() && call(u"WebDriver:NewSession"_s, {}) && call(u"Addon:Install"_s, addOn) &&
         putButtonInToolbar();
}

/// The browser greets who connects with a message that answers nothing.
bool Firefox::connect() {
  const bool isListening = support::waitFor(
      [this] {
        QFile file(profileFolder() + u"/MarionetteActivePort"_s);
        if (!file.open(QIODevice::ReadOnly)) return false;
        const quint16 port = file.readAll().trimmed().toUShort();
        if (port == 0) return false;
        socket_.connectToHost(u"127.0.0.1"_s, port);
        return socket_.waitForConnected(1000);
      },
      limit);
  return isListening && !receive().isEmpty();
}

/// A new button is in the menu of add-ons, where there is nothing to click.
bool Firefox::putButtonInToolbar() {
  return runInWindow(
             u"const {CustomizableUI} = Services.wm.getMostRecentWindow('navigator:browser');"
             "CustomizableUI.addWidgetToArea('corvalis_maplebrook_com-browser-action', 'nav-bar');"_s +
             QString::fromLatin1(button) + u"return button !== null"_s)
      .toBool();
}

bool Firefox::show(const QUrl& page) {
  return call(u"WebDriver:Navigate"_s, {{u"url"_s, page.toString()}}).has_value();
}

void Firefox::press() {
  runInWindow(QString::fromLatin1(button) +
              u"(button.querySelector('.unified-extensions-item-action-button') ?? button)"
              ".click()"_s);
}

QString Firefox::badge() {
  return runInWindow(
             u"const {ExtensionParent} = ChromeUtils.importESModule("
             "'resource://gre/modules/ExtensionParent.sys.mjs');"
             "const {extension} = WebExtensionPolicy.getByID('corvalis@maplebrook.com');"
             "return ExtensionParent.apiManager.global.browserActionFor(extension).action"
             ".getContextData(Services.wm.getMostRecentWindow('navigator:browser')"
             ".gBrowser.selectedTab).badgeText"_s)
      .toString();
}

/// In the browser's own window, not in the page.
QJsonValue Firefox::runInWindow(const QString& program) {
  call(u"Marionette:SetContext"_s, {{u"value"_s, u"chrome"_s}});
  const auto reply =
      call(u"WebDriver:ExecuteScript"_s, {{u"script"_s, program}, {u"args"_s, QJsonArray()}});
  call(u"Marionette:SetContext"_s, {{u"value"_s, u"content"_s}});
  return reply ? reply->value(u"value"_s) : QJsonValue();
}

/// A message is its length, a colon, and [0, id, command, parameters] or [1, id, error, result].
std::optional<QJsonObject> Firefox::call(const QString& command, const QJsonObject& parameters) {
  const QByteArray message =
      QJsonDocument(QJsonArray{0, ++lastCall_, command, parameters}).toJson(QJsonDocument::Compact);
  socket_.write(QByteArray::number(message.size()) + ':' + message);
  const QJsonArray reply = QJsonDocument::fromJson(receive()).array();
  if (reply.at(1).toInt() == lastCall_ && reply.at(2).isNull()) return reply.at(3).toObject();
  qWarning("Firefox: %s: %s", qPrintable(command),
           qPrintable(reply.at(2).toObject().value(u"message"_s).toString()));
  return std::nullopt;
}

/// The next message; empty when none comes in time.
QByteArray Firefox::receive() {
  qsizetype start = 0, length = -1;
  support::waitFor(
      [&] {
        received_ += socket_.readAll();
        start = received_.indexOf(':') + 1;
        length = start > 0 ? received_.first(start - 1).toLongLong() : -1;
        return length >= 0 && received_.size() >= start + length;
      },
      limit);
  if (length < 0 || received_.size() < start + length) return {};
  const QByteArray message = received_.sliced(start, length);
  received_.remove(0, start + length);
  return message;
}
