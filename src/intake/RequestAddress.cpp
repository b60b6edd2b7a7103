#include "intake/RequestAddress.h"

#include <algorithm>

#include "intake/CapturePayload.h"

using namespace Qt::StringLiterals;

namespace {

/// Marks that no browser leaves unescaped in the address that it shows.
bool mayStandInAddress(QChar character) {
  const bool quoting = character == u'<' || character == u'>' || character == u'"';
  return character.isPrint() && !character.isSpace() && !quoting;
}

bool isWellFormed(QStringView text) {
  return !text.isEmpty() && text.size() <= CapturePayload::maximumAddressSize &&
         std::all_of(text.begin(), text.end(), [](QChar character) {
           return character.isSurrogate() || mayStandInAddress(character);
         });
}

bool isOnTheWeb(const QUrl& url) {
  const QString scheme = url.scheme();
  if (scheme.isEmpty()) return !url.path().startsWith(u'/') && url.host().isEmpty();
  return (scheme == u"http"_s || scheme == u"https"_s) && !url.host().isEmpty();
}

}  // namespace

std::optional<QUrl> requestAddress(QStringView text) {
  if (!isWellFormed(text)) return std::nullopt;
  QUrl url(text.toString());
  if (!url.isValid() || !isOnTheWeb(url)) return std::nullopt;
  url.setUserInfo(QString());
  return url;
}
