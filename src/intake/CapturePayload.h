#pragma once

#include <QString>
#include <QUrl>
#include <optional>

/// One capture request as a browser add-on or bookmarklet sends it, taken apart and decoded. It
/// comes from any web page that the user visits, so nothing in it is trusted.
///
///     corvxurl://<address rest> [corvxdata::<data>]
///
/// where the data, once percent-decoded, are the page, and optionally "corvxstyles::" and the
/// styles, and after those "iframes::" and the frames; docs/capture-protocol.md has it in full.
struct CapturePayload {
  /// A request of more UTF-16 units is refused unread.
  static constexpr qsizetype maximumSize = 256LL * 1024 * 1024;

  /// A longer address makes no URL.
  static constexpr qsizetype maximumAddressSize = 64LL * 1024;

  enum class Kind {
    Ignored,        ///< the browser's own start page: without any effect
    DirectAddress,  ///< nothing but an address
    Page,           ///< a captured document, as far as it could be decoded
  };

  /// Never fails: a part that cannot be decoded is none. Linear time. Any thread.
  static CapturePayload decode(QStringView request);

  /// Whether nothing can come of the text, whatever else it holds.
  static bool isIgnored(QStringView text);

  /// Whether an old bookmarklet sent it: one that does not know styles or frames.
  bool isFromOldBookmarklet() const { return !frames || !styles; }

  Kind kind = Kind::Ignored;
  /// None when the address text does not form a URL or names something on this machine.
  std::optional<QUrl> address;
  std::optional<QString> page;
  std::optional<QString> styles;
  /// Not decoded: a concatenation of frame items.
  std::optional<QString> frames;
};
