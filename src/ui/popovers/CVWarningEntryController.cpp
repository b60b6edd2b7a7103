#include "ui/popovers/CVWarningEntryController.h"

#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui_CVWarningEntryController.h"

using namespace Qt::StringLiterals;

CVWarningEntryController::CVWarningEntryController(const QString& warning, QWidget* parent)
    : QWidget(parent) {
  Ui::CVWarningEntryController layout;
  layout.setupUi(this);
  layout.warningField->setFont(ui::textFont(ui::TextSize::Body));
  layout.warningField->setText(warning);
  layout.warningField->setToolTip(warning);
  layout.icon->setPixmap(ui::glyphIcon(u"warning"_s, ui::Theme::current().secondaryText)
                             .pixmap(QSize(20, 20), devicePixelRatioF()));
}
