#include "app/Services.h"

#include "delivery/CVUtils.h"
#include "platform/defaults/UserDefaults.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

std::shared_ptr<CVDefaultPreferences> registerCommandLineServices(const QUrl& workFolder,
                                                                  CVUtils::Services services) {
  auto utils = std::make_shared<CVUtils>(std::move(services));
  utils->setDownloadsDirectory(workFolder);
  auto settings = std::make_shared<CVDefaultPreferences>(defaults::UserDefaults::inMemory());
  CVObjectRepository& repository = CVObjectRepository::singleton();
  repository.addObject(utils, u"utils"_s);
  repository.addObject(CVEntryTaskManager::create(), u"entryTaskManager"_s);
  repository.addObject(settings, u"preferences"_s);
  return settings;
}
