#include "platform/desktop/internal/Launch.h"

#include <unistd.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <memory>

#include "platform/dispatch/Dispatch.h"
#include "platform/dispatch/Timer.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// One started program. It keeps itself until the program has ended, past the report when the
/// program stays.
class Launched : public std::enable_shared_from_this<Launched> {
 public:
  explicit Launched(Completion completion) : completion_(std::move(completion)) {}

  void start(const QString& program, const QStringList& arguments,
             std::chrono::milliseconds patience) {
    self_ = shared_from_this();
    prepare();
    timer_ = dispatch::Timer::after(patience, [this] { report(std::nullopt); });
    process_->start(program, arguments);
  }

 private:
  void prepare() {
    process_->setChildProcessModifier([] { ::setsid(); });
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardOutputFile(QProcess::nullDevice());
    process_->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(process_, &QProcess::finished,
                     [this](int code, QProcess::ExitStatus status) { ended(code, status); });
    QObject::connect(process_, &QProcess::errorOccurred, [this](QProcess::ProcessError error) {
      if (error == QProcess::FailedToStart) notStarted();
    });
  }

  QString name() const { return process_->program(); }

  void ended(int code, QProcess::ExitStatus status) {
    if (status == QProcess::CrashExit)
      report(desktopError(DesktopErrorProgramFailed, u"%1 crashed."_s.arg(name())));
    else if (code != 0)
      report(desktopError(DesktopErrorProgramFailed,
                          u"%1 failed with exit code %2."_s.arg(name()).arg(code)));
    else
      report(std::nullopt);
    release();
  }

  void notStarted() {
    report(desktopError(DesktopErrorProgramFailed,
                        u"%1 could not be started: %2"_s.arg(name(), process_->errorString())));
    release();
  }

  void report(MaybeError error) {
    timer_.reset();
    const Completion completion = std::exchange(completion_, {});
    if (completion) completion(std::move(error));
  }

  void release() {
    process_->deleteLater();
    // The signal that led here is still being delivered to `this`.
    dispatch::mainAsync([keep = std::move(self_)] {});
  }

  Completion completion_;
  QProcess* process_ = new QProcess;
  std::unique_ptr<dispatch::Timer> timer_;
  std::shared_ptr<Launched> self_;
};

}  // namespace

Error desktopError(DesktopErrorCode code, const QString& description) {
  return Error{QString::fromUtf16(desktopErrorDomain), code, description};
}

QString findProgram(const QString& name) {
  return QStandardPaths::findExecutable(name);
}

void launch(const QString& program, const QStringList& arguments,
            std::chrono::milliseconds patience, Completion completion) {
  dispatch::mainAsync([=, completion = std::move(completion)]() mutable {
    std::make_shared<Launched>(std::move(completion))->start(program, arguments, patience);
  });
}

void openWithRegisteredProgram(const QString& target, std::chrono::milliseconds patience,
                               Completion completion) {
  const QString opener = findProgram(u"xdg-open"_s);
  if (!opener.isEmpty()) return launch(opener, {target}, patience, std::move(completion));
  dispatch::mainAsync([completion = std::move(completion)] {
    if (completion)
      completion(desktopError(DesktopErrorUnavailable,
                              u"xdg-open is missing; install the package xdg-utils."_s));
  });
}

QByteArray fileAddress(const QString& path) {
  return "file://" + QFile::encodeName(path).toPercentEncoding("/");
}

}  // namespace desktop
