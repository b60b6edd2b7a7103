#include "platform/desktop/NoteImporter.h"

#include <QDateTime>

#include "platform/base/Identifier.h"
#include "platform/base/Log.h"
#include "platform/desktop/internal/EnexFile.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/MimeApplications.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

class EnexImporter : public NoteImporter, public std::enable_shared_from_this<EnexImporter> {
 public:
  EnexImporter(std::shared_ptr<FileManager> fileManager, std::chrono::milliseconds launcherLimit)
      : fileManager_(std::move(fileManager)), launcherLimit_(launcherLimit) {}

  void importFile(const QString& path, const QString& title, const QString& folder,
                  Completion completion) override {
    // A name without anything of the title: openers and note programs get no path to stumble over.
    const QString note = folder + u"/note-"_s + newUniversallyUniqueIdentifier() + u".enex"_s;
    const auto error = writeEnexFile({title, path, QDateTime::currentDateTimeUtc()}, note);
    dispatch::mainAsync([=, self = shared_from_this()] {
      if (!error) return self->open(note, completion);
      if (completion) completion(error);
    });
  }

 private:
  /// Not by xdg-open: outside the large desktops it goes by the contents, which are just XML.
  void open(const QString& note, const Completion& completion) {
    QStringList command = openCommand(defaultApplication(u"application/enex+xml"_s), note);
    if (command.isEmpty()) return show(note, u"no program is registered for notes"_s, completion);
    const QString program = command.takeFirst();
    launch(program, command, launcherLimit_,
           [=, self = shared_from_this()](const MaybeError& error) {
             if (error) return self->show(note, error->localizedDescription, completion);
             if (completion) completion(std::nullopt);
           });
  }

  void show(const QString& note, const QString& cause, const Completion& completion) {
    logLine(
        u"The note %1 is shown in the file manager, to be imported by hand: %2"_s.arg(note, cause));
    if (fileManager_) return fileManager_->reveal(note, completion);
    if (completion) completion(desktopError(DesktopErrorUnavailable, cause));
  }

  std::shared_ptr<FileManager> fileManager_;
  std::chrono::milliseconds launcherLimit_;
};

}  // namespace

std::shared_ptr<NoteImporter> NoteImporter::create(std::shared_ptr<FileManager> fileManager,
                                                   std::chrono::milliseconds launcherLimit) {
  return std::make_shared<EnexImporter>(std::move(fileManager), launcherLimit);
}

}  // namespace desktop
