#include "ui/popovers/CVAddPopoverController.h"

#include <QPointer>

#include "intake/CVAppDelegate.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVObjectRepository.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui/popovers/CommandRow.h"
#include "ui/popovers/Delegate.h"
#include "ui_CVAddPopoverController.h"

using namespace Qt::StringLiterals;
using ui::CommandRow;
using ui::Theme;

namespace {

const QString white = u"icon-paste-light-white@2x.png"_s;
const QString grey = u"icon-paste-light-grey@2x.png"_s;

std::optional<QString> themeSetting() {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  return preferences ? preferences->theme() : std::nullopt;
}

}  // namespace

CVAddPopoverController::CVAddPopoverController(Browsers browsers, QWidget* parent)
    : QWidget(parent), layout_(std::make_unique<Ui::CVAddPopoverController>()) {
  layout_->setupUi(this);
  layout_->pasteURLButton->setHoverBlock([self = QPointer(this)](bool hovering) {
    if (self) self->onHover(hovering);
  });
  setUpRows(browsers);
  setPasteIcon(themeSetting() == u"dark"_s ? white : grey);
  connect(layout_->pasteURLButton, &QPushButton::clicked, this,
          &CVAddPopoverController::onPasteURL);
  connect(layout_->urlFromSafariButton, &QPushButton::clicked, this,
          &CVAddPopoverController::onURLFromSafari);
  connect(layout_->urlFromChromeButton, &QPushButton::clicked, this,
          &CVAddPopoverController::onURLFromChrome);
}

CVAddPopoverController::~CVAddPopoverController() = default;

void CVAddPopoverController::setUpRows(Browsers browsers) {
  const Theme& theme = Theme::current();
  const CommandRow paste{*layout_->pasteURLButton, *layout_->pasteURLImageView,
                         *layout_->pasteURLTextField};
  const CommandRow safari{*layout_->urlFromSafariButton, *layout_->urlFromSafariImageView,
                          *layout_->urlFromSafariTextField};
  const CommandRow chrome{*layout_->urlFromChromeButton, *layout_->urlFromChromeImageView,
                          *layout_->urlFromChromeTextField};
  paste.setUp(u"paste"_s, theme);
  safari.setUp(u"safari"_s, theme);
  chrome.setUp(u"chrome"_s, theme);
  safari.setAvailable(browsers.showSafari, tr("Safari is not running."));
  chrome.setAvailable(browsers.showChrome, tr("Chrome is not running."));
}

void CVAddPopoverController::setPasteIcon(const QString& name) {
  layout_->pasteURLImageView->setPixmap(
      ui::namedPixmap(name, layout_->pasteURLImageView->devicePixelRatioF()));
}

void CVAddPopoverController::onHover(bool hovering) {
  if (themeSetting() == u"light"_s) setPasteIcon(hovering ? white : grey);
}

void CVAddPopoverController::onPasteURL() {
  const auto delegate = ui::applicationDelegate();
  if (delegate && delegate->processPasteboard()) delegate->snapEffect();
}

/// Browsers take their time to answer, so the window does not wait for them.
void CVAddPopoverController::onURLFromSafari() {
  dispatch::globalAsync(dispatch::Priority::High, [delegate = ui::applicationDelegate()] {
    if (delegate) delegate->onCaptureFromSafari();
  });
}

void CVAddPopoverController::onURLFromChrome() {
  dispatch::globalAsync(dispatch::Priority::High, [delegate = ui::applicationDelegate()] {
    if (delegate) delegate->onCaptureFromChrome();
  });
}
