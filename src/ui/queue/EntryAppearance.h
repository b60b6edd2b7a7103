#pragma once

#include <QString>
#include <optional>

class CVEntry;

namespace ui {

/// How a row shows the state of its entry, besides the word.
enum class StateShape { Waiting, Downloading, Ready, Processing, Done, Failed };

enum class Thumbnail { Placeholder, Representative, Error, Unchanged };

enum class Outcome { None, Captured, Failed };

/// What one state of an entry looks like in its row.
struct EntryAppearance {
  /// None hides the address.
  std::optional<QString> address;
  QString stateText;
  /// The state's word stands back.
  bool dimmed = false;
  StateShape shape = StateShape::Waiting;
  Thumbnail thumbnail = Thumbnail::Unchanged;
  bool spinning = false;
  /// Process and remove are shown together.
  bool actionsShown = false;
  bool revealShown = false;
  bool addressEnabled = false;
  /// None leaves the field as it was.
  std::optional<bool> titleEditable;
  /// None leaves the text as it was.
  std::optional<QString> title;
  /// What the user is notified of.
  Outcome outcome = Outcome::None;
  /// A new run begins: its first failure is notified again.
  bool rearmsNotification = false;

  static EntryAppearance of(const CVEntry& entry);
  /// Whether the spinner turns for what the entry is doing.
  static bool spins(const CVEntry& entry);
};

}  // namespace ui
