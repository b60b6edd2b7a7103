#include "platform/rendering/StyleText.h"

#include <QRegularExpression>
#include <functional>

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// What is opaque in a style sheet: comments, strings and addresses (CSS Syntax 3, section 4).
const QString opaque =
    uR"re(/\*[\s\S]*?(?:\*/|$)|"(?:\\[\s\S]|[^"\\])*"?|'(?:\\[\s\S]|[^'\\])*'?|\burl\((?:\\[\s\S]|[^)\\"'])*\))re"_s;

const QRegularExpression& lengthPattern() {
  static const QRegularExpression pattern(
      u"(?<opaque>"_s + opaque +
          uR"re()|(?<![\w\-\\#.])(?<number>[+-]?(?:\d+\.?\d*|\.\d+)(?:e[+-]?\d+)?)[sld]?v(?<unit>h|w|min|max|b|i)\b)re"_s,
      QRegularExpression::CaseInsensitiveOption);
  return pattern;
}

/// Cheap, for the many sheets that have none.
bool mentionsViewport(const QString& css) {
  static const QRegularExpression pattern(
      uR"re(\d[sld]?v(?:h|w|min|max|b|i)\b|height|width|orientation|aspect-ratio|@page)re"_s,
      QRegularExpression::CaseInsensitiveOption);
  return pattern.match(css).hasMatch();
}

double pixelsPerUnit(QStringView unit, QSizeF viewport) {
  const auto is = [unit](QStringView name) { return unit.compare(name, Qt::CaseInsensitive) == 0; };
  if (is(u"h") || is(u"b")) return viewport.height() / 100;
  if (is(u"w") || is(u"i")) return viewport.width() / 100;
  const double smaller = qMin(viewport.width(), viewport.height());
  return (is(u"min") ? smaller : qMax(viewport.width(), viewport.height())) / 100;
}

QString pixels(const QRegularExpressionMatch& match, QSizeF viewport) {
  const double length =
      match.captured(u"number").toDouble() * pixelsPerUnit(match.capturedView(u"unit"), viewport);
  QString text = QString::number(length, 'f', 4);
  while (text.endsWith(u'0'))
    text.chop(1);
  if (text.endsWith(u'.')) text.chop(1);
  return text + u"px"_s;
}

QString settledValue(QStringView value, QSizeF viewport) {
  const QString text = value.toString();
  QString result;
  qsizetype copied = 0;
  auto matches = lengthPattern().globalMatch(text);
  while (matches.hasNext()) {
    const QRegularExpressionMatch match = matches.next();
    if (!match.captured(u"opaque").isEmpty()) continue;
    result += text.mid(copied, match.capturedStart() - copied);
    result += pixels(match, viewport);
    copied = match.capturedEnd();
  }
  return result + text.mid(copied);
}

const QRegularExpression& conditionPattern() {
  static const QRegularExpression pattern(uR"re(\([^()]*\))re"_s);
  return pattern;
}

bool dependsOn(ViewportChange change, QStringView condition) {
  const auto names = [condition](QStringView feature) {
    return condition.contains(feature, Qt::CaseInsensitive);
  };
  if (names(u"height") || names(u"aspect-ratio") || names(u"orientation")) return true;
  return change == ViewportChange::Both && names(u"width");
}

QString settledConditions(const QString& media, const ScreenViewport& viewport) {
  QString result;
  qsizetype copied = 0;
  auto matches = conditionPattern().globalMatch(media);
  while (matches.hasNext()) {
    const QRegularExpressionMatch match = matches.next();
    const auto answer = viewport.conditions.constFind(match.captured());
    if (answer == viewport.conditions.constEnd()) continue;
    result += media.mid(copied, match.capturedStart() - copied);
    result += *answer ? u"(min-width: 0px)"_s : u"(max-width: 0px)"_s;
    copied = match.capturedEnd();
  }
  return result + media.mid(copied);
}

enum class Piece { Declaration, MediaRule, PageRule, Other };

