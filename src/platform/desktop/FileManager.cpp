#include "platform/desktop/FileManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFileInfo>

#include "platform/base/Log.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

constexpr std::chrono::seconds patience{10};

void conclude(const FileManager::Completion& completion, const MaybeError& error) {
  if (error) logLine(u"A file could not be shown: %1"_s.arg(error->localizedDescription));
  if (completion) completion(error);
}

void openFolder(const QString& path, const FileManager::Completion& completion) {
  openWithRegisteredProgram(QFileInfo(path).absolutePath(), patience,
                            [completion](const MaybeError& error) { conclude(completion, error); });
}

void showItem(const QString& path, const FileManager::Completion& completion) {
  auto message = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s,
                                                u"/org/freedesktop/FileManager1"_s,
                                                u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
  message << QStringList{QString::fromLatin1(fileAddress(path))} << QString();
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(
      message, static_cast<int>(std::chrono::milliseconds(patience).count())));
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [=](QDBusPendingCallWatcher* call) {
    call->deleteLater();
    if (call->isError()) return openFolder(path, completion);
    conclude(completion, std::nullopt);
  });
}

class DesktopFileManager : public FileManager {
 public:
  void reveal(const QString& path, Completion completion) override {
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
      return dispatch::mainAsync([=] {
        conclude(completion, desktopError(DesktopErrorFile, u"%1 does not exist."_s.arg(path)));
      });
    dispatch::mainAsync([=] { showItem(file.absoluteFilePath(), completion); });
  }
};

}  // namespace

std::shared_ptr<FileManager> FileManager::create() {
  return std::make_shared<DesktopFileManager>();
}

}  // namespace desktop
