#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "app/CaptureOptions.h"
#include "app/CaptureReport.h"
#include "capture/CVCaptureServices.h"

class CVDefaultPreferences;
class CVURLEntry;

/// One run of `corvalis capture`: its sources go through the task manager in order, the next page
/// being loaded while the one before it is converted. Main thread.
class CaptureCommand {
 public:
  using Finished = std::function<void(int exitStatus)>;

  CaptureCommand(CaptureOptions options, std::shared_ptr<web::Engine> engine);
  ~CaptureCommand();
  CaptureCommand(const CaptureCommand&) = delete;
  CaptureCommand& operator=(const CaptureCommand&) = delete;

  /// `finished` comes once, on the main thread, when every source has ended.
  void run(CVDefaultPreferences& settings, Finished finished);

 private:
  struct Job;
  /// What is to be converted: a page to fetch, or one that came whole.
  struct Page {
    QUrl address;
    std::optional<QString> source;
  };

  Result<Page> pageOfSource(const QString& source) const;
  void processForMultipage(const std::shared_ptr<Job>& job);
  void writeMultipage(const Finished& finished);
  Result<std::optional<QUrl>> preparePlace(CVDefaultPreferences& settings);
  std::optional<QString> resultFile(const CVURLEntry& entry) const;
  void startNext();
  void start(const std::shared_ptr<Job>& job, const Page& page);
  void process(const std::shared_ptr<Job>& job);
  void end(const std::shared_ptr<Job>& job, const MaybeError& error);
  void finishIfComplete();

  const CaptureOptions options_;
  CVCaptureServices services_;
  CaptureReport report_;
  Finished finished_;
  qsizetype nextSource_ = 0;
  /// By source; none where the page gave no PDF.
  std::vector<std::optional<QUrl>> multipageParts_;
};
