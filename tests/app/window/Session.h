#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <vector>

#include "support/Wait.h"

class AccessibleProgram;
class BusFake;
class CVDefaultPreferences;

/// `support::waitFor` with a limit for a dozen processes on a busy machine.
inline bool inTime(const std::function<bool()>& condition) {
  return support::waitFor(condition, std::chrono::minutes(2));
}

/// A desktop session of the test's own: an X server, a session bus with a notification service that
/// keeps what it is told, and a home folder. Whatever runs in it ends with it.
class Session {
 public:
  Session();
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Saves settings as the program itself does: automatic processing to PNG files in
  /// `downloads()`, without the snap effect, and then the changes. Before the program starts.
  void saveSettings(const std::function<void(CVDefaultPreferences&)>& change = {});

  /// Starts a program in the session.
  QProcess& start(const QString& program, const QStringList& arguments = {});
  /// Starts Corvalis and waits until its window can be used through `corvalis()`.
  QProcess& startCorvalis(const QStringList& arguments = {});
  /// Runs a program to its end and returns its exit status; -1 when it did not end.
  int run(const QString& program, const QStringList& arguments, const QByteArray& input = {});

  /// What other programs of the desktop do: corvalis_other_program, ready.
  QProcess& startOtherProgram(const QStringList& arguments);

  /// Presses and releases each of the keys, as "ctrl+v", on the keyboard of the X server.
  void pressKeys(const QStringList& keys);

  /// A call of org.freedesktop.Application.Open to the running program, without waiting for the
  /// reply.
  void sendRequest(const QString& request);

  QString path(const QString& name) const { return folder_.filePath(name); }
  QString downloads() const { return path(QStringLiteral("downloads")); }
  /// Every file below the download folder, also hidden ones, in alphabetical order.
  QStringList files() const;
  /// Writes a file into the session's folder and returns its path.
  QString write(const QString& name, const QByteArray& contents) const;

  /// "title: text" of the notifications so far, in their order.
  QStringList notifications() const;

  /// The running program as its user has it before him.
  const AccessibleProgram& corvalis() const { return *corvalis_; }
  const QDBusConnection& bus() const { return bus_; }
  bool isOnBus(const QString& service) const;
  /// Whether the bus knows how to start it.
  bool canBeStarted(const QString& service) const;
  /// Names of what engines have left in the folder for temporary files.
  QStringList leftovers() const;
  /// Names in the folder of files that are being worked on.
  QStringList workFiles() const;

  /// From now on, programs start the engine through a script that keeps count. Debian's engine.
  void recordEngineStarts();
  int engineStarts() const;

 private:
  void startDisplay();
  void startBus();
  QString firstLine(QProcess& process);

  QTemporaryDir folder_;
  QProcessEnvironment environment_;
  std::vector<std::unique_ptr<QProcess>> processes_;
  QDBusConnection bus_{QString()};
  std::unique_ptr<BusFake> notifications_;
  std::unique_ptr<AccessibleProgram> corvalis_;
};
