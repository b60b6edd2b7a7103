#include "platform/rendering/TextLayer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/PageScript.h"
#include "platform/rendering/RenderingError.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// Boxes of lines that are set tightly overlap, though their letters do not: so much of a box is
/// empty above and below.
constexpr double emptyLineEdge = 0.1;

QRectF rectAt(const QJsonArray& list, qsizetype at) {
  return {list[at].toDouble(), list[at + 1].toDouble(), list[at + 2].toDouble(),
          list[at + 3].toDouble()};
}

/// By the text itself where it has a direction, else by the element's: the layout's own order of a
/// Hebrew word in an English sentence is right to left.
TextDirection directionOf(const QString& text, bool elementIsRightToLeft) {
  for (const QChar character : text) {
    const QChar::Direction direction = character.direction();
    if (direction == QChar::DirR || direction == QChar::DirAL) return TextDirection::RightToLeft;
    if (direction == QChar::DirL || direction == QChar::DirEN) return TextDirection::LeftToRight;
  }
  return elementIsRightToLeft ? TextDirection::RightToLeft : TextDirection::LeftToRight;
}

/// Eight values each: text, rectangle, font size, direction, whether the word ends.
std::vector<TextRun> runsFrom(const QJsonArray& list) {
  std::vector<TextRun> runs;
  runs.reserve(list.size() / 8);
  for (qsizetype at = 0; at + 7 < list.size(); at += 8) {
    const QString text = list[at].toString();
    runs.push_back({text, rectAt(list, at + 1), list[at + 5].toDouble(),
                    directionOf(text, list[at + 6].toInt() == 1), list[at + 7].toInt() == 1});
  }
  return runs;
}

LinkArea linkFrom(const QJsonObject& link) {
  LinkArea area;
  if (link.contains("y"_L1)) {
    area.targetY = qMax(0.0, link.value("y"_L1).toDouble());
  } else {
    area.href = link.value("href"_L1).toString();
  }
  for (const QJsonValue& rect : link.value("rects"_L1).toArray()) {
    area.rects.push_back(rectAt(rect.toArray(), 0));
  }
  return area;
}

/// The words of one line are one interval.
std::vector<RowInterval> sorted(std::vector<RowInterval> rows) {
  const auto key = [](const RowInterval& row) { return std::pair(row.top, row.bottom); };
  std::sort(rows.begin(), rows.end(),
            [key](const auto& one, const auto& other) { return key(one) < key(other); });
  const auto same = [key](const auto& one, const auto& other) { return key(one) == key(other); };
  rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
  return rows;
}

std::vector<RowInterval> rowsFrom(const QJsonArray& pictures, const std::vector<TextRun>& runs) {
  std::vector<RowInterval> rows;
  for (qsizetype at = 0; at + 1 < pictures.size(); at += 2) {
    rows.push_back({pictures[at].toDouble(), pictures[at + 1].toDouble()});
  }
  for (const TextRun& run : runs) {
    const double gap = run.rect.height() * emptyLineEdge;
    rows.push_back({run.rect.top() + gap, run.rect.bottom() - gap});
  }
  return sorted(std::move(rows));
}

Result<TextLayer> layerFrom(const QByteArray& json) {
  const QJsonDocument document = QJsonDocument::fromJson(json);
  if (!document.isObject()) {
    return tl::unexpected(makeError(DamagedAnswer, u"The page's text could not be read."_s));
  }
  const QJsonObject object = document.object();
  TextLayer layer;
  layer.runs = runsFrom(object.value("runs"_L1).toArray());
  for (const QJsonValue& link : object.value("links"_L1).toArray()) {
    layer.links.push_back(linkFrom(link.toObject()));
  }
  for (const QJsonValue& value : object.value("headings"_L1).toArray()) {
    const QJsonArray heading = value.toArray();
    layer.headings.push_back({heading[0].toString(), heading[1].toInt(), heading[2].toDouble()});
  }
  layer.unbreakableRows = rowsFrom(object.value("rows"_L1).toArray(), layer.runs);
  layer.truncated = object.value("truncated"_L1).toBool();
  const QString language = object.value("language"_L1).toString();
  if (!language.isEmpty()) layer.language = language;
  return layer;
}

using Callback = std::function<void(Result<TextLayer>)>;

/// Hundreds of thousands of words: not on the main thread.
void parse(const QString& text, const Callback& callback) {
  dispatch::globalAsync(dispatch::Priority::High, [text, callback] {
    auto layer = std::make_shared<Result<TextLayer>>(layerFrom(text.toUtf8()));
    dispatch::mainAsync([layer, callback] { callback(std::move(*layer)); });
  });
}

}  // namespace

void textLayer(const std::shared_ptr<web::Page>& page, Callback callback) {
  FlatDocument::lay(page, FlatPages::One, [page, callback = std::move(callback)](auto flat) {
    if (!flat) return callback(tl::unexpected(flat.error()));
    callPageScript(page, u"textLayer"_s, {}, [flat = *flat, callback](Result<QJsonValue> text) {
      flat->restore([text, callback] {
        if (!text) return callback(tl::unexpected(text.error()));
        parse(text->toString(), callback);
      });
    });
  });
}

void breakCandidates(const std::shared_ptr<web::Page>& page,
                     std::function<void(Result<std::vector<RowInterval>>)> callback) {
  textLayer(page, [callback = std::move(callback)](Result<TextLayer> layer) {
    callback(std::move(layer).map([](TextLayer&& read) { return read.unbreakableRows; }));
  });
}

}  // namespace rendering
