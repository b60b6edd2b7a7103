#include "ui/window/QuickActions.h"

#include <QHBoxLayout>

#include "ui/controls/CVHoverButton.h"
#include "ui/look/NamedImage.h"

using namespace Qt::StringLiterals;

namespace ui {
namespace {

struct Item {
  QString image;
  QString name;
};

std::optional<Item> itemForIdentifier(const QString& identifier) {
  if (identifier == u"com.maplebrook.corvalis.safari"_s) {
    return Item{u"safari_small.png"_s, QuickActions::tr("Capture from Safari")};
  }
  if (identifier == u"com.maplebrook.corvalis.chrome"_s) {
    return Item{u"chrome_small.png"_s, QuickActions::tr("Capture from Chrome")};
  }
  return std::nullopt;
}

}  // namespace

QuickActions::QuickActions(QWidget* parent) : QWidget(parent) {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(4);
  setAccessibleName(tr("Quick actions"));
  hide();
}

void QuickActions::makeItems(const QStringList& identifiers,
                             std::function<void(const QString& identifier)> action) {
  for (const QString& identifier : identifiers) {
    const auto item = itemForIdentifier(identifier);
    if (!item) continue;
    auto* button = new CVHoverButton(this);
    const QIcon icon = namedIcon(item->image);
    button->setIcon(icon);
    button->setDefaultImage(icon);
    button->setHoverImage(icon);
    button->setIconSize(QSize(16, 16));
    button->setFixedSize(32, 32);
    button->setAccessibleName(item->name);
    button->setToolTip(item->name);
    button->setObjectName(identifier);
    connect(button, &QToolButton::clicked, this, [action, identifier] { action(identifier); });
    layout()->addWidget(button);
  }
  show();
}

bool QuickActions::hasItems() const {
  return layout()->count() > 0;
}

}  // namespace ui
