#include <gtest/gtest.h>

#include <QDir>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "platform/dispatch/Dispatch.h"

namespace {

/// A home of the test's own: nothing is read from or left in the user's folders.
void moveHomeTo(const QString& folder) {
  const QByteArray home = folder.toLocal8Bit();
  qputenv("HOME", home);
  for (const char* name :
       {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
    const QString path = folder + u'/' + QString::fromLatin1(name).toLower();
    QDir().mkpath(path);
    qputenv(name, path.toLocal8Bit());
  }
  QFile::setPermissions(qEnvironmentVariable("XDG_RUNTIME_DIR"),
                        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

}  // namespace

int main(int argc, char** argv) {
  QTemporaryDir home;
  moveHomeTo(home.path());
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("corvalis"));
  dispatch::initialize();
  ::testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  dispatch::finish();
  return result;
}
