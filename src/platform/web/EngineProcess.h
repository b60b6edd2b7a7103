#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <memory>

#include "platform/base/Error.h"
#include "platform/web/EngineFolder.h"
#include "platform/web/EngineProgram.h"
#include "platform/web/FileDescriptor.h"
#include "platform/web/KeptProfile.h"

class QProcess;

namespace web {

/// One browser process: in a session and process group of its own, with a private folder, driven
/// over two pipes. It dies with our process, however that ends. Main thread only.
class EngineProcess {
 public:
  /// Uses the profile in `profileFolder` where that can be held, else one in its private folder.
  static Result<std::unique_ptr<EngineProcess>> start(const EngineProgram& program,
                                                      const QStringList& arguments,
                                                      const std::optional<QString>& profileFolder);
  /// Ends the process.
  ~EngineProcess();
  EngineProcess(const EngineProcess&) = delete;
  EngineProcess& operator=(const EngineProcess&) = delete;

  /// Our ends of the pipes, to be taken once.
  FileDescriptor takeReadEnd() { return std::move(readEnd_); }
  FileDescriptor takeWriteEnd() { return std::move(writeEnd_); }

  qint64 processIdentifier() const { return processIdentifier_; }
  QString folder() const { return folder_.path(); }
  bool keepsProfile() const { return profile_.has_value(); }
  /// Blocks until the process, which was asked to end, has done so.
  void waitForEnd(std::chrono::milliseconds limit);
  /// Kills the process group and collects the process. Returns the last lines that the browser
  /// wrote to its standard error, all of them only now.
  QString kill();

  enum class FolderRemoval { Now, InBackground };
  /// Kills the browser, if that was not done, removes the folder and gives up the kept profile.
  void end(FolderRemoval removal);

 private:
  explicit EngineProcess(EngineFolder folder);
  bool run(const EngineProgram& program, const QStringList& arguments);
  void collectDiagnostics();

  QStringList profileArguments() const;

  EngineFolder folder_;
  std::optional<KeptProfile> profile_;
  FileDescriptor readEnd_;
  FileDescriptor writeEnd_;
  std::unique_ptr<QProcess> process_;
  qint64 processIdentifier_ = 0;
  QByteArray diagnostics_;
};

}  // namespace web
