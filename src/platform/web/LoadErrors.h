#pragma once

#include <QString>
#include <QUrl>
#include <chrono>

#include "platform/base/Error.h"
#include "platform/web/PageObserver.h"

namespace web {

/// What is known of a main request that did not become a document.
struct FailedRequest {
  QUrl url;
  /// Chromium's name of the cause, such as "net::ERR_CONNECTION_REFUSED" (net_error_list.h).
  QString errorText;
  Response response;
  enum class Kind { Page, Download } kind = Kind::Page;
};

/// The failure in a sentence for people.
Error describeFailure(const FailedRequest& request);
/// The browser would not even begin, and gave `answer`.
Error describeRefusal(const QUrl& url, const Error& answer);
Error describeNoAnswer(const QUrl& url, std::chrono::milliseconds limit);

}  // namespace web
