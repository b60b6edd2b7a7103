#include "intake/FrameList.h"

#include "intake/CaptureText.h"

namespace {
constexpr QStringView marker = u"iframe::";
}

FrameList::FrameList(QStringView text) : rest_(text) {
  take();
}

QStringView FrameList::next() {
  return take();
}

QStringView FrameList::take() {
  const qsizetype end = rest_.indexOf(marker);
  const QStringView item = end < 0 ? rest_ : rest_.first(end);
  rest_ = end < 0 ? QStringView() : rest_.sliced(end + marker.size());
  return item;
}

std::optional<QString> FrameList::decodeItem(QStringView item) {
  return CaptureText::decoded(item.toUtf8());
}
