#include "platform/web/PageCursor.h"

#include <algorithm>
#include <array>

#include "platform/web/Page.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

constexpr std::chrono::seconds answerTimeout{1};

struct CursorName {
  QStringView name;
  Qt::CursorShape shape;
};

/// Names of CSS Basic User Interface Module Level 4, 5.1 'cursor'.
constexpr std::array cursorNames{
    CursorName{u"pointer", Qt::PointingHandCursor},
    CursorName{u"text", Qt::IBeamCursor},
    CursorName{u"vertical-text", Qt::IBeamCursor},
    CursorName{u"wait", Qt::WaitCursor},
    CursorName{u"progress", Qt::BusyCursor},
    CursorName{u"help", Qt::WhatsThisCursor},
    CursorName{u"crosshair", Qt::CrossCursor},
    CursorName{u"cell", Qt::CrossCursor},
    CursorName{u"move", Qt::SizeAllCursor},
    CursorName{u"all-scroll", Qt::SizeAllCursor},
    CursorName{u"not-allowed", Qt::ForbiddenCursor},
    CursorName{u"no-drop", Qt::ForbiddenCursor},
    CursorName{u"grab", Qt::OpenHandCursor},
    CursorName{u"grabbing", Qt::ClosedHandCursor},
    CursorName{u"none", Qt::BlankCursor},
    CursorName{u"copy", Qt::DragCopyCursor},
    CursorName{u"col-resize", Qt::SplitHCursor},
    CursorName{u"row-resize", Qt::SplitVCursor},
    CursorName{u"ew-resize", Qt::SizeHorCursor},
    CursorName{u"e-resize", Qt::SizeHorCursor},
    CursorName{u"w-resize", Qt::SizeHorCursor},
    CursorName{u"ns-resize", Qt::SizeVerCursor},
    CursorName{u"n-resize", Qt::SizeVerCursor},
    CursorName{u"s-resize", Qt::SizeVerCursor},
    CursorName{u"nesw-resize", Qt::SizeBDiagCursor},
    CursorName{u"ne-resize", Qt::SizeBDiagCursor},
    CursorName{u"sw-resize", Qt::SizeBDiagCursor},
    CursorName{u"nwse-resize", Qt::SizeFDiagCursor},
    CursorName{u"nw-resize", Qt::SizeFDiagCursor},
    CursorName{u"se-resize", Qt::SizeFDiagCursor},
};

Qt::CursorShape cursorShape(const QString& name) {
  const auto found = std::find_if(cursorNames.begin(), cursorNames.end(),
                                  [&name](const CursorName& row) { return row.name == name; });
  return found == cursorNames.end() ? Qt::ArrowCursor : found->shape;
}

/// "auto" is what the browser makes of the element: a beam over text, a hand over links.
QString cursorScript(const QPointF& position) {
  return uR"((() => {
    const element = document.elementFromPoint(%1, %2);
    if (!element) return 'default';
    const style = getComputedStyle(element).cursor.split(',').pop().trim();
    if (style !== 'auto') return style;
    if (element.isContentEditable || /^(TEXTAREA)$/.test(element.tagName) ||
        (element.tagName === 'INPUT' && !/^(button|checkbox|color|file|image|radio|range|reset|submit)$/
            .test(element.type))) return 'text';
    if (getComputedStyle(element).userSelect === 'none') return 'default';
    const caret = document.caretRangeFromPoint(%1, %2);
    if (!caret || caret.startContainer.nodeType !== Node.TEXT_NODE) return 'default';
    const range = document.createRange();
    range.selectNodeContents(caret.startContainer);
    const over = [...range.getClientRects()].some(
        box => box.left <= %1 && box.right >= %1 && box.top <= %2 && box.bottom >= %2);
    return over ? 'text' : 'default';
  })())"_s.arg(position.x())
      .arg(position.y());
}

}  // namespace

void readPageCursor(Page& page, const QPointF& position,
                    std::function<void(Qt::CursorShape)> callback) {
  page.evaluate(
      cursorScript(position),
      [callback = std::move(callback)](const Result<QJsonValue>& name) {
        callback(cursorShape(name ? name->toString() : QString()));
      },
      answerTimeout);
}

}  // namespace web
