#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

#include "platform/web/EngineProgram.h"
#include "platform/web/Page.h"

namespace web {

class EngineInstance;

struct EngineOptions {
  EngineUse use = EngineUse::LiveViews;
  /// The browser to use; none: CORVALIS_ENGINE, then the programs known by name.
  std::optional<QString> program = {};
  /// Added to the program's own arguments and those of CORVALIS_ENGINE_ARGS.
  QStringList extraArguments = {};
  /// Folder of a profile that is kept. None: cookies and storage end with the browser. While
  /// another program holds the folder, or where nothing can be written, this browser's end with it
  /// too.
  std::optional<QString> profileFolder = {};
};

/// The browser process behind all pages. Main thread only. The process starts with the first page
/// and is kept; when it crashes, its pages fail and the next page starts a new one.
class Engine {
 public:
  /// The program's own engine, made with the options of the first call. Shut down when the
  /// application object ends.
  static std::shared_ptr<Engine> shared(const EngineOptions& options = {});

  explicit Engine(EngineOptions options = {});
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  /// Starts the browser ahead of its first page.
  void warmUp();
  /// Returns at once; what is asked of the page waits until it is there. When there is no browser,
  /// the page's commands and loads fail with the reason.
  std::shared_ptr<Page> createPage(PageConfiguration configuration = {});
  /// Ends the browser, all its processes and its folder; returns when they are gone, in 2 s at
  /// most, of a kept profile in 4 s: it is given the time to write. The pages fail; a later page
  /// starts a new browser.
  void shutdown();

  /// Process id of the browser, for diagnostics; none while it does not run.
  std::optional<qint64> processIdentifier() const;

 private:
  Result<std::shared_ptr<EngineInstance>> instance();

  EngineOptions options_;
  std::shared_ptr<EngineInstance> instance_;
};

}  // namespace web
