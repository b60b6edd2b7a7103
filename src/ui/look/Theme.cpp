#include "ui/look/Theme.h"

#include <QApplication>
#include <QFontInfo>
#include <QStyleFactory>

#include "ui/look/StyleSheet.h"

using namespace Qt::StringLiterals;

namespace ui {
namespace {

const Theme* currentTheme = nullptr;

/// The font of the desktop, before a style sheet or a widget changes it.
const QFont& desktopFont() {
  static const QFont font = QApplication::font();
  return font;
}

}  // namespace

const Theme& Theme::light() {
  static const Theme theme{Appearance::Light,
                           0xF5F6F8,
                           0xFFFFFF,
                           0x1B1D21,
                           0x626872,
                           0xDADDE3,
                           0x2563C9,
                           0xFFFFFF,
                           0x1B7F3B,
                           0xB3261E,
                           QColor(98, 163, 245)};
  return theme;
}

const Theme& Theme::dark() {
  static const Theme theme{Appearance::Dark, 0x1D1F23, 0x282A30, 0xF1F2F4, 0xA3A8B2, 0x3A3D45,
                           0x78A9FF,         0x14161A, 0x63C584, 0xFF8A80, 0x2F5A9E};
  return theme;
}

const Theme& Theme::of(const std::optional<QString>& setting) {
  return setting == u"dark"_s ? dark() : light();
}

const Theme& Theme::current() {
  return currentTheme ? *currentTheme : light();
}

QPalette Theme::palette() const {
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::Base, surface);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::Button, surface);
  palette.setColor(QPalette::ToolTipBase, surface);
  for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                    QPalette::ToolTipText, QPalette::BrightText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, secondaryText);
  }
  palette.setColor(QPalette::PlaceholderText, secondaryText);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, onAccent);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, hairline);
  palette.setColor(QPalette::Disabled, QPalette::HighlightedText, secondaryText);
  palette.setColor(QPalette::Link, accent);
  palette.setColor(QPalette::Light, surface);
  palette.setColor(QPalette::Midlight, hairline);
  palette.setColor(QPalette::Mid, hairline);
  palette.setColor(QPalette::Dark, hairline);
  palette.setColor(QPalette::Shadow, QColor(0, 0, 0));
  return palette;
}

void applyTheme(const Theme& theme) {
  desktopFont();
  const bool first = currentTheme == nullptr;
  if (currentTheme == &theme) return;
  currentTheme = &theme;
  if (first) QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
  QApplication::setPalette(theme.palette());
  qApp->setStyleSheet(styleSheet(theme));
}

QFont textFont(TextSize size) {
  QFont font = desktopFont();
  const double body = qMax(12, QFontInfo(font).pixelSize());
  const double steps = size == TextSize::Title ? 13.0 : size == TextSize::Body ? 12.0 : 11.0;
  font.setPixelSize(qMax(11, qRound(body * steps / 12)));
  if (size == TextSize::Title) font.setWeight(QFont::DemiBold);
  return font;
}

}  // namespace ui
