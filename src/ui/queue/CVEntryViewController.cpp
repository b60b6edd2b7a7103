#include "ui/queue/CVEntryViewController.h"

#include "platform/desktop/Notifications.h"
#include "platform/desktop/SoundPlayer.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/imaging/Image.h"
#include "queue/CVEntryTaskManager.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui/look/NamedImage.h"
#include "ui/queue/EntryRowView.h"

using namespace Qt::StringLiterals;
using ui::EntryAppearance;
using ui::Outcome;
using ui::Thumbnail;

namespace {

/// One white sheet for all rows that have no picture yet.
const QImage& placeholder() {
  static const QImage image = imaging::Image::swatchForThumbnail()->pixels();
  return image;
}

const QImage& errorPicture() {
  static const QImage image = ui::namedPixmap(u"error_thumbnail.png"_s, 2).toImage();
  return image;
}

/// Views of rows that went out of sight, ready for rows that come into it: making a view takes
/// milliseconds, and scrolling asks for many. They still belong to their table.
constexpr qsizetype mostSpareViews = 12;

QList<QPointer<ui::EntryRowView>>& spareViews() {
  static QList<QPointer<ui::EntryRowView>> views;
  return views;
}

ui::EntryRowView* takeView() {
  while (!spareViews().isEmpty()) {
    if (auto* view = spareViews().takeLast().data()) return view;
  }
  return new ui::EntryRowView;
}

void giveBack(ui::EntryRowView& view) {
  view.hide();
  view.prepareForReuse();
  if (spareViews().size() < mostSpareViews) {
    spareViews().append(&view);
  } else {
    view.deleteLater();
  }
}

void enqueueForPreparing(const std::shared_ptr<CVEntry>& entry) {
  if (auto tasks = CVObjectRepository::singleton().getEntryTaskManager()) {
    tasks->enqueueEntryForPreparing(entry, {});
  }
}

void enqueueForProcessing(const std::shared_ptr<CVEntry>& entry) {
  if (auto tasks = CVObjectRepository::singleton().getEntryTaskManager()) {
    tasks->enqueueEntryForProcessing(entry, {});
  }
}

}  // namespace

std::shared_ptr<CVEntryViewController> CVEntryViewController::create(Services services) {
  return {new CVEntryViewController(std::move(services)), [](CVEntryViewController* row) {
            if (dispatch::isMainThread()) {
              delete row;
            } else {
              dispatch::mainAsync([row] { delete row; });
            }
          }};
}

CVEntryViewController::CVEntryViewController(Services services) : services_(std::move(services)) {}

CVEntryViewController::~CVEntryViewController() {
  unloadView();
}

void CVEntryViewController::setEntry(std::shared_ptr<CVEntry> entry) {
  entry_ = std::move(entry);
  entry_->setDelegate(weak_from_this());
  shown_ = EntryAppearance::of(*entry_);
  thumbnail_ = placeholder();
}

void CVEntryViewController::setDelegate(std::weak_ptr<CVEntryViewControllerDelegate> delegate) {
  delegate_ = std::move(delegate);
}

QWidget* CVEntryViewController::view() {
  if (!view_) loadView();
  return view_;
}

/// What is shown is what the last rendering found: a row that scrolls into sight is no new outcome
/// to notify the user of.
void CVEntryViewController::loadView() {
  view_ = takeView();
  updateTheme();
  connectActions();
  showInView();
  view_->setMovable(movableUp_, movableDown_);
}

void CVEntryViewController::connectActions() {
  using View = ui::EntryRowView;
  // The view may outlive the row, and an action may take the row out of its table.
  const auto connect = [this](void (View::*signal)(), void (CVEntryViewController::*act)()) {
    connections_ += QObject::connect(view_, signal, view_, [weak = weak_from_this(), act] {
      if (const auto self = weak.lock()) ((*self).*act)();
    });
  };
  connect(&View::processRequested, &CVEntryViewController::onProcess);
  connect(&View::removeRequested, &CVEntryViewController::onRemove);
  connect(&View::revealRequested, &CVEntryViewController::onReveal);
  connect(&View::adjustRequested, &CVEntryViewController::onDisplayMiniBrowser);
  connect(&View::upRequested, &CVEntryViewController::onUp);
  connect(&View::downRequested, &CVEntryViewController::onDown);
  connections_ += QObject::connect(view_, &View::titleEdited, view_,
                                   [weak = weak_from_this()](const QString& title) {
                                     if (const auto self = weak.lock())
                                       self->onTitleEditingEnded(title);
                                   });
}

void CVEntryViewController::unloadView() {
  if (!view_) return;
  for (const QMetaObject::Connection& connection : connections_)
    QObject::disconnect(connection);
  connections_.clear();
  giveBack(*view_);
  view_ = nullptr;
}

void CVEntryViewController::setMovable(bool up, bool down) {
  movableUp_ = up;
  movableDown_ = down;
  if (view_) view_->setMovable(up, down);
}

void CVEntryViewController::updateTheme() {
  if (view_) view_->updateTheme();
}

void CVEntryViewController::setURLColor(const QColor&) {}

