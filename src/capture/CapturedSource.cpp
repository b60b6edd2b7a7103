#include "capture/CapturedSource.h"

using namespace Qt::StringLiterals;

namespace capture {

QString documentOfCapturedSource(const QString& source) {
  constexpr QLatin1StringView opening("<noscript>");
  constexpr QLatin1StringView closing("</noscript>");
  const QString document = u"<!DOCTYPE html>\n"_s + source;
  QString kept;
  kept.reserve(document.size());
  qsizetype position = 0;
  while (true) {
    const qsizetype begin = document.indexOf(opening, position, Qt::CaseInsensitive);
    const qsizetype end =
        begin < 0 ? -1 : document.indexOf(closing, begin + opening.size(), Qt::CaseInsensitive);
    // Once there is no end, no later element has one either.
    if (end < 0) break;
    kept += QStringView(document).sliced(position, begin - position);
    position = end + closing.size();
  }
  kept += QStringView(document).sliced(position);
  return kept;
}

}  // namespace capture