/// Cuts a style sheet into the texts between braces and semicolons, knows which of them are
/// declarations, and puts it together again.
class SheetReader {
 public:
  using Edit = std::function<QString(Piece, QStringView)>;

  SheetReader(const QString& css, Edit edit) : css_(css), edit_(std::move(edit)) {}

  QString run() {
    static const QRegularExpression token(u"(?<opaque>"_s + opaque +
                                          uR"re()|\\[\s\S]|[(){};\[\]])re"_s);
    auto matches = token.globalMatch(css_);
    while (matches.hasNext())
      take(matches.next());
    // A sheet may end within a declaration; a rule is only begun there and means nothing.
    finish(Piece::Declaration, css_.size());
    return result_;
  }

 private:
  void take(const QRegularExpressionMatch& match) {
    if (match.capturedLength() != 1) return;
    const QChar character = match.capturedView().front();
    if (character == u'(' || character == u'[') ++depth_;
    if (character == u')' || character == u']') depth_ = qMax(0, depth_ - 1);
    if (character == u'}') depth_ = 0;
    if (depth_ > 0) return;
    const bool endsDeclaration = character == u';' || character == u'}';
    if (character == u'{') finish(Piece::Other, match.capturedEnd());
    if (endsDeclaration) finish(Piece::Declaration, match.capturedEnd());
  }

  /// What the at-rule is that a text begins with, else `ordinary`. Comments may stand before.
  static Piece pieceOr(Piece ordinary, QStringView text) {
    static const QRegularExpression rule(
        uR"re(^(?:\s|/\*[\s\S]*?\*/)*@(?:media|import|(?<page>page))\b)re"_s,
        QRegularExpression::CaseInsensitiveOption);
    if (!text.contains(u'@')) return ordinary;
    const auto match = rule.match(text);
    if (!match.hasMatch()) return ordinary;
    return match.captured(u"page").isEmpty() ? Piece::MediaRule : Piece::PageRule;
  }

  void finish(Piece ordinary, qsizetype end) {
    const QStringView text = QStringView(css_).sliced(start_, end - start_);
    result_ += edit_(pieceOr(ordinary, text), text);
    start_ = end;
  }

  const QString& css_;
  Edit edit_;
  QString result_;
  qsizetype start_ = 0;
  int depth_ = 0;
};

std::optional<QString> ifChanged(QString now, const QString& before) {
  if (now == before) return {};
  return now;
}

QString settledDeclaration(QStringView piece, QSizeF viewport) {
  const qsizetype colon = piece.indexOf(u':');
  if (colon < 0) return piece.toString();
  return piece.first(colon).toString() + settledValue(piece.sliced(colon), viewport);
}

}  // namespace

QStringList viewportConditions(const QString& css, ViewportChange change) {
  if (!mentionsViewport(css)) return {};
  QStringList found;
  const auto collect = [&](Piece piece, QStringView text) {
    if (piece != Piece::MediaRule) return QString();
    auto matches = conditionPattern().globalMatch(text.toString());
    while (matches.hasNext()) {
      const QString condition = matches.next().captured();
      if (dependsOn(change, condition) && !found.contains(condition)) found.append(condition);
    }
    return QString();
  };
  SheetReader(css, collect).run();
  return found;
}

std::optional<QString> settledStyleSheet(const QString& css, const ScreenViewport& viewport) {
  if (!mentionsViewport(css)) return {};
  const auto edit = [&viewport](Piece piece, QStringView text) {
    if (piece == Piece::MediaRule) return settledConditions(text.toString(), viewport);
    if (piece == Piece::PageRule) return u"@media not all{"_s;
    if (piece == Piece::Declaration) return settledDeclaration(text, viewport.size);
    return text.toString();
  };
  return ifChanged(SheetReader(css, edit).run(), css);
}

std::optional<QString> settledDeclarations(const QString& css, const ScreenViewport& viewport) {
  return ifChanged(settledValue(css, viewport.size), css);
}

std::optional<QString> settledMedia(const QString& media, const ScreenViewport& viewport) {
  return ifChanged(settledConditions(media, viewport), media);
}

}  // namespace rendering
