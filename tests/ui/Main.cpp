#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include "platform/dispatch/Dispatch.h"

/// Widgets need the larger application object. The home is the test's own, as in the common main.
int main(int argc, char** argv) {
  QTemporaryDir home;
  for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
    qputenv(name, home.filePath(QString::fromLatin1(name)).toLocal8Bit());
    QDir().mkpath(qEnvironmentVariable(name));
  }
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("corvalis"));
  dispatch::initialize();
  ::testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  dispatch::finish();
  return result;
}