void CVEntryViewController::apply() {
  dispatch::mainAsync([weak = weak_from_this()] {
    if (auto row = weak.lock()) row->render();
  });
}

void CVEntryViewController::applyCompletionFactor() {
  dispatch::mainAsync([weak = weak_from_this()] {
    if (auto row = weak.lock()) row->renderCompletionFactor();
  });
}

void CVEntryViewController::render() {
  shown_ = EntryAppearance::of(*entry_);
  if (shown_.rearmsNotification) notificationPresented_ = false;
  if (shown_.title) titleText_ = *shown_.title;
  if (shown_.titleEditable) titleEditable_ = *shown_.titleEditable;
  if (shown_.thumbnail != Thumbnail::Unchanged) thumbnail_ = picture(shown_.thumbnail);
  if (view_) showInView();
  notify(shown_.outcome);
  applyCompletionFactor();
}

QImage CVEntryViewController::picture(Thumbnail thumbnail) const {
  if (thumbnail == Thumbnail::Error) return errorPicture();
  const auto image = entry_->representativeImage();
  if (thumbnail == Thumbnail::Representative) return image ? image->pixels() : QImage();
  return placeholder();
}

void CVEntryViewController::showInView() {
  view_->show(shown_, titleText_, titleEditable_);
  view_->setThumbnail(thumbnail_);
}

void CVEntryViewController::renderCompletionFactor() {
  shown_.spinning = EntryAppearance::spins(*entry_);
  if (view_) view_->setSpinning(shown_.spinning);
}

bool CVEntryViewController::settingIsOn(bool (CVDefaultPreferences::*setting)() const) {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  return preferences && ((*preferences).*setting)();
}

/// A failure is told once in a run; a success each time that its row is rendered.
void CVEntryViewController::notify(Outcome outcome) {
  if (outcome == Outcome::None || notificationPresented_) return;
  if (!settingIsOn(&CVDefaultPreferences::systemNotifications)) return;
  const bool failed = outcome == Outcome::Failed;
  if (failed) notificationPresented_ = true;
  if (!services_.notifications) return;
  desktop::Notification notification;
  notification.kind =
      failed ? desktop::Notification::Kind::Failure : desktop::Notification::Kind::Information;
  notification.title = failed ? u"Error while capturing"_s : u"Snapshot captured"_s;
  notification.informativeText =
      (failed ? u"Error while capturing "_s : u"Snapshot captured for "_s) + titleText_;
  notification.soundName =
      failed ? u"Basso"_s : QString::fromUtf16(desktop::defaultNotificationSound);
  services_.notifications->deliver(notification);
}

void CVEntryViewController::onProcess() {
  const CVEntryState state = entry_->state();
  const bool failedToDownload = state == CVEntryStateDownloaded && entry_->error();
  if (state != CVEntryStateDownloaded && state != CVEntryStateDone) return;
  entry_->setError(nullptr);
  failedToDownload ? enqueueForPreparing(entry_) : enqueueForProcessing(entry_);
}

void CVEntryViewController::onRemove() {
  if (auto delegate = delegate_.lock()) delegate->entryViewControllerRemoveWasRequested(*this);
  if (services_.sounds) services_.sounds->play(QString::fromUtf16(desktop::emptyTrashSound));
}

void CVEntryViewController::onReveal() {
  entry_->reveal();
}

void CVEntryViewController::onDisplayMiniBrowser() {
  const CVEntryState state = entry_->state();
  if (state != CVEntryStateDownloaded && state != CVEntryStateDone) return;
  entry_->setError(nullptr);
  entry_->displayAdjustmentWindow();
}

void CVEntryViewController::onUp() {
  if (auto delegate = delegate_.lock()) delegate->entryViewControllerMustGoUp(*this);
}

void CVEntryViewController::onDown() {
  if (auto delegate = delegate_.lock()) delegate->entryViewControllerMustGoDown(*this);
}

void CVEntryViewController::onTitleEditingEnded(const QString& title) {
  titleText_ = title;
  entry_->setTitle(title);
}

void CVEntryViewController::entryCurrentURLChanged(CVEntry&, const std::optional<QUrl>&) {
  apply();
}

void CVEntryViewController::entryRepresentativeImageChanged(
    CVEntry&, const std::shared_ptr<const imaging::Image>&) {
  apply();
}

void CVEntryViewController::entryTitleChanged(CVEntry&, const std::optional<QString>&) {
  apply();
}

void CVEntryViewController::entryCompletionFactorChanged(CVEntry&, double) {
  applyCompletionFactor();
}

void CVEntryViewController::entryError(CVEntry&, const std::shared_ptr<CVError>&) {
  apply();
}

void CVEntryViewController::entryStateChanged(CVEntry& entry, CVEntryState) {
  apply();
  const auto delegate = delegate_.lock();
  if (!delegate) return;
  delegate->entryViewControllerStateChanged(*this);
  if (settingIsOn(&CVDefaultPreferences::automaticallyRemoveFromQueueOncePrinted) &&
      entry.state() == CVEntryStateDone && !entry.error()) {
    delegate->entryViewControllerRemoveWasRequested(*this);
  }
}
