#include "Session.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include "AccessibleProgram.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/desktop/BusFake.h"
#include "settings/CVDefaultPreferences.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

const QString notificationService = u"org.freedesktop.Notifications"_s;
const QString applicationService = u"com.maplebrook.corvalis"_s;

QString uniqueConnectionName() {
  static int number = 0;
  return u"session %1"_s.arg(++number);
}

std::optional<QVariantList> answerOfNotifications(const QDBusMessage& call) {
  static uint number = 0;
  if (call.member() == u"GetCapabilities"_s) return QVariantList{QStringList{u"body"_s}};
  if (call.member() == u"Notify"_s) return QVariantList{++number};
  return std::nullopt;
}

}  // namespace

Session::Session() : environment_(QProcessEnvironment::systemEnvironment()) {
  environment_.insert(u"HOME"_s, folder_.path());
  for (const QString& name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_CACHE_HOME"_s,
                              u"XDG_RUNTIME_DIR"_s, u"TMPDIR"_s}) {
    environment_.insert(name, path(name));
    QDir().mkpath(path(name));
  }
  QFile::setPermissions(path(u"XDG_RUNTIME_DIR"_s),
                        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  QDir().mkpath(downloads());
  environment_.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
  environment_.insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
  for (const QString& name : {u"WAYLAND_DISPLAY"_s, u"XAUTHORITY"_s, u"AT_SPI_BUS_ADDRESS"_s})
    environment_.remove(name);
  startDisplay();
  startBus();
  saveSettings();
}

Session::~Session() {
  notifications_.reset();
  corvalis_.reset();
  // What was started last ends first: the programs, the bus, the display.
  while (!processes_.empty()) {
    // An X server that is killed leaves its socket in the way of the next one.
    processes_.back()->terminate();
    if (!processes_.back()->waitForFinished(5000)) processes_.back()->kill();
    processes_.back()->waitForFinished();
    processes_.pop_back();
  }
  QDBusConnection::disconnectFromBus(bus_.name());
}

QProcess& Session::start(const QString& program, const QStringList& arguments) {
  auto process = std::make_unique<QProcess>();
  process->setProcessEnvironment(environment_);
  process->setProcessChannelMode(QProcess::SeparateChannels);
  process->setStandardErrorFile(path(u"errors"_s), QIODevice::Append);
  process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  process->start(program, arguments);
  EXPECT_TRUE(process->waitForStarted()) << qPrintable(program);
  processes_.push_back(std::move(process));
  return *processes_.back();
}

QString Session::firstLine(QProcess& process) {
  EXPECT_TRUE(inTime([&process] { return process.canReadLine(); }))
      << qPrintable(process.program());
  return QString::fromUtf8(process.readLine()).trimmed();
}

