#pragma once

#include <QStringView>
#include <QUrl>
#include <optional>

/// The URL that a capture request claims for its page. None for a text that forms no URL (white
/// space or control characters, a web address without host, longer than
/// `CapturePayload::maximumAddressSize`) and for everything but web addresses: a request may come
/// from any page, and "file:", "data:" or the browser's own schemes would let it reach into this
/// machine. An address without any scheme is kept; loading it fails with a clear error. User name
/// and password are left out, because the address is logged, shown and written into files.
std::optional<QUrl> requestAddress(QStringView text);
