#include "delivery/CVUtils.h"
#include "intake/FrameList.h"
#include "intake/PageMerging.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

namespace {

bool framesAreWanted() {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  return preferences && preferences->enableIFrames();
}

}  // namespace

std::optional<QString> CVUtils::mergePageCode(const std::optional<QString>& page,
                                              const std::optional<QString>& styles) const {
  return mergePageCode(page, styles, std::nullopt);
}

std::optional<QString> CVUtils::mergePageCode(const std::optional<QString>& page,
                                              const std::optional<QString>& styles,
                                              const std::optional<QString>& iframes) const {
  if (!page || !styles) return page;
  QString merged = PageMerging::withStyles(*page, *styles);
  if (!iframes || !framesAreWanted()) return merged;
  return PageMerging::withFrames(merged, *iframes);
}

std::optional<QString> CVUtils::decodeIFrame(const QString& item) {
  return FrameList::decodeItem(item);
}
