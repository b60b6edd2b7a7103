#pragma once

#include <QString>
#include <QStringView>
#include <optional>

/// The frame documents of a captured page: items "iframe::<encoded document>" one after the other,
/// in the document order of the page's frame elements. What stands before the first marker is no
/// item. The text must outlive the list.
class FrameList {
 public:
  explicit FrameList(QStringView text);

  /// The encoded document of the next frame element. Empty when the frame could not be read, and
  /// behind the last item.
  QStringView next();

  /// The document of an item; none when a decoding step fails.
  static std::optional<QString> decodeItem(QStringView item);

 private:
  /// Takes what stands before the next marker, and the marker.
  QStringView take();

  QStringView rest_;
};
