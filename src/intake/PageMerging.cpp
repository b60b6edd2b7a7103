#include "intake/PageMerging.h"

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

QString withoutElements(QStringView text, QStringView opening, QStringView closing) {
  QString result;
  qsizetype copied = 0;
  ElementMatcher elements(text, opening, closing);
  while (const auto element = elements.next()) {
    result.append(text.sliced(copied, element->start - copied));
    copied = element->end;
  }
  return result.append(text.sliced(copied));
}

QString withStylesInHead(QStringView page, QStringView styles) {
  const qsizetype added = styleStart.size() + styles.size() + styleEnd.size();
  QString result;
  qsizetype copied = 0;
  for (qsizetype found = page.indexOf(headEnd); found >= 0;
       found = page.indexOf(headEnd, found + headEnd.size())) {
    if (result.size() + page.size() - copied + added > maximumSize) break;
    result.append(page.sliced(copied, found - copied));
    result.append(styleStart).append(styles).append(styleEnd);
    copied = found;
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
  QString text = withoutElements(page, u"<script", u"</script>");
  text = withoutElements(text, u"<style", u"</style>");
  text = withoutElements(text, u"<noscript>", u"</noscript>");
  return withStylesInHead(text, styles);
}

QString withFrames(QStringView page, QStringView frames) {
  FrameList list(frames);
  QString result;
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
