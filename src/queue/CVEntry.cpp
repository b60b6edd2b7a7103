#include "queue/CVEntry.h"

namespace {

constexpr QSizeF thumbnailBox(128, 92);

/// The title becomes a file's name: no path separator, no quotes.
std::optional<QString> sanitised(std::optional<QString> title) {
  if (!title) return title;
  title->replace(u'/', u' ');
  title->remove(u'"');
  return title;
}

}  // namespace

CVEntry::CVEntry(QUrl url, std::optional<QString> source)
    : initialURL_(std::move(url)), source_(std::move(source)) {
  setState(CVEntryStateWaiting);
}

CVEntry::~CVEntry() = default;

void CVEntry::prepareWithCompletion(Completion) {}

void CVEntry::processWithCompletion(Completion) {}

std::optional<QUrl> CVEntry::createTemporaryPDFWithConversionMode(const QString&, MaybeError&) {
  return std::nullopt;
}

void CVEntry::displayAdjustmentWindow() {}

bool CVEntry::canBeRevealed() const {
  return false;
}

void CVEntry::reveal() {}

void CVEntry::setState(CVEntryState state) {
  store(state_, state);
  if (const auto observer = delegate()) observer->entryStateChanged(*this, state);
}

void CVEntry::setCurrentURL(std::optional<QUrl> url) {
  store(currentURL_, url);
  if (const auto observer = delegate()) observer->entryCurrentURLChanged(*this, url);
}

void CVEntry::setRepresentativeImage(const std::shared_ptr<const imaging::Image>& image) {
  const std::shared_ptr<const imaging::Image> scaled =
      image ? image->imageByScalingProportionallyToSize(thumbnailBox) : nullptr;
  store(representativeImage_, scaled);
  if (const auto observer = delegate()) observer->entryRepresentativeImageChanged(*this, scaled);
}

void CVEntry::setTitle(std::optional<QString> title) {
  const std::optional<QString> stored = sanitised(std::move(title));
  store(title_, stored);
  if (const auto observer = delegate()) observer->entryTitleChanged(*this, stored);
}

void CVEntry::setCompletionFactor(double factor) {
  store(completionFactor_, factor);
  if (const auto observer = delegate()) observer->entryCompletionFactorChanged(*this, factor);
}

void CVEntry::setError(std::shared_ptr<CVError> error) {
  store(error_, error);
  if (const auto observer = delegate()) observer->entryError(*this, error);
}

void CVEntry::setDelegate(std::weak_ptr<CVEntryDelegate> delegate) {
  store(delegate_, std::move(delegate));
}
