#include "platform/desktop/ApplicationService.h"

#include <QLockFile>

#include "platform/base/Log.h"
#include "platform/desktop/internal/BusDoor.h"
#include "platform/desktop/internal/InstanceCall.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/SocketDoor.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// Milliseconds that an instance may take to end once its door is closed.
constexpr int endingPatience = 10'000;

QString lockPath(const QString& purpose) {
  return runtimeFolder() + u'/' + QString::fromUtf16(applicationIdentifier) + purpose;
}

void deliver(const InstanceRequest& request, ApplicationReceiver& receiver) {
  switch (request.kind) {
    case InstanceRequest::Kind::Activate:
      return receiver.activate(request.platformData);
    case InstanceRequest::Kind::Open:
      return receiver.open(request.texts, request.platformData);
    case InstanceRequest::Kind::Action:
      return receiver.activateAction(request.texts.first(), {}, request.platformData);
  }
}

class RunningInstance : public ApplicationService {
 public:
  explicit RunningInstance(ApplicationReceiver& receiver)
      : lock_(lockPath(u".lock"_s)),
        bus_(receiver),
        socket_([&receiver](const InstanceRequest& request) { deliver(request, receiver); }) {
    // Held as long as its process lives, however long that is.
    lock_.setStaleLockTime(0);
  }

  /// False when another instance is still running after that many milliseconds.
  Result<bool> open(int patience) {
    if (!lock_.tryLock(patience)) {
      if (lock_.error() == QLockFile::LockFailedError) return false;
      return failure(QString::fromUtf16(desktopErrorDomain), DesktopErrorFile,
                     u"The program cannot write in %1."_s.arg(runtimeFolder()));
    }
    // The socket comes before the name: whoever waits for the name may have a request that only the
    // socket is large enough for.
    if (auto error = socket_.listen()) return tl::unexpected<Error>(*error);
    return bus_.claim() != BusDoor::Claim::OwnedByAnother;
  }

 private:
  QLockFile lock_;
  BusDoor bus_;
  SocketDoor socket_;
};

Result<HandOver> callInstance(const InstanceRequest& request) {
  const auto outcome = callBySocket(request);
  if (!outcome || *outcome == HandOver::HandedOver) return outcome;
  return callByBus(request);
}

Result<HandOver> call(const InstanceRequest& request, OnDemand onDemand) {
  const auto outcome = callInstance(request);
  if (!outcome || *outcome == HandOver::HandedOver || onDemand == OnDemand::DoNotStart)
    return outcome;
  const auto started = startByBus();
  if (!started) return tl::unexpected<Error>(started.error());
  return *started ? callInstance(request) : outcome;
}

InstanceRequest openRequest(const QStringList& addresses, const QVariantMap& platformData) {
  const auto kind =
      addresses.isEmpty() ? InstanceRequest::Kind::Activate : InstanceRequest::Kind::Open;
  return {kind, addresses, platformData};
}

Result<std::unique_ptr<ApplicationService>> becomeInstance(ApplicationReceiver& receiver,
                                                           int patience) {
  auto instance = std::make_unique<RunningInstance>(receiver);
  const auto opened = instance->open(patience);
  if (!opened) return tl::unexpected<Error>(opened.error());
  if (!*opened) return nullptr;
  return instance;
}

}  // namespace

Result<std::unique_ptr<ApplicationService>> ApplicationService::claim(
    ApplicationReceiver& receiver) {
  return becomeInstance(receiver, 0);
}

Result<HandOver> handOver(const QStringList& addresses, const QVariantMap& platformData,
                          OnDemand onDemand) {
  return call(openRequest(addresses, platformData), onDemand);
}

Result<HandOver> handOverAction(const QString& name, const QVariantMap& platformData,
                                OnDemand onDemand) {
  return call({InstanceRequest::Kind::Action, {name}, platformData}, onDemand);
}

Result<std::unique_ptr<ApplicationService>> claimOrHandOver(const QStringList& addresses,
                                                            ApplicationReceiver& receiver,
                                                            const QVariantMap& platformData) {
  // Starts at one moment take turns, so that the second finds the first one's door open.
  QLockFile turn(lockPath(u".starting"_s));
  if (!turn.tryLock(30'000)) logLine(u"Another start of the program takes long."_s);
  const auto outcome = handOver(addresses, platformData);
  if (!outcome) return tl::unexpected<Error>(outcome.error());
  if (*outcome == HandOver::HandedOver) return nullptr;
  // An instance that has closed its door already is about to end: its place will be free.
  auto instance = becomeInstance(receiver, endingPatience);
  if (!instance || *instance) return instance;
  return failure(QString::fromUtf16(desktopErrorDomain), DesktopErrorNoAnswer,
                 u"Another Corvalis is running, but does not answer."_s);
}

}  // namespace desktop
