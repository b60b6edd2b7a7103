#include "platform/desktop/ColorSchemePreference.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include "platform/desktop/internal/SignalReceiver.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString gnomeInterface = u"org.gnome.desktop.interface"_s;
constexpr int patience = 10'000;  // milliseconds

/// The old method Read answers with a variant in a variant.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>())
    value = value.value<QDBusVariant>().variant();
  return value;
}

ColorScheme schemeOf(uint value) {
  if (value == 1) return ColorScheme::Dark;
  return value == 2 ? ColorScheme::Light : ColorScheme::NoPreference;
}

class PortalPreference : public ColorSchemePreference,
                         public std::enable_shared_from_this<PortalPreference> {
 public:
  void start() {
    changed_ = std::make_unique<SignalReceiver>(
        service, path, interface, u"SettingChanged"_s,
        [this](const QDBusMessage& message) { settingChanged(message); });
    read(appearance, u"color-scheme"_s);
    read(appearance, u"reduced-motion"_s);
    read(gnomeInterface, u"enable-animations"_s);
  }

  ColorScheme colorScheme() const override { return colorScheme_; }

  Motion motion() const override {
    return reducedMotion_ || !animations_ ? Motion::Reduced : Motion::Full;
  }

  void setObserver(std::function<void()> changed) override { observer_ = std::move(changed); }

 private:
  void read(const QString& group, const QString& key) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    message << group << key;
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, patience));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished,
                     [=, weak = weak_from_this()](QDBusPendingCallWatcher* ended) {
                       ended->deleteLater();
                       const auto self = weak.lock();
                       const QVariantList values = ended->reply().arguments();
                       // A setting that the desktop does not have keeps its default.
                       if (self && !ended->isError() && !values.isEmpty())
                         self->apply(group, key, unwrapped(values.first()));
                     });
  }

  void settingChanged(const QDBusMessage& message) {
    const QVariantList values = message.arguments();
    if (message.signature() != u"ssv"_s) return;
    apply(values[0].toString(), values[1].toString(), unwrapped(values[2]));
  }

  void apply(const QString& group, const QString& key, const QVariant& value) {
    const ColorScheme schemeBefore = colorScheme_;
    const Motion motionBefore = motion();
    if (group == appearance && key == u"color-scheme"_s) colorScheme_ = schemeOf(value.toUInt());
    if (group == appearance && key == u"reduced-motion"_s) reducedMotion_ = value.toUInt() == 1;
    if (group == gnomeInterface && key == u"enable-animations"_s) animations_ = value.toBool();
    const bool changed = schemeBefore != colorScheme_ || motionBefore != motion();
    if (changed && observer_) observer_();
  }

  ColorScheme colorScheme_ = ColorScheme::NoPreference;
  bool reducedMotion_ = false;
  bool animations_ = true;
  std::function<void()> observer_;
  std::unique_ptr<SignalReceiver> changed_;
};

}  // namespace

std::shared_ptr<ColorSchemePreference> ColorSchemePreference::create() {
  auto preference = std::make_shared<PortalPreference>();
  preference->start();
  return preference;
}

}  // namespace desktop
