#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "intake/CVAppDelegate.h"
#include "platform/desktop/Notifications.h"
#include "platform/desktop/SoundPlayer.h"
#include "queue/CVEntry.h"
#include "ui/queue/CVEntryTableController.h"
#include "ui/window/CVMainWindowController.h"

namespace test {

/// An entry whose steps end when the test says so. It counts what it is asked for.
class Entry : public CVEntry {
 public:
  explicit Entry(const QString& address = QStringLiteral("http://127.0.0.1/page"));

  void prepareWithCompletion(Completion completion) override;
  void processWithCompletion(Completion completion) override;
  void displayAdjustmentWindow() override { ++adjusted; }
  bool canBeRevealed() const override { return revealable; }
  void reveal() override { ++revealed; }

  void endPreparing(const MaybeError& error = std::nullopt);
  void endProcessing(const MaybeError& error = std::nullopt);
  /// The state with an error of the kind that belongs to it.
  void fail(CVEntryState state);

  std::atomic<int> prepared = 0;
  std::atomic<int> processed = 0;
  int adjusted = 0;
  int revealed = 0;
  bool revealable = true;

 private:
  std::mutex mutex_;
  Completion preparing_;
  Completion processing_;
};

class RecordedNotifications : public desktop::Notifications {
 public:
  void deliver(const desktop::Notification& notification) override;
  std::vector<desktop::Notification> delivered;
};

class RecordedSounds : public desktop::SoundPlayer {
 public:
  void play(const QString& name) override { played += name; }
  QStringList played;
};

/// The whole program around the windows, with settings of its own that nobody keeps and without
/// the page engine.
class Program {
 public:
  Program();
  ~Program();

  std::shared_ptr<Entry> add(CVEntryState state = CVEntryStateDownloaded,
                             const QString& title = QStringLiteral("A page"));
  CVDefaultPreferences& preferences() const;

  /// Runs the main queue until everything that was asked for so far is done.
  static void settle();

  std::shared_ptr<RecordedNotifications> notifications = std::make_shared<RecordedNotifications>();
  std::shared_ptr<RecordedSounds> sounds = std::make_shared<RecordedSounds>();
  std::shared_ptr<CVEntryTableController> table;
  std::shared_ptr<CVAppDelegate> delegate;
  std::unique_ptr<CVMainWindowController> window;
  int terminated = 0;
};

/// The widget of that object name, of that class.
template <class Widget>
Widget& child(QWidget& parent, const char* name) {
  auto* found = parent.findChild<Widget*>(QString::fromLatin1(name));
  if (!found) qFatal("no widget named %s", name);
  return *found;
}

}  // namespace test
