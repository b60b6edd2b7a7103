#pragma once

#include <QVariantMap>

/// Leave to come to the front, which a desktop gives to the program that the user has started (XDG
/// activation protocol, startup notification). A program that hands over to a running one hands on
/// its leave.
namespace ActivationToken {

/// What this program was started with, as platform data of org.freedesktop.Application.
QVariantMap ofThisStart();

/// Takes the leave that a caller sends: the next request to bring a window to the front shows it.
void take(const QVariantMap& platformData);

}  // namespace ActivationToken
