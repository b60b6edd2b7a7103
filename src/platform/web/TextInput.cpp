#include "platform/web/TextInput.h"

#include <QJsonArray>
#include <array>

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr std::chrono::seconds readTimeout{1};

/// The caret of a field has no box that a script could ask for. But which place of the text lies
/// under a point can be asked (CSSOM View Module, caretPositionFromPoint), so it is searched for:
/// first its line, then, by halves, its place in the line.
QString readScript() {
  return uR"((() => {
    let doc = document, element = doc.activeElement, left = 0, top = 0;
    for (let depth = 0; element && depth < 20; ++depth) {
      if (element.shadowRoot && element.shadowRoot.activeElement) {
        element = element.shadowRoot.activeElement;
      } else if (element.tagName === 'IFRAME') {
        const box = element.getBoundingClientRect();
        left += box.left + element.clientLeft;
        top += box.top + element.clientTop;
        doc = element.contentDocument;
        if (!doc) return {kind: 'unknown'};
        element = doc.activeElement;
      } else break;
    }
    if (!element) return {kind: 'none'};
    const answer = (kind, box) => ({kind, box: [box[0] + left, box[1] + top, 1, box[2]]});
    const style = getComputedStyle(element), length = name => parseFloat(style[name]) || 0;
    const line = length('lineHeight') || length('fontSize') * 1.2;
    if (/^(INPUT|TEXTAREA)$/.test(element.tagName)) {
      const unwritten = /^(button|checkbox|color|file|image|radio|range|reset|submit)$/;
      if (element.disabled || element.readOnly || unwritten.test(element.type)) return {kind: 'none'};
      const box = element.getBoundingClientRect();
      const x0 = box.left + element.clientLeft + length('paddingLeft');
      const x1 = box.left + element.clientLeft + element.clientWidth - length('paddingRight') - 1;
      const y0 = box.top + element.clientTop + length('paddingTop');
      const y1 = box.top + element.clientTop + element.clientHeight - length('paddingBottom');
      const kind = element.type === 'password' ? 'password' : 'text';
      const caret = element.selectionEnd;
      const offsetAt = (x, y) => {
        const place = doc.caretPositionFromPoint && doc.caretPositionFromPoint(x, y);
        return place && place.offsetNode === element ? place.offset : -1;
      };
      const single = element.tagName === 'INPUT';
      const ltr = style.direction !== 'rtl', end = ltr ? x1 : x0;
      let y = single ? (y0 + y1) / 2 : y0 + line / 2;
      while (!single && y + line < y1 && offsetAt(end, y) < caret) y += line;
      let near = ltr ? x0 : x1, far = end;
      if (caret === null || offsetAt(end, y) < 0) return answer(kind, [near, y - line / 2, line]);
      for (let step = 0; step < 12; ++step) {
        const middle = (near + far) / 2;
        if (offsetAt(middle, y) < caret) near = middle; else far = middle;
      }
      return answer(kind, [near, y - line / 2, line]);
    }
    if (!element.isContentEditable && doc.designMode !== 'on') return {kind: 'none'};
    const selection = doc.getSelection();
    if (!selection.rangeCount) return {kind: 'text'};
    const range = selection.getRangeAt(0).cloneRange();
    range.collapse(false);
    let box = range.getClientRects()[0];
    if (!box) {
      const node = selection.focusNode.childNodes[selection.focusOffset] || selection.focusNode;
      box = (node.getBoundingClientRect ? node : element).getBoundingClientRect();
    }
    return answer('text', [box.left, box.top, Math.min(box.height || line, 2 * line)]);
  })())"_s;
}

TextInput readAnswer(const QJsonObject& answer) {
  struct Name {
    QStringView name;
    TextInput::Kind kind;
  };
  static constexpr std::array names{Name{u"none", TextInput::Kind::None},
                                    Name{u"text", TextInput::Kind::Text},
                                    Name{u"password", TextInput::Kind::Password}};
  TextInput input;
  for (const Name& row : names)
    if (answer[u"kind"].toString() == row.name) input.kind = row.kind;
  const QJsonArray box = answer[u"box"].toArray();
  if (box.size() == 4)
    input.caret = {box[0].toDouble(), box[1].toDouble(), box[2].toDouble(), box[3].toDouble()};
  return input;
}

}  // namespace

void readTextInput(Page& page, std::function<void(const TextInput&)> callback) {
  page.evaluate(
      readScript(),
      [callback = std::move(callback)](const Result<QJsonValue>& answer) {
        callback(answer ? readAnswer(answer->toObject()) : TextInput());
      },
      readTimeout);
}

}  // namespace web
