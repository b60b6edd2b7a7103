#pragma once

#include <QHash>
#include <QString>
#include <memory>

class CVDefaultPreferences;
class CVEntryTaskManager;
class CVUtils;

/// The application's shared services by name: "utils", "entryTaskManager" and "preferences".
/// Filled once on the main thread at start-up, before any other thread reads it.
class CVObjectRepository {
 public:
  /// The one repository of the process, made on first use; safe from every thread.
  static CVObjectRepository& singleton();

  CVObjectRepository() = default;
  CVObjectRepository(const CVObjectRepository&) = delete;
  CVObjectRepository& operator=(const CVObjectRepository&) = delete;

  /// Stores the object, replacing the one of that name. The name decides the type: see the getters.
  void addObject(std::shared_ptr<void> object, const QString& name);

  /// Empty until the service is registered.
  std::shared_ptr<CVUtils> getUtils() const;
  std::shared_ptr<CVEntryTaskManager> getEntryTaskManager() const;
  std::shared_ptr<CVDefaultPreferences> getPreferences() const;

 private:
  QHash<QString, std::shared_ptr<void>> objects_;
};
