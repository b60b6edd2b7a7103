#include "platform/web/WebFrame.h"

#include "platform/web/WebView.h"

namespace web {

void WebFrame::loadRequest(const PageRequest& request) const {
  view_.loadRequest(request);
}

void WebFrame::loadHTMLString(const QString& html, const QUrl& baseURL) const {
  view_.loadHTMLString(html, baseURL);
}

}  // namespace web
