#include "app/NativeHostCommand.h"

#include <sys/mman.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <csignal>
#include <cstdio>

#include "platform/browsers/NativeHost.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace {

Error startFailure() {
  return {u"com.maplebrook.corvalis.host"_s, 1, u"Corvalis could not be started."_s};
}

/// A file in memory that no other program sees; empty when there is no memory for it.
class MemoryFile {
 public:
  explicit MemoryFile(const QByteArray& contents)
      : descriptor_(::memfd_create("corvalis-request", MFD_CLOEXEC)) {
    for (qsizetype written = 0; isWhole_ && written < contents.size();) {
      const auto count =
          ::write(descriptor_, contents.constData() + written, contents.size() - written);
      isWhole_ = count > 0;
      written += count;
    }
  }
  ~MemoryFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  bool isWhole() const { return isWhole_; }
  QString path() const { return u"/proc/self/fd/%1"_s.arg(descriptor_); }

 private:
  int descriptor_;
  bool isWhole_ = descriptor_ >= 0;
};

/// Without a session bus that knows the program we start it ourselves, as `corvalis open -` from a
/// shell would. Its output must not reach the browser, which reads ours.
MaybeError startProgram(const QString& request) {
  const MemoryFile input(request.toUtf8());
  if (!input.isWhole()) return startFailure();
  QProcess program;
  program.setProgram(QCoreApplication::applicationFilePath());
  program.setArguments({u"open"_s, u"-"_s});
  program.setStandardInputFile(input.path());
  program.setStandardOutputFile(QProcess::nullDevice());
  program.setStandardErrorFile(QProcess::nullDevice());
  if (!program.startDetached()) return startFailure();
  return std::nullopt;
}

MaybeError deliver(const QString& request) {
  const auto outcome = desktop::handOver({request}, {}, desktop::OnDemand::Start);
  if (!outcome) return outcome.error();
  return *outcome == desktop::HandOver::HandedOver ? std::nullopt : startProgram(request);
}

}  // namespace

int runNativeHostCommand(const QStringList& arguments) {
  if (!browsers::isOurAddOn(arguments)) {
    std::fputs("corvalis: native-host is started by browsers, for the Corvalis add-on only.\n",
               stderr);
    return 2;
  }
  // A browser that has closed its end does not cut the last request short.
  std::signal(SIGPIPE, SIG_IGN);
  int argumentCount = 1;
  char name[] = "corvalis";
  char* argumentValues[] = {name, nullptr};
  QCoreApplication application(argumentCount, argumentValues);
  dispatch::initialize();
  int status = 0;
  {
    const browsers::NativeHost host(STDIN_FILENO, STDOUT_FILENO, deliver,
                                    [](int ended) { QCoreApplication::exit(ended); });
    status = QCoreApplication::exec();
  }
  // A request that has arrived whole is still handed over.
  dispatch::finish();
  return status;
}
