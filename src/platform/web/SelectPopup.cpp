#include "platform/web/SelectPopup.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr std::chrono::seconds findTimeout{1};

/// Follows the point through frames of the same origin and open shadow trees.
QString findScript(const QPointF& position) {
  return uR"((() => {
    let x = %1, y = %2, left = 0, top = 0;
    let element = document.elementFromPoint(x, y);
    for (let depth = 0; element && depth < 20; ++depth) {
      if (element.shadowRoot) {
        const inner = element.shadowRoot.elementFromPoint(x, y);
        if (!inner || inner === element) break;
        element = inner;
      } else if (element.tagName === 'IFRAME' && element.contentDocument) {
        const box = element.getBoundingClientRect();
        const offsetX = box.left + element.clientLeft, offsetY = box.top + element.clientTop;
        x -= offsetX; y -= offsetY; left += offsetX; top += offsetY;
        element = element.contentDocument.elementFromPoint(x, y);
      } else break;
    }
    if (element && element.tagName === 'OPTION') element = element.closest('select');
    if (!element || element.tagName !== 'SELECT' || element.multiple || element.size > 1 ||
        element.disabled) return null;
    window[Symbol.for('corvalis.select')] = element;
    element.focus();
    const box = element.getBoundingClientRect();
    return {area: [box.left + left, box.top + top, box.width, box.height],
            options: [...element.options].slice(0, 10000).map(option => ({
                text: option.label || option.text, selected: option.selected,
                enabled: !option.disabled && !(option.parentElement && option.parentElement.disabled)}))};
  })())"_s.arg(position.x())
      .arg(position.y());
}

ChoiceRequest readChoice(const QJsonObject& found) {
  const QJsonArray area = found[u"area"].toArray();
  ChoiceRequest request;
  request.area = {area[0].toDouble(), area[1].toDouble(), area[2].toDouble(), area[3].toDouble()};
  for (const QJsonValue option : found[u"options"].toArray())
    request.options.push_back(
        {option[u"text"].toString(), option[u"enabled"].toBool(), option[u"selected"].toBool()});
  return request;
}

}  // namespace

void findSelect(Page& page, const QPointF& position, SelectCallback callback) {
  page.evaluate(
      findScript(position),
      [callback = std::move(callback)](const Result<QJsonValue>& found) {
        if (found && found->isObject())
          callback(readChoice(found->toObject()));
        else
          callback(std::nullopt);
      },
      findTimeout);
}

void chooseOption(Page& page, int index) {
  page.evaluate(
      uR"((() => {
    const element = window[Symbol.for('corvalis.select')];
    if (!element || element.selectedIndex === %1) return;
    element.selectedIndex = %1;
    element.dispatchEvent(new Event('input', {bubbles: true, composed: true}));
    element.dispatchEvent(new Event('change', {bubbles: true}));
  })())"_s.arg(index),
      {});
}

}  // namespace web
