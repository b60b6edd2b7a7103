#include <QCoreApplication>
#include <QFileInfo>
#include <future>
#include <memory>
#include <mutex>

#include "delivery/CVUtils.h"
#include "platform/base/Log.h"
#include "platform/desktop/DeliveryScripts.h"
#include "platform/desktop/FileClipboard.h"
#include "platform/desktop/MailComposer.h"
#include "platform/desktop/NoteImporter.h"
#include "platform/desktop/ScriptRunner.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/ClientsManager.h"

using namespace Qt::StringLiterals;

namespace {

/// The page of the program's own folder in the user's Dropbox.
const QString dropboxFolderPage = u"https://www.dropbox.com/home/Apps/Corvalis"_s;

void logFailure(const QString& destination, const MaybeError& error) {
  if (!error) return;
  logProblem(
      u"%1: the file was not handed over: %2"_s.arg(destination, error->localizedDescription));
}

void logMissing(const QString& destination) {
  logProblem(u"%1: this run of the program has no way there."_s.arg(destination));
}

/// A machine with a script system is served by scripts alone: false where it has none.
bool ranScript(const CVUtils::Services& services, const QString& destination,
               const QString& script) {
  if (!services.scriptRunner || !services.scriptRunner->isAvailable()) return false;
  const auto result = services.scriptRunner->run(script);
  if (!result) logFailure(destination, result.error());
  return true;
}

using Completion = std::function<void(MaybeError)>;

/// What a waiting thread is released by, whichever comes first.
class Release {
 public:
  void release() {
    std::call_once(once_, [this] { promise_.set_value(); });
  }
  void wait() { promise_.get_future().wait(); }

 private:
  std::once_flag once_;
  std::promise<void> promise_;
};

/// Begins a hand-over that ends on the main thread, and waits for its end: a command-line run must
/// not be over before it. A program that is ending does not wait for a user who is still choosing.
/// The main thread itself cannot wait, there the outcome is only logged.
void handOver(const QString& destination, const std::function<void(Completion)>& begin) {
  auto ended = std::make_shared<Release>();
  const auto quitting = QObject::connect(
      QCoreApplication::instance(), &QCoreApplication::aboutToQuit, [ended] { ended->release(); });
  begin([ended, destination](const MaybeError& error) {
    logFailure(destination, error);
    ended->release();
  });
  if (!dispatch::isMainThread()) ended->wait();
  QObject::disconnect(quitting);
}

void upload(const std::shared_ptr<dropbox::ClientsManager>& manager, const QString& path) {
  const auto client = manager ? manager->authorizedClient() : nullptr;
  if (!client) return logProblem(u"DropBox: no account is linked."_s);
  const auto result =
      client->filesRoutes().uploadFileAndWait(u'/' + QFileInfo(path).fileName(), path);
  if (result)
    logLine(result->description() + u'\n');
  else
    logFailure(u"DropBox"_s, result.error());
}

}  // namespace

void CVUtils::newMailWithAttachment(const QUrl& file) const {
  const QString path = file.toLocalFile();
  if (ranScript(services_, u"E-Mail"_s, desktop::mailScript(path))) return;
  const auto composer = services_.mailComposer;
  if (!composer) return logMissing(u"E-Mail"_s);
  handOver(u"E-Mail"_s,
           [&](const Completion& completion) { composer->newMessage(path, completion); });
}

void CVUtils::pasteFileToClipboard(const QUrl& file) const {
  const QString path = file.toLocalFile();
  if (ranScript(services_, u"Pasteboard"_s, desktop::fileClipboardScript(path))) return;
  if (!services_.clipboard) return logMissing(u"Pasteboard"_s);
  logFailure(u"Pasteboard"_s, services_.clipboard->setFile(path));
}

void CVUtils::importFileIntoEvernote(const QUrl& file, const QString& title) const {
  const QString path = file.toLocalFile();
  if (ranScript(services_, u"Evernote"_s, desktop::evernoteScript(path, title))) return;
  const auto importer = services_.noteImporter;
  if (!importer) return logMissing(u"Evernote"_s);
  const QString folder = createTemporaryFolder().toLocalFile();
  handOver(u"Evernote"_s, [&](const Completion& completion) {
    importer->importFile(path, title, folder, completion);
  });
}

void CVUtils::uploadFileToDropBox(const QUrl& file) const {
  upload(services_.dropbox, file.toLocalFile());
  const QString script = desktop::textClipboardScript(dropboxFolderPage);
  if (ranScript(services_, u"DropBox"_s, script)) return;
  if (!services_.clipboard) return logMissing(u"Pasteboard"_s);
  logFailure(u"Pasteboard"_s, services_.clipboard->setText(dropboxFolderPage));
}