/// A number of its own: servers that look for a free one take each other's socket away when one
/// ends while another starts. No reset: for a moment after their last program has left they would
/// refuse the next.
void Session::startDisplay() {
  static int count = 0;
  const qint64 number = 100 + QCoreApplication::applicationPid() % 5000 * 10 + count++ % 10;
  QProcess& server =
      start(u"Xvfb"_s, {u":%1"_s.arg(number), u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s,
                        u"1280x1600x24"_s, u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
  environment_.insert(u"DISPLAY"_s, u':' + firstLine(server));
}

void Session::startBus() {
  QProcess& daemon = start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
  const QString address = firstLine(daemon);
  environment_.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
  bus_ = QDBusConnection::connectToBus(address, uniqueConnectionName());
  ASSERT_TRUE(bus_.isConnected());
  notifications_ = std::make_unique<BusFake>(
      bus_, notificationService, u"/org/freedesktop/Notifications"_s, answerOfNotifications);
  // Before any program: they look for the accessibility bus when they start.
  corvalis_ = std::make_unique<AccessibleProgram>(bus_);
}

void Session::saveSettings(const std::function<void(CVDefaultPreferences&)>& change) {
  const auto store =
      defaults::UserDefaults::open(path(u"XDG_CONFIG_HOME"_s) + u"/corvalis/settings.json"_s);
  CVDefaultPreferences settings(store);
  settings.setLoading(true);
  settings.setFormat(u"PNG"_s);
  settings.setConversionMode(u"Image"_s);
  settings.setDestination(u"Disk"_s);
  settings.setDownloadLocation(QUrl::fromLocalFile(downloads()));
  settings.setProcessAutomatically(true);
  settings.setSnapEffect(false);
  settings.setQueueSize(8);
  if (change) change(settings);
  settings.setLoading(false);
  settings.save();
}

QProcess& Session::startCorvalis(const QStringList& arguments) {
  QProcess& program = start(QStringLiteral(CORVALIS_PROGRAM), arguments);
  bool usable = false;
  inTime([&] {
    usable = corvalis_->has(u"push button"_s, u"Add"_s);
    return usable || program.state() == QProcess::NotRunning;
  });
  QFile errors(path(u"errors"_s));
  EXPECT_TRUE(usable) << (errors.open(QIODevice::ReadOnly) ? errors.readAll().constData() : "");
  return program;
}

QProcess& Session::startOtherProgram(const QStringList& arguments) {
  QProcess& program = start(QStringLiteral(OTHER_PROGRAM), arguments);
  EXPECT_EQ(firstLine(program), u"ready"_s);
  return program;
}

int Session::run(const QString& program, const QStringList& arguments, const QByteArray& input) {
  QProcess& process = start(program, arguments);
  process.write(input);
  process.closeWriteChannel();
  const bool ended = inTime([&] { return process.state() == QProcess::NotRunning; });
  return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

void Session::pressKeys(const QStringList& keys) {
  EXPECT_EQ(run(u"xdotool"_s, QStringList{u"key"_s} + keys), 0);
}

void Session::sendRequest(const QString& request) {
  auto call = QDBusMessage::createMethodCall(applicationService, u"/com/maplebrook/corvalis"_s,
                                             u"org.freedesktop.Application"_s, u"Open"_s);
  call.setAutoStartService(false);
  call << QStringList{request} << QVariantMap();
  EXPECT_TRUE(bus_.send(call));
}

bool Session::isOnBus(const QString& service) const {
  return bus_.interface()->isServiceRegistered(service);
}

bool Session::canBeStarted(const QString& service) const {
  return bus_.interface()->activatableServiceNames().value().contains(service);
}

QStringList Session::files() const {
  QStringList names;
  QDirIterator all(downloads(),
                   QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                   QDirIterator::Subdirectories);
  while (all.hasNext()) {
    all.next();
    names << all.fileName();
  }
  names.sort();
  return names;
}

QString Session::write(const QString& name, const QByteArray& contents) const {
  QFile file(path(name));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
  return file.fileName();
}

QStringList Session::notifications() const {
  QStringList texts;
  for (const QDBusMessage& call : notifications_->callsOf(u"Notify"_s))
    texts << call.arguments().value(3).toString() + u": "_s + call.arguments().value(4).toString();
  return texts;
}

QStringList Session::leftovers() const {
  return QDir(path(u"TMPDIR"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

QStringList Session::workFiles() const {
  return QDir(path(u"XDG_DATA_HOME"_s) + u"/com.maplebrook.corvalis/Downloads"_s)
      .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void Session::recordEngineStarts() {
  const QString script = write(u"headless-shell"_s,
                               "#!/bin/sh\nprintf x >> \"$0.starts\"\n"
                               "exec /usr/lib/chromium/chromium-headless-shell \"$@\"\n");
  QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  environment_.insert(u"CORVALIS_ENGINE"_s, script);
}

int Session::engineStarts() const {
  return int(QFileInfo(path(u"headless-shell.starts"_s)).size());
}
