#include "platform/pdf/internal/QpdfText.h"

#include <QRegularExpression>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace pdf {

QPDFObjectHandle textObject(const QString& text) {
  return QPDFObjectHandle::newUnicodeString(text.toStdString());
}

std::optional<QString> textOf(QPDFObjectHandle object) {
  if (!object.isString()) return std::nullopt;
  return QString::fromStdString(object.getUTF8Value());
}

QString dateText(const QDateTime& date) {
  const int minutes = date.offsetFromUtc() / 60;
  return u"D:%1%2%3'%4'"_s.arg(date.toString(u"yyyyMMddHHmmss"_s), minutes < 0 ? u"-"_s : u"+"_s)
      .arg(std::abs(minutes) / 60, 2, 10, QLatin1Char('0'))
      .arg(std::abs(minutes) % 60, 2, 10, QLatin1Char('0'));
}

std::optional<QDateTime> dateFromText(const QString& text) {
  static const QRegularExpression form(
      u"^(?:D:)?(\\d{4})(\\d\\d)?(\\d\\d)?(\\d\\d)?(\\d\\d)?(\\d\\d)?(?:Z|([+-])(\\d\\d)'?(\\d\\d)?)?"_s);
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch()) return std::nullopt;
  const auto part = [&match](int index, int missing) {
    return match.captured(index).isEmpty() ? missing : match.captured(index).toInt();
  };
  const int offset = (part(8, 0) * 60 + part(9, 0)) * (match.captured(7) == u"-"_s ? -60 : 60);
  const QDateTime date(QDate(part(1, 0), part(2, 1), part(3, 1)),
                       QTime(part(4, 0), part(5, 0), part(6, 0)), Qt::OffsetFromUTC, offset);
  return date.isValid() ? std::optional(date) : std::nullopt;
}

}  // namespace pdf
