#include "platform/desktop/DesktopIntegration.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>
#include <optional>

#include "platform/base/Log.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/MimeAppsEdit.h"

// Resources of a static library are registered by a call outside every namespace.
static void registerTemplates() {
  Q_INIT_RESOURCE(templates);
}

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

const QByteArray desktopEntry = "com.maplebrook.corvalis.desktop";
const QByteArrayList schemes{"x-scheme-handler/corvxurl", "x-scheme-handler/corvxurls",
                             "x-scheme-handler/db-k3r8tq0vz5mha2x"};

/// Below the user's data folder.
const QString entryFile = u"applications/com.maplebrook.corvalis.desktop"_s;
const QString serviceFile = u"dbus-1/services/com.maplebrook.corvalis.service"_s;
const QString mimeFile = u"mime/packages/com.maplebrook.corvalis.xml"_s;
const QString iconFile = u"icons/hicolor/scalable/apps/com.maplebrook.corvalis.svg"_s;
const QString iconName = u"com.maplebrook.corvalis.png"_s;
const QString recordFile = u"com.maplebrook.corvalis/mimeapps-record.json"_s;

QString inData(const QString& file) {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' + file;
}

QString pictureFile(const QString& sizeFolder) {
  return u"icons/hicolor/%1/apps/%2"_s.arg(sizeFolder, iconName);
}

QString mimeAppsPath() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         u"/mimeapps.list"_s;
}

/// None when there is no such file.
std::optional<QByteArray> contentsOf(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  return file.readAll();
}

MaybeError write(const QString& path, const QByteArray& contents) {
  QDir().mkpath(QFileInfo(path).path());
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.commit())
    return std::nullopt;
  return desktopError(DesktopErrorFile, u"%1: %2"_s.arg(path, file.errorString()));
}

MaybeError remove(const QString& path) {
  QFile file(path);
  if (!file.exists() || file.remove()) return std::nullopt;
  return desktopError(DesktopErrorFile, u"%1: %2"_s.arg(path, file.errorString()));
}

/// Whether no reader of a desktop entry sees anything but a path in it.
bool isPlain(const QString& program) {
  return std::all_of(program.begin(), program.end(), [](QChar character) {
    return (character.unicode() < 128 && character.isLetterOrNumber()) ||
           u"/._+-"_s.contains(character);
  });
}

/// The program as the first word of an Exec key (Desktop Entry Specification, "The Exec key"): in
/// double quotes, and backslashes doubled once more because the key is a string. Without need there
/// are no quotes: xdg-open reads the key by itself on desktops that it does not know, and takes
/// them for a part of the path.
QByteArray execWord(const QString& program) {
  if (isPlain(program)) return QFile::encodeName(program);
  QByteArray word;
  for (const char character : QFile::encodeName(program)) {
    if (QByteArrayView("\"`$\\").contains(character)) word += '\\';
    word += character;
  }
  return '"' + word.replace('\\', "\\\\").replace('%', "%%") + '"';
}

/// The same for the bus's service file, which knows neither field codes nor string escapes.
QByteArray serviceWord(const QString& program) {
  return '\'' + QFile::encodeName(program).replace('\'', "'\\''") + '\'';
}

QByteArray filledTemplate(const QString& name, const QByteArray& program) {
  const auto text = contentsOf(u":/corvalis/packaging/"_s + name);
  return text.value_or(QByteArray()).replace("@PROGRAM@", program);
}

/// The list of default programs before and after our edit, so that it can be taken back exactly.
struct Record {
  /// None: there was no list.
  std::optional<QByteArray> before;
  QByteArray after;
};

std::optional<Record> readRecord() {
  const auto text = contentsOf(inData(recordFile));
  const QJsonObject object = QJsonDocument::fromJson(text.value_or(QByteArray())).object();
  if (!object.contains(u"after"_s)) return std::nullopt;
  const auto bytes = [&object](const QString& key) {
    return QByteArray::fromBase64(object.value(key).toString().toLatin1());
  };
  Record record{std::nullopt, bytes(u"after"_s)};
  if (object.contains(u"before"_s)) record.before = bytes(u"before"_s);
  return record;
}

MaybeError writeRecord(const Record& record) {
  QJsonObject object{{u"after"_s, QString::fromLatin1(record.after.toBase64())}};
  if (record.before) object.insert(u"before"_s, QString::fromLatin1(record.before->toBase64()));
  return write(inData(recordFile), QJsonDocument(object).toJson());
}

