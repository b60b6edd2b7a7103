#include "intake/CapturePayload.h"

#include "intake/CaptureText.h"
#include "intake/RequestAddress.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView dataMarker = u"corvxdata::";
constexpr QByteArrayView stylesMarker = "corvxstyles::";
constexpr QByteArrayView framesMarker = "iframes::";

struct Scheme {
  QStringView ours;
  QStringView real;
};
constexpr Scheme schemes[] = {{u"corvxurl://", u"http://"}, {u"corvxurls://", u"https://"}};

/// The scheme that is replaced wherever it stands: the one that the request begins with.
const Scheme* schemeOf(QStringView request) {
  for (const Scheme& scheme : schemes) {
    if (request.startsWith(scheme.ours)) return &scheme;
  }
  return nullptr;
}

QString withRealScheme(QStringView text, const Scheme* scheme) {
  return scheme ? CaptureText::replaced(text, scheme->ours, scheme->real) : text.toString();
}

/// Undoes the transport's encoding. Our scheme is replaced here too, as in the address; the data
/// are large and hardly ever hold it, so they are not copied for nothing.
std::optional<QByteArray> transported(QStringView data, const Scheme* scheme) {
  if (!scheme || !data.contains(scheme->ours)) return CaptureText::percentDecoded(data);
  return CaptureText::percentDecoded(withRealScheme(data, scheme));
}

void decodeData(QByteArrayView data, CapturePayload& payload) {
  const auto [page, rest] = CaptureText::splitAt(data, stylesMarker);
  payload.page = CaptureText::decoded(page);
  if (!rest) return;
  const auto [styles, frames] = CaptureText::splitAt(*rest, framesMarker);
  payload.styles = CaptureText::decoded(styles);
  if (frames) payload.frames = QString::fromUtf8(*frames);
}

}  // namespace

bool CapturePayload::isIgnored(QStringView text) {
  return text.startsWith(u"favorites");
}

CapturePayload CapturePayload::decode(QStringView request) {
  CapturePayload payload;
  if (isIgnored(request)) return payload;
  const Scheme* const scheme = schemeOf(request);
  const auto [address, data] = CaptureText::splitAt(request, dataMarker);
  payload.kind = data ? Kind::Page : Kind::DirectAddress;
  payload.address = requestAddress(withRealScheme(address, scheme));
  if (!data) return payload;
  if (const auto decoded = transported(*data, scheme)) decodeData(*decoded, payload);
  return payload;
}
