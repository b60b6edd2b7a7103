#include "ui/window/SnapFlash.h"

#include <QVariantAnimation>

#include "ui/controls/CVWhiteView.h"

namespace ui {
namespace {

constexpr int upMilliseconds = 200;
constexpr int wholeMilliseconds = 400;
constexpr double strongest = 0.5;

}  // namespace

void flash(QWidget& content) {
  auto* white = new CVWhiteView(&content);
  white->setAttribute(Qt::WA_TransparentForMouseEvents);
  white->setAlphaValue(0);
  white->setGeometry(content.rect());
  white->show();
  white->raise();
  auto* animation = new QVariantAnimation(white);
  animation->setDuration(wholeMilliseconds);
  animation->setKeyValueAt(0, 0.0);
  animation->setKeyValueAt(double(upMilliseconds) / wholeMilliseconds, strongest);
  animation->setKeyValueAt(1, 0.0);
  QObject::connect(animation, &QVariantAnimation::valueChanged, white,
                   [white](const QVariant& alpha) { white->setAlphaValue(alpha.toDouble()); });
  QObject::connect(animation, &QVariantAnimation::finished, white, &QObject::deleteLater);
  animation->start();
}

}  // namespace ui
