#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/base/Error.h"

namespace defaults {

/// A store of strings under string keys that survives restarts. May be used from every thread.
///
/// The file is JSON, one object of strings. It is written whole, beside its place, and renamed, so
/// a reader (another running program included) sees one complete set, never a mixed or an empty
/// one. A file that cannot be read as such is set aside under the name "<file>.damaged", never
/// overwritten.
class UserDefaults {
 public:
  /// The user's own settings: "corvalis/settings.json" in the configuration folder.
  static std::shared_ptr<UserDefaults> standard();

  /// A store in `path`. A missing file is an empty store.
  static std::shared_ptr<UserDefaults> open(const QString& path);

  /// A store that ends with the program.
  static std::shared_ptr<UserDefaults> inMemory();

  std::optional<QString> stringForKey(const QString& key) const;

  /// Sets or, with none, removes the key. Nothing is written before `synchronize`.
  void setString(const std::optional<QString>& value, const QString& key);

  /// Writes the whole set to the disk. The error says in one sentence why it could not be saved.
  MaybeError synchronize();

  /// What was wrong with the file when the store was opened.
  MaybeError openingError() const;

 private:
  explicit UserDefaults(QString path);
  void read();
  void setAside(const QString& reason);

  const QString path_;
  mutable std::mutex mutex_;
  QHash<QString, QString> values_;
  MaybeError openingError_;
};

}  // namespace defaults
