#include "intake/LinkDetector.h"

#include <algorithm>

#include "intake/AddressExtent.h"
#include "intake/PublicHost.h"

using namespace Qt::StringLiterals;

namespace {

/// No address of a page is longer.
constexpr qsizetype longestAddress = 64LL * 1024;

bool isIdeographic(QChar character) {
  if (character.unicode() < 0x2E80) return false;
  switch (character.script()) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Hangul:
      return true;
    default:
      return false;
  }
}

bool isAsciiLetter(QChar character) {
  const char16_t lower = character.unicode() | 0x20;
  return character.unicode() < 0x80 && lower >= u'a' && lower <= u'z';
}

/// Scripts that are written without spaces run into the address beside them.
bool isSeam(QChar left, QChar right) {
  return (isIdeographic(left) && isAsciiLetter(right)) ||
         (isAsciiLetter(left) && isIdeographic(right));
}

/// "10.0.0.0/8" is a network, not a page.
bool isNetworkMask(QStringView path) {
  return path.size() > 1 && path.size() <= 3 &&
         std::all_of(path.begin() + 1, path.end(), [](QChar c) { return c.isDigit(); });
}

}  // namespace

QList<QUrl> LinkDetector::linksIn(QStringView text) {
  LinkDetector detector(text);
  detector.run();
  return std::move(detector.found_);
}

QChar LinkDetector::at(qsizetype position) const {
  return position >= 0 && position < text_.size() ? text_[position] : QChar(u' ');
}

void LinkDetector::run() {
  qsizetype position = 0;
  while (position < text_.size()) {
    const QChar first = text_[position];
    if (!PublicHost::isHostCharacter(first) || QStringView(u".-_").contains(first)) {
      ++position;
      continue;
    }
    const qsizetype end = endOfWord(position);
    if (text_.sliced(end).startsWith(u"://")) {
      position = takeWithScheme(position, end);
    } else if (at(end) == u'@') {
      position = endOfWord(end + 1);
    } else {
      position = takeBare(position, end);
    }
  }
}

qsizetype LinkDetector::endOfWord(qsizetype start) const {
  qsizetype end = start;
  while (end < text_.size() && PublicHost::isHostCharacter(text_[end])) {
    if (end > start && isSeam(text_[end - 1], text_[end])) break;
    if (text_[end] == u'.' && at(end + 1) == u'.') break;
    ++end;
  }
  return end;
}

qsizetype LinkDetector::takeWithScheme(qsizetype start, qsizetype end) {
  // "1.https://..." in a list: the number is not part of the scheme.
  start += text_.sliced(start, end - start).lastIndexOf(u'.') + 1;
  const qsizetype addressEnd = AddressExtent::endOf(text_, start, end + 3);
  if (AddressExtent::isWebSchemeAt(text_, start)) add(addressText(start, addressEnd));
  return addressEnd;
}

qsizetype LinkDetector::takeBare(qsizetype start, qsizetype end) {
  qsizetype hostEnd = end;
  while (hostEnd > start && QStringView(u".-_").contains(text_[hostEnd - 1]))
    --hostEnd;
  const QStringView host = text_.sliced(start, hostEnd - start);
  if (!host.contains(u'.') || !mayBeginAddress(start)) return end;
  const qsizetype portEnd = hostEnd == end ? endOfPort(end) : hostEnd;
  const bool pathFollows = hostEnd == end && QStringView(u"/?#").contains(at(portEnd));
  const qsizetype addressEnd = pathFollows ? AddressExtent::endOf(text_, start, portEnd) : portEnd;
  if (!isAddressWithoutScheme(host, addressEnd, hostEnd)) return std::max(end, addressEnd);
  add(u"http://"_s + addressText(start, addressEnd));
  return std::max(end, addressEnd);
}

/// Behind these a word is a part of a path, of a mail address or of a larger word.
bool LinkDetector::mayBeginAddress(qsizetype position) const {
  const QChar before = at(position - 1);
  if (before == u'.') return at(position - 2) == u'.';
  return !QStringView(u"/\\@#$%&-+~").contains(before);
}

bool LinkDetector::isAddressWithoutScheme(QStringView host, qsizetype end,
                                          qsizetype hostEnd) const {
  if (QStringView(u"([=@").contains(at(end))) return false;
  const QStringView rest = text_.sliced(hostEnd, end - hostEnd);
  if (PublicHost::isIPv4Address(host)) return !rest.isEmpty() && !isNetworkMask(rest);
  return PublicHost::isHostName(host, rest.isEmpty() ? PublicHost::Surroundings::Plain
                                                     : PublicHost::Surroundings::PortOrPathFollows);
}

/// Behind ":<number>", if one stands there.
qsizetype LinkDetector::endOfPort(qsizetype position) const {
  if (at(position) != u':') return position;
  qsizetype end = position + 1;
  while (end - position <= 6 && at(end) >= u'0' && at(end) <= u'9')
    ++end;
  const int port = text_.sliced(position + 1, end - position - 1).toInt();
  return port > 0 && port <= 65535 ? end : position;
}

QString LinkDetector::addressText(qsizetype start, qsizetype end) const {
  QString address = text_.sliced(start, std::min(end - start, longestAddress + 1)).toString();
  // In an attribute of HTML an ampersand is written as an entity.
  const QChar quote = at(start - 1);
  const bool inAttribute = (quote == u'"' || quote == u'\'') && at(start - 2) == u'=';
  return inAttribute ? address.replace(u"&amp;"_s, u"&"_s) : address;
}

void LinkDetector::add(const QString& address) {
  if (address.size() > longestAddress) return;
  QUrl url(address);
  if (url.isValid() && !url.host().isEmpty()) found_.append(std::move(url));
}
