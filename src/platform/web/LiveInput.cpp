#include "platform/web/LiveInput.h"

#include <QHash>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace web {
namespace {

/// A key's name and place (W3C UI Events KeyboardEvent key and code Values) and its Windows key
/// code, which the browser's own shortcuts go by.
struct KeyName {
  QStringView key;
  QStringView code;
  int windowsCode;
};

const KeyName* namedKey(int key) {
  static const QHash<int, KeyName> names{
      {Qt::Key_Backspace, {u"Backspace", u"Backspace", 8}},
      {Qt::Key_Tab, {u"Tab", u"Tab", 9}},
      {Qt::Key_Backtab, {u"Tab", u"Tab", 9}},
      {Qt::Key_Return, {u"Enter", u"Enter", 13}},
      {Qt::Key_Enter, {u"Enter", u"NumpadEnter", 13}},
      {Qt::Key_Shift, {u"Shift", u"ShiftLeft", 16}},
      {Qt::Key_Control, {u"Control", u"ControlLeft", 17}},
      {Qt::Key_Alt, {u"Alt", u"AltLeft", 18}},
      {Qt::Key_AltGr, {u"AltGraph", u"AltRight", 18}},
      {Qt::Key_Pause, {u"Pause", u"Pause", 19}},
      {Qt::Key_CapsLock, {u"CapsLock", u"CapsLock", 20}},
      {Qt::Key_Escape, {u"Escape", u"Escape", 27}},
      {Qt::Key_PageUp, {u"PageUp", u"PageUp", 33}},
      {Qt::Key_PageDown, {u"PageDown", u"PageDown", 34}},
      {Qt::Key_End, {u"End", u"End", 35}},
      {Qt::Key_Home, {u"Home", u"Home", 36}},
      {Qt::Key_Left, {u"ArrowLeft", u"ArrowLeft", 37}},
      {Qt::Key_Up, {u"ArrowUp", u"ArrowUp", 38}},
      {Qt::Key_Right, {u"ArrowRight", u"ArrowRight", 39}},
      {Qt::Key_Down, {u"ArrowDown", u"ArrowDown", 40}},
      {Qt::Key_Insert, {u"Insert", u"Insert", 45}},
      {Qt::Key_Delete, {u"Delete", u"Delete", 46}},
      {Qt::Key_Meta, {u"Meta", u"MetaLeft", 91}},
      {Qt::Key_Menu, {u"ContextMenu", u"ContextMenu", 93}},
  };
  const auto found = names.constFind(key);
  return found == names.constEnd() ? nullptr : &*found;
}

int modifierBits(Qt::KeyboardModifiers modifiers) {
  return (modifiers.testFlag(Qt::AltModifier) ? 1 : 0) |
         (modifiers.testFlag(Qt::ControlModifier) ? 2 : 0) |
         (modifiers.testFlag(Qt::MetaModifier) ? 4 : 0) |
         (modifiers.testFlag(Qt::ShiftModifier) ? 8 : 0);
}

QString buttonName(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return u"left"_s;
    case Qt::MiddleButton:
      return u"middle"_s;
    case Qt::RightButton:
      return u"right"_s;
    case Qt::BackButton:
      return u"back"_s;
    case Qt::ForwardButton:
      return u"forward"_s;
    default:
      return u"none"_s;
  }
}

int buttonBits(Qt::MouseButtons buttons) {
  return (buttons.testFlag(Qt::LeftButton) ? 1 : 0) | (buttons.testFlag(Qt::RightButton) ? 2 : 0) |
         (buttons.testFlag(Qt::MiddleButton) ? 4 : 0) | (buttons.testFlag(Qt::BackButton) ? 8 : 0) |
         (buttons.testFlag(Qt::ForwardButton) ? 16 : 0);
}

/// The page's editing commands that belong to the browser's menus, which a headless one does not
/// have.
QString editingCommand(const KeyInput& input) {
  if (!input.modifiers.testFlag(Qt::ControlModifier)) return {};
  const bool shift = input.modifiers.testFlag(Qt::ShiftModifier);
  if (input.key == Qt::Key_A) return u"selectAll"_s;
  if (input.key == Qt::Key_Z) return shift ? u"redo"_s : u"undo"_s;
  if (input.key == Qt::Key_Y) return u"redo"_s;
  return {};
}

