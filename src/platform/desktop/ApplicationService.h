#pragma once

#include <QStringList>
#include <QVariant>
#include <memory>

#include "platform/base/Error.h"

namespace desktop {

/// The program's name on the session bus, and of its desktop entry.
inline constexpr char16_t applicationIdentifier[] = u"com.maplebrook.corvalis";

/// More than this in one request is refused with an error: 256 MB.
inline constexpr qint64 longestRequest = 256LL * 1024 * 1024;

/// Takes what other programs and later starts of this one ask of the running instance. Called on
/// the main thread. `platformData` may hold "desktop-startup-id" and "activation-token" (texts).
class ApplicationReceiver {
 public:
  virtual ~ApplicationReceiver() = default;

  /// Show yourself.
  virtual void activate(const QVariantMap& platformData) = 0;
  /// Addresses as they came: not checked in any way.
  virtual void open(const QStringList& addresses, const QVariantMap& platformData) = 0;
  /// One of the desktop entry's actions.
  virtual void activateAction(const QString& name, const QVariantList& parameters,
                              const QVariantMap& platformData) = 0;
};

/// The right to be the one running instance of the user, and the door to it: the interface
/// org.freedesktop.Application (freedesktop "Desktop Entry Specification", section D-Bus
/// Activation) on the session bus, and a local socket in the user's runtime folder, which needs no
/// bus and knows no limit below `longestRequest`. Destroying it closes the door and gives up the
/// right. Main thread only.
class ApplicationService {
 public:
  virtual ~ApplicationService() = default;

  /// An empty pointer when another instance is running. The receiver must outlive the service.
  static Result<std::unique_ptr<ApplicationService>> claim(ApplicationReceiver& receiver);
};

enum class HandOver { HandedOver, NoInstance };

/// What to do when no instance is running but the session bus knows how to start one.
enum class OnDemand { Start, DoNotStart };

/// Gives the addresses (without any: the wish to be shown) to the running instance and returns when
/// it has taken them. Blocks for at most half a minute or so, needs no event loop, and may be
/// called before there is one. Any thread, but not that of the instance itself.
Result<HandOver> handOver(const QStringList& addresses, const QVariantMap& platformData = {},
                          OnDemand onDemand = OnDemand::DoNotStart);

/// The same for one of the desktop entry's actions.
Result<HandOver> handOverAction(const QString& name, const QVariantMap& platformData = {},
                                OnDemand onDemand = OnDemand::DoNotStart);

/// The start of the program in one step: hands the addresses over when an instance is running
/// (empty pointer), else becomes the instance, and the addresses are the caller's to open. Two
/// starts at one moment end with one instance that has both requests; one beside an instance that
/// is ending waits for its place.
Result<std::unique_ptr<ApplicationService>> claimOrHandOver(const QStringList& addresses,
                                                            ApplicationReceiver& receiver,
                                                            const QVariantMap& platformData = {});

}  // namespace desktop
