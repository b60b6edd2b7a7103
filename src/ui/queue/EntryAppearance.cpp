#include "ui/queue/EntryAppearance.h"

#include "delivery/CVUtils.h"
#include "queue/CVEntry.h"

using namespace Qt::StringLiterals;

namespace ui {
namespace {

EntryAppearance working(const QString& text, StateShape shape) {
  EntryAppearance look;
  look.stateText = text;
  look.shape = shape;
  look.thumbnail = Thumbnail::Placeholder;
  look.dimmed = shape == StateShape::Downloading;
  look.rearmsNotification = true;
  return look;
}

EntryAppearance atRest(const QString& text, StateShape shape, Thumbnail thumbnail) {
  EntryAppearance look;
  look.stateText = text;
  look.shape = shape;
  look.thumbnail = thumbnail;
  look.actionsShown = true;
  look.addressEnabled = true;
  look.titleEditable = true;
  return look;
}

EntryAppearance downloaded(const CVEntry& entry, bool failed) {
  EntryAppearance look =
      failed ? atRest(u"Error downloading URL..."_s, StateShape::Failed, Thumbnail::Error)
             : atRest(u"Ready to process..."_s, StateShape::Ready, Thumbnail::Representative);
  look.outcome = failed ? Outcome::Failed : Outcome::None;
  const auto title = entry.title();
  look.title = title ? CVUtils::trimFileName(*title) : QString();
  return look;
}

EntryAppearance processing() {
  EntryAppearance look;
  look.stateText = u"Processing..."_s;
  look.dimmed = true;
  look.shape = StateShape::Processing;
  look.thumbnail = Thumbnail::Representative;
  look.titleEditable = false;
  return look;
}

EntryAppearance done(const CVEntry& entry, bool failed) {
  EntryAppearance look =
      failed ? atRest(u"Error capturing..."_s, StateShape::Failed, Thumbnail::Unchanged)
             : atRest(u"Done..."_s, StateShape::Done, Thumbnail::Representative);
  look.dimmed = true;
  look.revealShown = !failed && entry.canBeRevealed();
  look.outcome = failed ? Outcome::Failed : Outcome::Captured;
  return look;
}

EntryAppearance ofState(const CVEntry& entry) {
  const bool failed = entry.error() != nullptr;
  switch (entry.state()) {
    case CVEntryStateWaiting:
      return working(u"Waiting to download..."_s, StateShape::Waiting);
    case CVEntryStateDownloading:
      return working(u"Downloading..."_s, StateShape::Downloading);
    case CVEntryStateDownloaded:
      return downloaded(entry, failed);
    case CVEntryStateProcessing:
      return processing();
    case CVEntryStateDone:
      return done(entry, failed);
  }
  return {};
}

std::optional<QString> addressOf(const CVEntry& entry) {
  const auto current = entry.currentURL();
  const QUrl url = current ? *current : entry.initialURL();
  if (url.isEmpty()) return std::nullopt;
  return QString::fromUtf8(url.toEncoded());
}

}  // namespace

EntryAppearance EntryAppearance::of(const CVEntry& entry) {
  EntryAppearance look = ofState(entry);
  look.address = addressOf(entry);
  look.spinning = spins(entry);
  return look;
}

bool EntryAppearance::spins(const CVEntry& entry) {
  const CVEntryState state = entry.state();
  return state != CVEntryStateDownloaded && state != CVEntryStateDone;
}

}  // namespace ui
