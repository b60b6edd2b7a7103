#include "intake/PageMerging.h"

#include <cstring>

#include "intake/CaptureText.h"
#include "intake/ElementMatcher.h"
#include "intake/FrameList.h"

using namespace Qt::StringLiterals;

namespace PageMerging {
namespace {

constexpr QStringView headEnd = u"</head>";
constexpr QStringView styleStart = u"<style type=\"text/css\" media=\"screen\">";
constexpr QStringView styleEnd = u"</style>";

constexpr QStringView frameOpening = u"<iframe";
constexpr QStringView frameClosing = u"</iframe>";

/// Closes the gaps in place; the matcher only ever looks at text behind them.
void removeElements(QString& text, QStringView opening, QStringView closing) {
  QChar* const begin = text.data();
  QChar* out = begin;
  qsizetype kept = 0;
  const auto keepUntil = [&](qsizetype end) {
    const qsizetype count = end - kept;
    if (out != begin + kept)
      std::memmove(out, begin + kept, sizeof(QChar) * static_cast<std::size_t>(count));
    out += count;
  };
  ElementMatcher elements(text, opening, closing);
  while (const auto element = elements.next()) {
    keepUntil(element->start);
    kept = element->end;
  }
  keepUntil(text.size());
  text.truncate(out - begin);
}

QString withStylesInHead(QStringView page, QStringView styles) {
  const QString element = styleStart.toString().append(styles).append(styleEnd);
  const qsizetype mostCopies = 2 + maximumStyleCopies / element.size();
  QString result;
  result.reserve(page.size() + element.size());
  qsizetype copied = 0;
  qsizetype found = page.indexOf(headEnd);
  for (qsizetype copies = 0; found >= 0 && copies < mostCopies; ++copies) {
    result.append(page.sliced(copied, found - copied)).append(element);
    copied = found;
    found = page.indexOf(headEnd, found + headEnd.size());
  }
  return result.append(page.sliced(copied));
}

/// What fills the frame. An item that cannot be decoded is written as what the text formatter makes
/// of a missing object.
QString frameDocument(QStringView item) {
  return FrameList::decodeItem(item).value_or(u"(null)"_s);
}

qsizetype escapedSize(const QString& document) {
  return document.size() + 5 * document.count(u'"');
}

QString filledFrame(const QString& document, QStringView inner) {
  QString result = u"<iframe srcdoc=\"<!DOCTYPE html>\n"_s;
  result.append(CaptureText::replaced(document, u"\"", u"&quot;"));
  return result.append(u"\" ").append(inner).append(frameClosing);
}

}  // namespace

QString withStyles(QStringView page, QStringView styles) {
  QString text = page.toString();
  removeElements(text, u"<script", u"</script>");
  removeElements(text, u"<style", u"</style>");
  removeElements(text, u"<noscript>", u"</noscript>");
  return withStylesInHead(text, styles);
}

QString withFrames(QStringView page, QStringView frames) {
  FrameList list(frames);
  QString result;
  result.reserve(page.size() + frames.size());
  qsizetype copied = 0;
  ElementMatcher elements(page, frameOpening, frameClosing);
  while (const auto element = elements.next()) {
    const QStringView item = list.next();
    const QStringView inner =
        page.sliced(element->innerStart, element->innerEnd - element->innerStart);
    if (item.isEmpty() || inner.contains(u"src=")) continue;
    const QString document = frameDocument(item);
    if (result.size() + page.size() - copied + escapedSize(document) > maximumSize) continue;
    result.append(page.sliced(copied, element->start - copied));
    result.append(filledFrame(document, inner));
    copied = element->end;
  }
  return result.append(page.sliced(copied));
}

}  // namespace PageMerging
