#include "RequestMutator.h"

#include <QUrl>
#include <array>

using namespace Qt::StringLiterals;

namespace {

const std::array markupPieces = {
    u"<html><head>"_s, u"</head>"_s,    u"<script"_s,     u"</script>"_s, u"<style>"_s,
    u"</style>"_s,     u"<noscript>"_s, u"</noscript>"_s, u"<iframe"_s,   u" src=x>"_s,
    u"</iframe>"_s,    u"<IFRAME >"_s,  u"\""_s,          u"é\u2028"_s,   u"\uFB06\u017F"_s,
    u"text %"_s,       u"\U0001F600"_s};

const std::array markers = {u"corvxurl://"_s,   u"corvxurls://"_s, u"corvxdata::"_s,
                            u"corvxstyles::"_s, u"iframes::"_s,    u"iframe::"_s,
                            u"favorites"_s,     u"file:///"_s};

const std::array badUnits = {u'%', u'=', u'\0', u'\n', u' ', u'\xD800', u'\xDC00', u'\xFFFF', u':'};

}  // namespace

RequestMutator::RequestMutator(std::uint64_t seed) : random_(seed) {}

std::size_t RequestMutator::below(std::size_t count) {
  return static_cast<std::size_t>(random_() % count);
}

bool RequestMutator::oneIn(std::size_t count) {
  return below(count) == 0;
}

qsizetype RequestMutator::position(const QString& text) {
  return static_cast<qsizetype>(below(static_cast<std::size_t>(text.size()) + 1));
}

QString RequestMutator::markup() {
  QString text;
  for (std::size_t count = below(14); count > 0; --count)
    text += markupPieces[below(markupPieces.size())];
  if (oneIn(3)) mutate(text);
  return text;
}

QString RequestMutator::encodedPart() {
  QString part = QString::fromLatin1(QUrl::toPercentEncoding(markup()));
  if (oneIn(4)) mutate(part);
  part = QString::fromLatin1(part.toUtf8().toBase64());
  if (oneIn(4)) mutate(part);
  return part;
}

QString RequestMutator::frames() {
  QString list;
  for (std::size_t count = below(5); count > 0; --count)
    list += u"iframe::"_s + (oneIn(3) ? QString() : encodedPart());
  return list;
}

QString RequestMutator::data() {
  QString data = encodedPart();
  if (!oneIn(5)) data += u"corvxstyles::"_s + encodedPart();
  if (!oneIn(5)) data += u"iframes::"_s + frames();
  if (oneIn(3)) mutate(data);
  return data;
}

QString RequestMutator::next() {
  QString request = oneIn(2) ? u"corvxurl://"_s : u"corvxurls://"_s;
  request += u"example.com/a?b=%20c"_s;
  if (!oneIn(10)) {
    request += u"corvxdata::"_s + QString::fromLatin1(QUrl::toPercentEncoding(data()));
  }
  for (std::size_t count = below(3); count > 0; --count)
    mutate(request);
  return request;
}

void RequestMutator::mutate(QString& text) {
  const qsizetype from = position(text);
  const qsizetype length = qMin(text.size() - from, static_cast<qsizetype>(below(20)));
  switch (below(6)) {
    case 0:
      text.remove(from, length);
      break;
    case 1:
      text.insert(position(text), text.sliced(from, length));
      break;
    case 2:
      text.insert(from, markers[below(markers.size())]);
      break;
    case 3:
      text.insert(from, QChar(badUnits[below(badUnits.size())]));
      break;
    case 4:
      text.truncate(from);
      break;
    default:
      if (from < text.size()) text[from] = QChar(static_cast<char16_t>(random_()));
  }
}
