#pragma once

#include <QImage>
#include <QPointer>
#include <QString>
#include <memory>

#include "queue/CVEntry.h"
#include "queue/CVEntryDelegate.h"
#include "ui/queue/EntryAppearance.h"
#include "ui/queue/EntryRowView.h"

class CVDefaultPreferences;
class CVEntryViewController;
class QWidget;
namespace desktop {
class Notifications;
class SoundPlayer;
}  // namespace desktop

/// Hears what a row wants of its table. State changes come on the thread of the entry's setter.
class CVEntryViewControllerDelegate {
 public:
  virtual ~CVEntryViewControllerDelegate() = default;
  virtual void entryViewControllerRemoveWasRequested(CVEntryViewController& row) = 0;
  virtual void entryViewControllerStateChanged(CVEntryViewController& row) = 0;
  virtual void entryViewControllerMustGoUp(CVEntryViewController& row) = 0;
  virtual void entryViewControllerMustGoDown(CVEntryViewController& row) = 0;
};

/// One row of the queue: shows an entry, offers its actions and notifies the user of its outcome.
/// It works with and without a view, which is made when the row comes into sight and dropped when
/// it is long out of it. Main thread, but for the entry's notifications, `apply` and
/// `applyCompletionFactor`, which may come on any thread.
class CVEntryViewController : public CVEntryDelegate,
                              public std::enable_shared_from_this<CVEntryViewController> {
 public:
  /// A missing service stays silent.
  struct Services {
    std::shared_ptr<desktop::Notifications> notifications;
    std::shared_ptr<desktop::SoundPlayer> sounds;
  };

  /// Ends on the main thread, wherever its last owner lets go of it.
  static std::shared_ptr<CVEntryViewController> create(Services services);
  CVEntryViewController(const CVEntryViewController&) = delete;
  CVEntryViewController& operator=(const CVEntryViewController&) = delete;

  /// Before the row is shown: the row becomes the entry's observer.
  void setEntry(std::shared_ptr<CVEntry> entry);
  const std::shared_ptr<CVEntry>& entry() const { return entry_; }
  void setDelegate(std::weak_ptr<CVEntryViewControllerDelegate> delegate);

  /// Makes the view on first use. It belongs to the widget that it is put into.
  QWidget* view();
  ui::EntryRowView* viewIfLoaded() const { return view_; }
  void unloadView();

  /// Which of the two moves the table has room for.
  void setMovable(bool up, bool down);

  void updateTheme();
  void apply();
  void applyCompletionFactor();
  /// Addresses have one colour in all states.
  void setURLColor(const QColor& color);

  bool notificationPresented() const { return notificationPresented_; }
  /// What the title field shows.
  QString titleText() const { return titleText_; }

  void onProcess();
  void onRemove();
  void onReveal();
  void onDisplayMiniBrowser();
  void onUp();
  void onDown();
  void onTitleEditingEnded(const QString& title);

  void entryCurrentURLChanged(CVEntry& entry, const std::optional<QUrl>& url) override;
  void entryRepresentativeImageChanged(CVEntry& entry,
                                       const std::shared_ptr<const imaging::Image>& image) override;
  void entryTitleChanged(CVEntry& entry, const std::optional<QString>& title) override;
  void entryCompletionFactorChanged(CVEntry& entry, double factor) override;
  void entryError(CVEntry& entry, const std::shared_ptr<CVError>& error) override;
  void entryStateChanged(CVEntry& entry, CVEntryState state) override;

 private:
  explicit CVEntryViewController(Services services);
  ~CVEntryViewController() override;

  void loadView();
  void connectActions();
  void render();
  void renderCompletionFactor();
  QImage picture(ui::Thumbnail thumbnail) const;
  void showInView();
  void notify(ui::Outcome outcome);
  static bool settingIsOn(bool (CVDefaultPreferences::*setting)() const);

  const Services services_;
  std::shared_ptr<CVEntry> entry_;
  std::weak_ptr<CVEntryViewControllerDelegate> delegate_;
  QPointer<ui::EntryRowView> view_;
  QList<QMetaObject::Connection> connections_;

  /// What the view shows, or would.
  ui::EntryAppearance shown_;
  QString titleText_;
  bool titleEditable_ = false;
  QImage thumbnail_;
  bool movableUp_ = false;
  bool movableDown_ = false;
  bool notificationPresented_ = false;
};
