#pragma once

#include <QString>
#include <QUrl>
#include <cstdint>
#include <memory>
#include <optional>

class CVEntry;
class CVError;
namespace imaging {
class Image;
}

/// Where an entry is in its life. A failure is no state of its own: it is `CVEntryStateDownloaded`
/// or `CVEntryStateDone` with an error present.
enum CVEntryState : std::int32_t {
  CVEntryStateWaiting = 0,
  CVEntryStateDownloading = 1,
  CVEntryStateDownloaded = 2,
  CVEntryStateProcessing = 3,
  CVEntryStateDone = 4,
};

/// The one observer of an entry. Each operation is called synchronously on the thread of the
/// setter, also when the value did not change.
class CVEntryDelegate {
 public:
  virtual ~CVEntryDelegate() = default;
  virtual void entryCurrentURLChanged(CVEntry& entry, const std::optional<QUrl>& url) = 0;
  virtual void entryRepresentativeImageChanged(
      CVEntry& entry, const std::shared_ptr<const imaging::Image>& image) = 0;
  virtual void entryTitleChanged(CVEntry& entry, const std::optional<QString>& title) = 0;
  virtual void entryCompletionFactorChanged(CVEntry& entry, double factor) = 0;
  virtual void entryError(CVEntry& entry, const std::shared_ptr<CVError>& error) = 0;
  virtual void entryStateChanged(CVEntry& entry, CVEntryState state) = 0;
};
