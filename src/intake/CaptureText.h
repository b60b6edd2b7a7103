#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <optional>

/// The text forms in which a browser hands a page over. All operations take time linear in their
/// input and give none for anything malformed; there is no repair.
namespace CaptureText {

/// Percent-decoding (RFC 3986, section 2.1) of the whole text, to UTF-8. None when an escape is
/// broken or the bytes are not UTF-8.
std::optional<QByteArray> percentDecoded(QStringView text);

/// The text behind Base64 (RFC 4648, section 4, with padding) of its percent-encoded UTF-8 form.
/// Any character outside the alphabet, white space included, makes it fail.
std::optional<QString> decoded(QByteArrayView base64);

/// The text without any other change than that. The library's own replacing moves the rest of the
/// text once per thousand finds, which is quadratic on hostile text.
QString replaced(QStringView text, QStringView what, QStringView replacement);

/// What stands before the first `marker`, and what stands between it and the second one (or the
/// end). `after` is none without a marker.
template <class View>
struct Split {
  View before;
  std::optional<View> after;
};
Split<QStringView> splitAt(QStringView text, QStringView marker);
Split<QByteArrayView> splitAt(QByteArrayView text, QByteArrayView marker);

}  // namespace CaptureText
