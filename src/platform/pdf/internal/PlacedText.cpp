#include "platform/pdf/internal/PlacedText.h"

#include <algorithm>

#include "platform/pdf/internal/SequentialFile.h"

namespace pdf {
namespace {

std::string spelled(double coordinate) {
  return number(coordinate).toStdString();
}

bool isNumber(const Value& value) {
  return value.kind == Value::Kind::Number;
}

/// Pairs of coordinates of a page: an annotation's, or a layout attribute's (ISO 32000-1, tables
/// 164, 173 and 344). Forms and fonts have boxes of their own measure.
bool holdsPoints(std::string_view key, const Value& dictionary) {
  if (key == "/Rect" || key == "/QuadPoints") return dictionary["/Subtype"].isName();
  return key == "/BBox" && dictionary["/O"].isName("/Layout");
}

bool holdsDestination(std::string_view key, const Value& dictionary) {
  return key == "/Dest" || (key == "/D" && dictionary["/S"].isName("/GoTo"));
}

}  // namespace

void PlacedText::appendEntries(std::string& text, const Value& dictionary,
                               std::initializer_list<std::string_view> except) {
  for (std::uint32_t index = 0; index < dictionary.count; index += 2) {
    const std::string_view key = dictionary.items()[index].text;
    const Value& value = dictionary.items()[index + 1];
    if (std::find(except.begin(), except.end(), key) != except.end()) continue;
    text += key;
    if (holdsPoints(key, dictionary)) {
      appendPoints(text, value);
    } else if (holdsDestination(key, dictionary)) {
      appendDestination(text, value);
    } else {
      append(text, value);
    }
  }
}

void PlacedText::appendPoints(std::string& text, const Value& points) {
  const Value& array = source_.resolved(points);
  const auto items = array.items();
  if (!array.isArray() || items.size() % 2 != 0 ||
      !std::all_of(items.begin(), items.end(), isNumber))
    return append(text, points);
  text += '[';
  for (size_t index = 0; index < items.size(); index += 2) {
    const QPointF moved = place_.map(
        QPointF(items[index].number().value_or(0), items[index + 1].number().value_or(0)));
    text += spelled(moved.x()) + ' ' + spelled(moved.y()) + ' ';
  }
  text += ']';
  hasMoved_ = true;
}

void PlacedText::appendDestination(std::string& text, const Value& destination) {
  const Value& array = source_.resolved(destination);
  const auto items = array.items();
  if (!array.isArray() || items.size() != 5 || !items[1].isName("/XYZ") || !isNumber(items[2]) ||
      !isNumber(items[3]))
    return append(text, destination);
  const QPointF moved =
      place_.map(QPointF(items[2].number().value_or(0), items[3].number().value_or(0)));
  text += '[';
  append(text, items[0]);
  text += "/XYZ " + spelled(moved.x()) + ' ' + spelled(moved.y());
  append(text, items[4]);
  text += ']';
  hasMoved_ = true;
}

}  // namespace pdf