/// The list as it is without us; none when there was no list.
std::optional<QByteArray> listWithoutUs() {
  const auto current = contentsOf(mimeAppsPath());
  const auto record = readRecord();
  if (record && current == record->after) return record->before;
  if (!current) return std::nullopt;
  return withoutDefaultProgram(*current, schemes, desktopEntry);
}

MaybeError claimSchemes() {
  // Without a record, an entry of ours in the list is the user's own doing.
  const auto before = readRecord() ? listWithoutUs() : contentsOf(mimeAppsPath());
  const Record record{before,
                      withDefaultProgram(before.value_or(QByteArray()), schemes, desktopEntry)};
  // Recorded first: an edit without its record could not be taken back exactly.
  if (auto error = writeRecord(record)) return error;
  return write(mimeAppsPath(), record.after);
}

MaybeError releaseSchemes() {
  const auto before = listWithoutUs();
  if (auto error = before ? write(mimeAppsPath(), *before) : remove(mimeAppsPath())) return error;
  return remove(inData(recordFile));
}

/// A missing or failing database tool costs speed, not function.
void updateDatabase(const QString& tool, const QString& folder) {
  const QString program = findProgram(tool);
  if (program.isEmpty() || !QDir(inData(folder)).exists()) return;
  QProcess process;
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  process.start(program, {inData(folder)});
  const bool ended = process.waitForFinished(30'000);
  if (!ended || process.exitCode() != 0) logLine(u"%1 failed for %2."_s.arg(tool, inData(folder)));
  process.kill();
  process.waitForFinished();
}

void updateDatabases() {
  updateDatabase(u"update-desktop-database"_s, u"applications"_s);
  updateDatabase(u"update-mime-database"_s, u"mime"_s);
}

/// A bus that was there before the folder of its services sees them only when it looks again. One
/// that cannot be told finds them at the next log-in.
void tellSessionBus() {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  constexpr int patience = 10'000;  // milliseconds
  const auto reload =
      QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                     u"org.freedesktop.DBus"_s, u"ReloadConfig"_s);
  const QDBusMessage reply = bus.call(reload, QDBus::Block, patience);
  if (reply.type() == QDBusMessage::ErrorMessage)
    logLine(u"The session bus did not look for new services: %1"_s.arg(reply.errorMessage()));
}

MaybeError writeIcons(const DesktopIntegrationSettings& settings) {
  for (auto icon = settings.icons.begin(); icon != settings.icons.end(); ++icon) {
    const QString size = u"%1x%1"_s.arg(icon.key());
    if (auto error = write(inData(pictureFile(size)), icon.value())) return error;
  }
  if (settings.scalableIcon.isEmpty()) return std::nullopt;
  return write(inData(iconFile), settings.scalableIcon);
}

MaybeError removeIcons() {
  const QDir sizes(inData(u"icons/hicolor"_s));
  for (const QString& size : sizes.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    if (auto error = remove(inData(pictureFile(size)))) return error;
  return remove(inData(iconFile));
}

MaybeError writeFiles(const DesktopIntegrationSettings& settings) {
  const QByteArray entry =
      filledTemplate(u"com.maplebrook.corvalis.desktop.in"_s, execWord(settings.program));
  if (auto error = write(inData(entryFile), entry)) return error;
  const QByteArray service =
      filledTemplate(u"com.maplebrook.corvalis.service.in"_s, serviceWord(settings.program));
  if (auto error = write(inData(serviceFile), service)) return error;
  const QByteArray mimeType = filledTemplate(u"com.maplebrook.corvalis.mime.xml"_s, {});
  if (auto error = write(inData(mimeFile), mimeType)) return error;
  return writeIcons(settings);
}

}  // namespace

MaybeError integrateWithDesktop(const DesktopIntegrationSettings& settings) {
  registerTemplates();
  if (!QDir::isAbsolutePath(settings.program))
    return desktopError(DesktopErrorFile, u"The program's path must be absolute."_s);
  if (auto error = writeFiles(settings)) return error;
  if (auto error = claimSchemes()) return error;
  updateDatabases();
  tellSessionBus();
  return std::nullopt;
}

MaybeError removeDesktopIntegration() {
  if (auto error = releaseSchemes()) return error;
  for (const QString& file : {entryFile, serviceFile, mimeFile})
    if (auto error = remove(inData(file))) return error;
  if (auto error = removeIcons()) return error;
  updateDatabases();
  tellSessionBus();
  return std::nullopt;
}

}  // namespace desktop
