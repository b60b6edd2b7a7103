#include "platform/web/EngineProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <csignal>
#include <vector>

#include "platform/dispatch/Dispatch.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

/// Where a browser with --remote-debugging-pipe reads its commands and writes its messages.
constexpr int commandDescriptor = 3;
constexpr int messageDescriptor = 4;
constexpr int pipeSize = 1 << 20;
constexpr qsizetype diagnosticsLimit = 8192;
constexpr int collectLimitMilliseconds = 1000;

struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

/// Both ends lie above the descriptors that the child gives them, so that moving one never hits the
/// other.
FileDescriptor lifted(FileDescriptor descriptor) {
  return FileDescriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, 20));
}

Pipe makePipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return {};
  ::fcntl(ends[0], F_SETPIPE_SZ, pipeSize);
  FileDescriptor readEnd(ends[0]);
  FileDescriptor writeEnd(ends[1]);
  return {lifted(std::move(readEnd)), lifted(std::move(writeEnd))};
}

/// Keeps 3 and 4 taken while QProcess makes its own descriptors: the child overwrites both, and
/// would overwrite the one through which QProcess hears that the program could not be run.
std::vector<FileDescriptor> occupyLowDescriptors() {
  std::vector<FileDescriptor> taken;
  do {
    taken.emplace_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  } while (taken.back().isOpen() && taken.back().get() <= messageDescriptor);
  return taken;
}

/// Runs between fork and exec: only calls that are safe there, nothing may allocate.
void prepareChild(int commands, int messages, pid_t parent) {
  ::setsid();
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(1);
  const rlimit noCore{0, 0};
  ::setrlimit(RLIMIT_CORE, &noCore);
  ::dup2(commands, commandDescriptor);
  ::dup2(messages, messageDescriptor);
  ::close_range(messageDescriptor + 1, ~0U, CLOSE_RANGE_CLOEXEC);
}

QProcessEnvironment environmentFor(const EngineFolder& folder) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  // A browser that is killed leaves its temporary files: here they go with the folder.
  environment.insert(u"TMPDIR"_s, folder.temporaryPath());
  return environment;
}

}  // namespace

EngineProcess::EngineProcess(EngineFolder folder) : folder_(std::move(folder)) {}

EngineProcess::~EngineProcess() {
  end(FolderRemoval::Now);
}

Result<std::unique_ptr<EngineProcess>> EngineProcess::start(
    const EngineProgram& program, const QStringList& arguments,
    const std::optional<QString>& profileFolder) {
  Result<EngineFolder> folder = EngineFolder::create();
  if (!folder) return tl::make_unexpected(folder.error());
  std::unique_ptr<EngineProcess> process(new EngineProcess(std::move(*folder)));
  if (profileFolder) process->profile_ = KeptProfile::hold(*profileFolder);
  if (process->run(program, arguments)) return process;
  const QString reason = process->process_ ? process->process_->errorString() : u"no pipe"_s;
  return tl::make_unexpected(makeError(
      EngineNotStarted, u"The browser “%1” could not be started: %2."_s.arg(program.path, reason)));
}

bool EngineProcess::run(const EngineProgram& program, const QStringList& arguments) {
  Pipe commands = makePipe();
  Pipe messages = makePipe();
  if (!commands.writeEnd.isOpen() || !messages.writeEnd.isOpen()) return false;
  process_ = std::make_unique<QProcess>();
  process_->setProcessEnvironment(environmentFor(folder_));
  process_->setStandardInputFile(QProcess::nullDevice());
  process_->setStandardOutputFile(QProcess::nullDevice());
  QObject::connect(process_.get(), &QProcess::readyReadStandardError, process_.get(),
                   [this] { collectDiagnostics(); });
  process_->setChildProcessModifier([in = commands.readEnd.get(), out = messages.writeEnd.get(),
                                     parent = ::getpid()] { prepareChild(in, out, parent); });
  const auto taken = occupyLowDescriptors();
  process_->start(program.path, arguments + profileArguments());
  if (!process_->waitForStarted()) return false;
  processIdentifier_ = process_->processId();
  readEnd_ = std::move(messages.readEnd);
  writeEnd_ = std::move(commands.writeEnd);
  return true;
}

/// What can be fetched again is not kept.
QStringList EngineProcess::profileArguments() const {
  if (!profile_) return {u"--user-data-dir="_s + folder_.profilePath()};
  return {u"--user-data-dir="_s + profile_->path(),
          u"--disk-cache-dir="_s + folder_.temporaryPath()};
}

void EngineProcess::waitForEnd(std::chrono::milliseconds limit) {
  if (process_ && process_->state() != QProcess::NotRunning)
    process_->waitForFinished(static_cast<int>(limit.count()));
}

void EngineProcess::collectDiagnostics() {
  diagnostics_ += process_->readAllStandardError();
  if (diagnostics_.size() > diagnosticsLimit) diagnostics_ = diagnostics_.last(diagnosticsLimit);
}

QString EngineProcess::kill() {
  if (!process_) return QString::fromUtf8(diagnostics_);
  if (processIdentifier_ > 0) ::kill(static_cast<pid_t>(-processIdentifier_), SIGKILL);
  // Killed or dead, it ends at once; the bound is for a process that hangs in the kernel.
  if (process_->state() != QProcess::NotRunning)
    process_->waitForFinished(collectLimitMilliseconds);
  collectDiagnostics();
  process_.reset();
  readEnd_.reset();
  writeEnd_.reset();
  return QString::fromUtf8(diagnostics_);
}

void EngineProcess::end(FolderRemoval removal) {
  kill();
  profile_.reset();
  if (removal == FolderRemoval::Now) return folder_.remove();
  auto folder = std::make_shared<EngineFolder>(std::move(folder_));
  dispatch::globalAsync(dispatch::Priority::Default, [folder] { folder->remove(); });
}

}  // namespace web
