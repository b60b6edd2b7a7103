#include "app/ActivationToken.h"

using namespace Qt::StringLiterals;

namespace ActivationToken {
namespace {

constexpr char tokenVariable[] = "XDG_ACTIVATION_TOKEN";
constexpr char startupVariable[] = "DESKTOP_STARTUP_ID";
const QString tokenKey = u"activation-token"_s;
const QString startupKey = u"desktop-startup-id"_s;

}  // namespace

QVariantMap ofThisStart() {
  QVariantMap data;
  const QString token = qEnvironmentVariable(tokenVariable);
  const QString startup = qEnvironmentVariable(startupVariable);
  if (!token.isEmpty()) data.insert(tokenKey, token);
  if (!startup.isEmpty()) data.insert(startupKey, startup);
  return data;
}

void take(const QVariantMap& platformData) {
  // Qt's Wayland platform looks here when a window asks to be activated.
  const QString token = platformData.value(tokenKey).toString();
  if (!token.isEmpty()) qputenv(tokenVariable, token.toUtf8());
}

}  // namespace ActivationToken
