#pragma once

#include <QString>

namespace web {

class WebFrame;
class WebView;

/// Told what arrives for a WebView. Called on the main queue.
class WebResourceLoadDelegate {
 public:
  virtual ~WebResourceLoadDelegate() = default;

  /// `length` bytes of a resource have come. `resource` names the request; `frame` is the frame
  /// whose document asked for it, its data source.
  virtual void webViewResourceDidReceiveContentLengthFromDataSource(WebView&,
                                                                    const QString& /*resource*/,
                                                                    qint64 /*length*/,
                                                                    const WebFrame&) {}
};

}  // namespace web
