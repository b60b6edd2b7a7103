#pragma once

#include <QString>
#include <QUrl>

/// Builds capture requests as a browser add-on does: `encodeURI`, `btoa`, `encodeURIComponent`.
namespace requests {

using namespace Qt::StringLiterals;

inline QString encoded(const QString& text) {
  return QString::fromLatin1(QUrl::toPercentEncoding(text, ";,/?:@&=+$-_.!~*'()#").toBase64());
}

inline QString transported(const QString& data) {
  return QString::fromLatin1(QUrl::toPercentEncoding(data));
}

inline QString request(const QString& address, const QString& data) {
  return address + u"corvxdata::"_s + transported(data);
}

inline QString fullRequest(const QString& address, const QString& page, const QString& styles,
                           const QString& frames) {
  return request(address,
                 encoded(page) + u"corvxstyles::"_s + encoded(styles) + u"iframes::"_s + frames);
}

}  // namespace requests
