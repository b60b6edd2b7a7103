#include "app/Interruption.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>

namespace {

int pipeEnds[2] = {-1, -1};

/// Only what is safe in a signal handler: the number goes through the pipe.
void forward(int signal) {
  const auto number = static_cast<unsigned char>(signal);
  [[maybe_unused]] const auto written = ::write(pipeEnds[1], &number, 1);
}

void catchSignal(int signal) {
  struct sigaction action = {};
  action.sa_handler = forward;
  action.sa_flags = SA_RESTART | SA_RESETHAND;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

void onInterruption(std::function<void(int signal)> interrupted) {
  if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) return;
  auto* notifier =
      new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, QCoreApplication::instance());
  QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                   [interrupted = std::move(interrupted)] {
                     unsigned char number = 0;
                     if (::read(pipeEnds[0], &number, 1) == 1) interrupted(number);
                   });
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    catchSignal(signal);
}
