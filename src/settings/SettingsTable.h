#pragma once

class CVDefaultPreferences;
namespace defaults {
class UserDefaults;
}

/// The one table of persisted settings: key, text form, what a missing key means, and the default
/// of each application-wide option. Saving, loading and resetting all walk it, in its order.
class SettingsTable {
 public:
  static void applyDefaults(CVDefaultPreferences& settings);
  static void write(const CVDefaultPreferences& settings, defaults::UserDefaults& store);
  static void readInto(CVDefaultPreferences& settings, const defaults::UserDefaults& store);

  /// Whether a full set was ever written.
  static bool isSaved(const defaults::UserDefaults& store);

 private:
  struct Row;
  template <class Visitor>
  static void visit(Visitor&& visitor);
};