void nameKey(QJsonObject& event, const KeyInput& input) {
  if (const KeyName* name = namedKey(input.key)) {
    event[u"key"] = name->key.toString();
    event[u"code"] = name->code.toString();
    event[u"windowsVirtualKeyCode"] = name->windowsCode;
    return;
  }
  if (input.key >= Qt::Key_F1 && input.key <= Qt::Key_F24) {
    const int number = input.key - Qt::Key_F1 + 1;
    event[u"key"] = event[u"code"] = u"F%1"_s.arg(number);
    event[u"windowsVirtualKeyCode"] = 111 + number;
    return;
  }
  event[u"key"] = input.text.isEmpty() ? QString(QChar(input.key & 0xffff)).toLower() : input.text;
  if (input.key >= Qt::Key_A && input.key <= Qt::Key_Z)
    event[u"code"] = u"Key"_s + QChar(input.key);
  else if (input.key >= Qt::Key_0 && input.key <= Qt::Key_9)
    event[u"code"] = u"Digit"_s + QChar(input.key);
  else if (input.key == Qt::Key_Space)
    event[u"code"] = u"Space"_s;
  // Key codes of letters, digits and the space are their ASCII codes, as Qt's are.
  if (input.key < 0x80) event[u"windowsVirtualKeyCode"] = input.key;
}

/// Text that the key puts into the page; shortcuts and keys such as Escape put none.
QString typedText(const KeyInput& input) {
  if (input.key == Qt::Key_Return || input.key == Qt::Key_Enter) return u"\r"_s;
  const auto shortcut =
      input.modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  // AltGr arrives as Control with Alt, and types.
  const bool isShortcut = shortcut && shortcut != (Qt::ControlModifier | Qt::AltModifier);
  if (isShortcut || input.text.isEmpty() || input.text[0].unicode() < 0x20 ||
      input.text[0].unicode() == 0x7f)
    return {};
  return input.text;
}

}  // namespace

QJsonObject describe(const MouseInput& input) {
  const QString type = input.type == MouseInput::Type::Press     ? u"mousePressed"_s
                       : input.type == MouseInput::Type::Release ? u"mouseReleased"_s
                                                                 : u"mouseMoved"_s;
  // A move without a button selects nothing, whatever buttons are down.
  const bool isDrag = input.type == MouseInput::Type::Move && input.buttons & Qt::LeftButton;
  const Qt::MouseButton button = isDrag ? Qt::LeftButton : input.button;
  return {{u"type"_s, type},
          {u"x"_s, input.position.x()},
          {u"y"_s, input.position.y()},
          {u"button"_s, buttonName(button)},
          {u"buttons"_s, buttonBits(input.buttons)},
          {u"modifiers"_s, modifierBits(input.modifiers)},
          {u"clickCount"_s, input.type == MouseInput::Type::Move ? 0 : input.clickCount}};
}

QJsonObject describe(const WheelInput& input) {
  return {{u"type"_s, u"mouseWheel"_s},   {u"x"_s, input.position.x()},
          {u"y"_s, input.position.y()},   {u"deltaX"_s, input.delta.x()},
          {u"deltaY"_s, input.delta.y()}, {u"modifiers"_s, modifierBits(input.modifiers)}};
}

QJsonObject describe(const KeyInput& input) {
  QJsonObject event{{u"modifiers"_s, modifierBits(input.modifiers)},
                    {u"autoRepeat"_s, input.repeat == KeyInput::Repeat::Repeated}};
  nameKey(event, input);
  if (input.type == KeyInput::Type::Release) {
    event[u"type"] = u"keyUp"_s;
    return event;
  }
  const QString text = typedText(input);
  event[u"type"] = text.isEmpty() ? u"rawKeyDown"_s : u"keyDown"_s;
  if (!text.isEmpty()) event[u"text"] = text;
  if (const QString command = editingCommand(input); !command.isEmpty())
    event[u"commands"] = QJsonArray{command};
  return event;
}

}  // namespace web
