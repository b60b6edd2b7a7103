// A program that is nothing but its door:
//   start ADDRESS...   becomes the instance and tells what it is asked, or hands over
//   send SIZE          hands over one address of that many bytes
//   demand ADDRESS     hands over, starting the instance when there is none
#include <QCoreApplication>
#include <chrono>
#include <cstdio>

#include "platform/desktop/ApplicationService.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dispatch/Timer.h"

using namespace Qt::StringLiterals;

namespace {

void tell(const QString& line) {
  std::puts(qPrintable(line));
  std::fflush(stdout);
}

class Teller : public desktop::ApplicationReceiver {
 public:
  void activate(const QVariantMap&) override { tell(u"activate"_s); }
  void open(const QStringList& addresses, const QVariantMap& platformData) override {
    const QString token = platformData.value(u"activation-token"_s, u"-"_s).toString();
    for (const QString& address : addresses)
      tell(u"open %1 %2 %3"_s.arg(address.size()).arg(address.right(20), token));
  }
  void activateAction(const QString& name, const QVariantList&, const QVariantMap&) override {
    tell(u"action "_s + name);
    if (name == u"quit"_s) QCoreApplication::quit();
  }
};

int tellOutcome(const Result<desktop::HandOver>& outcome) {
  if (!outcome) {
    tell(u"error "_s + outcome.error().localizedDescription);
    return 1;
  }
  tell(*outcome == desktop::HandOver::HandedOver ? u"handed over"_s : u"no instance"_s);
  return 0;
}

int start(const QStringList& addresses) {
  Teller teller;
  const auto service = desktop::claimOrHandOver(addresses, teller);
  if (!service) return tellOutcome(tl::unexpected<Error>(service.error()));
  if (!*service) return tellOutcome(desktop::HandOver::HandedOver);
  tell(u"instance"_s);
  if (!addresses.isEmpty()) teller.open(addresses, {});
  // One that a bus has started is nobody's child: it must not outlive a test that failed.
  const auto end =
      dispatch::Timer::after(std::chrono::minutes(2), [] { QCoreApplication::quit(); });
  return QCoreApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  dispatch::initialize();
  const QStringList arguments = QCoreApplication::arguments().mid(2);
  const QString command = QCoreApplication::arguments().value(1);
  int status = 2;
  if (command == u"start"_s) status = start(arguments);
  if (command == u"send"_s) {
    QString address(arguments.value(0).toLongLong() - 4, u'x');
    address += u"-end"_s;
    status = tellOutcome(desktop::handOver({address}, {{u"activation-token"_s, u"t"_s}}));
  }
  if (command == u"demand"_s)
    status = tellOutcome(desktop::handOver(arguments, {}, desktop::OnDemand::Start));
  dispatch::finish();
  return status;
}
