#include "platform/desktop/ScriptRunner.h"

#include <QProcess>

#include "platform/desktop/internal/Launch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

tl::unexpected<Error> scriptFailure(DesktopErrorCode code, const QString& description) {
  return tl::unexpected<Error>(desktopError(code, description));
}

class OsascriptRunner : public ScriptRunner {
 public:
  explicit OsascriptRunner(std::chrono::milliseconds limit) : limit_(limit) {}

  bool isAvailable() const override { return !findProgram(u"osascript"_s).isEmpty(); }

  Result<QString> run(const QString& script) const override {
    const QString program = findProgram(u"osascript"_s);
    if (program.isEmpty())
      return scriptFailure(DesktopErrorUnavailable, u"This system runs no scripts."_s);
    QProcess process;
    process.start(program, {u"-"_s});
    process.write(script.toUtf8());
    process.closeWriteChannel();
    return outcome(process);
  }

 private:
  Result<QString> outcome(QProcess& process) const {
    if (!process.waitForFinished(static_cast<int>(limit_.count()))) {
      const bool late = process.error() == QProcess::Timedout;
      process.kill();
      process.waitForFinished();
      return late ? scriptFailure(DesktopErrorNoAnswer, u"The script did not end in time."_s)
                  : scriptFailure(DesktopErrorProgramFailed, process.errorString());
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
      return scriptFailure(DesktopErrorProgramFailed,
                           QString::fromUtf8(process.readAllStandardError()).trimmed());
    QByteArray text = process.readAllStandardOutput();
    if (text.endsWith('\n')) text.chop(1);
    return QString::fromUtf8(text);
  }

  std::chrono::milliseconds limit_;
};

}  // namespace

std::shared_ptr<ScriptRunner> ScriptRunner::create(std::chrono::milliseconds limit) {
  return std::make_shared<OsascriptRunner>(limit);
}

}  // namespace desktop
