#pragma once

#include <QJsonObject>
#include <QPointF>
#include <QString>
#include <Qt>
#include <chrono>

namespace web {

/// Input of a user to a live page. Positions are CSS pixels of the page's viewport.
struct MouseInput {
  enum class Type { Press, Release, Move };
  Type type = Type::Move;
  QPointF position;
  /// The button that changed; none of a move.
  Qt::MouseButton button = Qt::NoButton;
  Qt::MouseButtons buttons = Qt::NoButton;
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
  /// 2 is a double click.
  int clickCount = 1;
};

struct WheelInput {
  QPointF position;
  /// CSS pixels that the content moves; positive shows what lies further down and right.
  QPointF delta;
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

struct KeyInput {
  enum class Type { Press, Release };
  Type type = Type::Press;
  int key = Qt::Key_unknown;
  /// What the key types, if anything.
  QString text = {};
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
  enum class Repeat { First, Repeated } repeat = Repeat::First;
};

/// The parameters of Input.dispatchMouseEvent and Input.dispatchKeyEvent.
QJsonObject describe(const MouseInput& input);
QJsonObject describe(const WheelInput& input);
QJsonObject describe(const KeyInput& input);

}  // namespace web
