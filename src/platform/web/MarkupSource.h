#pragma once

#include <QByteArray>
#include <QUrl>
#include <memory>

namespace web {

/// Offers one large document to the browser at an address of its own, behind which the page's
/// request is led without the page noticing. Lasts as long as the document may be asked for. Main
/// thread only.
class MarkupSource {
 public:
  virtual ~MarkupSource() = default;

  /// For a page at `pageURL`: a file for a file address, else a loopback address, because the
  /// browser does not lead a request from one kind to the other. Empty when neither can be made.
  static std::unique_ptr<MarkupSource> create(const QByteArray& markup, const QUrl& pageURL);

  virtual QUrl url() const = 0;
};

}  // namespace web
