#include "app/PlatformServices.h"

#include "platform/browsers/AddOnDoor.h"
#include "platform/browsers/UserBrowsers.h"
#include "platform/desktop/FileClipboard.h"
#include "platform/desktop/FileManager.h"
#include "platform/desktop/MailComposer.h"
#include "platform/desktop/NoteImporter.h"
#include "platform/desktop/RunningApplications.h"
#include "platform/desktop/ScriptRunner.h"
#include "platform/dropbox/ClientsManager.h"

namespace {

/// The process's own manager: it ends with the application object, not with its holders.
std::shared_ptr<dropbox::ClientsManager> sharedDropbox() {
  return {&dropbox::ClientsManager::shared(), [](dropbox::ClientsManager*) {}};
}

}  // namespace

CVUtils::Services makePlatformServices(std::shared_ptr<browsers::AddOnDoor> addOnDoor) {
  CVUtils::Services services;
  services.scriptRunner = desktop::ScriptRunner::create();
  services.runningApplications = desktop::RunningApplications::create();
  services.mailComposer = desktop::MailComposer::create();
  services.clipboard = desktop::FileClipboard::create();
  services.noteImporter = desktop::NoteImporter::create(desktop::FileManager::create());
  services.dropbox = sharedDropbox();
  const browsers::BrowserAccess access{services.scriptRunner, services.runningApplications,
                                       std::move(addOnDoor)};
  services.safari = browsers::safariFrontPage(access);
  services.chrome = browsers::chromeFrontPage(access);
  return services;
}
