#pragma once

#include <QIODevice>
#include <QString>
#include <QUrl>
#include <optional>

#include "platform/base/Error.h"

class CVUtils;

/// Capture requests that come by another way than an address: a browser passes none of more than
/// 128 KiB on, a file or a pipe has no such limit.
namespace RequestInput {

inline const QString errorDomain = QStringLiteral("CVRequest");
enum ErrorCode { Unreadable = 1, TooLarge, Empty, NotText, NoAddress };

/// Reads one request, to the end of the device and at most `limit` bytes of UTF-8; line breaks
/// behind it are left out. Blocks until the other side closes.
Result<QString> readRequestText(QIODevice& device, qint64 limit = 256LL * 1024 * 1024);

/// A page to convert without a queue.
struct CapturedPage {
  QUrl url;
  /// The merged document; none when the request brings only an address or cannot be decoded, and
  /// the page is to be fetched.
  std::optional<QString> source;
};

/// Decodes and merges a request. The error says that it has no usable address.
Result<CapturedPage> capturedPage(const QString& request, const CVUtils& utils);

}  // namespace RequestInput
