#include "intake/CapturePayload.h"

#include "intake/CaptureText.h"
#include "intake/RequestAddress.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView dataMarker = u"corvxdata::";
constexpr QStringView stylesMarker = u"corvxstyles::";
constexpr QStringView framesMarker = u"iframes::";

struct Scheme {
  QStringView ours;
  QStringView real;
};
constexpr Scheme schemes[] = {{u"corvxurl://", u"http://"}, {u"corvxurls://", u"https://"}};

/// With the page's own scheme in place of ours, wherever ours stands.
QString withRealScheme(QString text) {
  for (const Scheme& scheme : schemes) {
    if (text.startsWith(scheme.ours)) return CaptureText::replaced(text, scheme.ours, scheme.real);
  }
  return text;
}

void decodeData(const QString& data, CapturePayload& payload) {
  const auto [page, rest] = CaptureText::splitAt(data, stylesMarker);
  payload.page = CaptureText::decoded(page);
  if (!rest) return;
  const auto [styles, frames] = CaptureText::splitAt(*rest, framesMarker);
  payload.styles = CaptureText::decoded(styles);
  if (frames) payload.frames = frames->toString();
}

}  // namespace

bool CapturePayload::isIgnored(QStringView text) {
  return text.startsWith(u"favorites");
}

CapturePayload CapturePayload::decode(QString request) {
  CapturePayload payload;
  if (isIgnored(request)) return payload;
  const QString text = withRealScheme(std::move(request));
  const auto [address, data] = CaptureText::splitAt(text, dataMarker);
  payload.kind = data ? Kind::Page : Kind::DirectAddress;
  payload.address = requestAddress(address);
  if (!data) return payload;
  if (const auto decoded = CaptureText::percentDecoded(*data)) decodeData(*decoded, payload);
  return payload;
}
