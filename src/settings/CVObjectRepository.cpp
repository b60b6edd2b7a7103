#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

CVObjectRepository& CVObjectRepository::singleton() {
  static CVObjectRepository repository;
  return repository;
}

void CVObjectRepository::addObject(std::shared_ptr<void> object, const QString& name) {
  objects_.insert(name, std::move(object));
}

std::shared_ptr<CVUtils> CVObjectRepository::getUtils() const {
  return std::static_pointer_cast<CVUtils>(objects_.value(u"utils"_s));
}

std::shared_ptr<CVEntryTaskManager> CVObjectRepository::getEntryTaskManager() const {
  return std::static_pointer_cast<CVEntryTaskManager>(objects_.value(u"entryTaskManager"_s));
}

std::shared_ptr<CVDefaultPreferences> CVObjectRepository::getPreferences() const {
  return std::static_pointer_cast<CVDefaultPreferences>(objects_.value(u"preferences"_s));
}
