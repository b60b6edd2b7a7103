#pragma once

#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "capture/CVCaptureServices.h"
#include "delivery/CVMultipageAssembler.h"
#include "delivery/CVUtils.h"
#include "intake/CVMainWindow.h"
#include "intake/CVPasteboard.h"
#include "intake/CVRedirectHandler.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/desktop/ApplicationService.h"
#include "queue/CVEntryTable.h"
#include "settings/CVDefaultPreferences.h"

/// The application delegate: starts the program, turns capture requests, drops and pastes into
/// entries of the queue, and runs the commands that concern the whole queue. It works with and
/// without a window.
///
/// Operations may be called from any thread unless they say otherwise; what they do to the window
/// they do on the main thread.
class CVAppDelegate : public std::enable_shared_from_this<CVAppDelegate>,
                      public CVEntryTableControllerDelegate,
                      public CVDefaultPreferencesObserver,
                      public CVMiniBrowserWindowControllerDelegate,
                      public desktop::ApplicationReceiver {
 public:
  /// Makes a web-page entry. `source` is the captured document, none when the page is to be
  /// fetched; a zero size forces none. Called on pool threads.
  using EntryFactory =
      std::function<std::shared_ptr<CVEntry>(const QUrl& url, const std::optional<QString>& source,
                                             bool forceJavascript, const QSizeF& forceSize)>;

  /// What the program around it provides. Without a redirect handler, pasteboard or assembler the
  /// commands that need one do nothing.
  struct Services {
    EntryFactory makeEntry;
    std::shared_ptr<defaults::UserDefaults> userDefaults;
    CVUtils::Services utils;
    std::shared_ptr<CVRedirectHandler> redirectHandler;
    std::shared_ptr<CVPasteboard> pasteboard;
    std::shared_ptr<CVMultipageAssembler> multipageAssembler;
    /// Ends the program; empty: the application object is told to quit.
    std::function<void()> terminate;
  };

  static std::shared_ptr<CVAppDelegate> create(Services services);
  ~CVAppDelegate() override;
  CVAppDelegate(const CVAppDelegate&) = delete;
  CVAppDelegate& operator=(const CVAppDelegate&) = delete;

  /// Set before `doFinishApplicationLaunch`; the window takes itself out (none) before it ends. Not
  /// owned. Main thread.
  void setMainWindow(CVMainWindow* window);

  /// Set before `doFinishApplicationLaunch`.
  void setTableViewController(std::shared_ptr<CVEntryTable> table);
  std::shared_ptr<CVEntryTable> tableViewController() const;

  // --- Life cycle: main thread (CVAppDelegate+Lifecycle.cpp) ----------------------------------

  /// First call of the program: from here on capture requests may come.
  void applicationWillFinishLaunching();

  /// Services, window, then `launched`: requests that came earlier are decoded now. Needs the
  /// application object.
  void doFinishApplicationLaunch();

  void initializeObjectRepository();

  /// Closing the main window quits the program.
  void windowWillClose();

  /// The program was started again: the main window comes to the front. Always yes.
  bool applicationShouldHandleReopen(bool hasVisibleWindows);

  /// Always yes: notifications are shown even while the program is in front.
  bool userNotificationCenterShouldPresentNotification() const;

  void onForeground();
  void onBackground();
  bool isForeground() const { return isForeground_; }
  bool launched() const { return launched_; }

  /// Shows the text as the busy status and closes the drop zone, until `restoreState`.
  void setState(const QString& text);
  void restoreState();

  /// Plays the capture effect if the user wants it.
  void snapEffect();

  /// In the order of their first addition, each once.
  void addWarning(const QString& text);
  QStringList warnings() const;

  // --- The door: main thread (CVAppDelegate+CaptureProtocol.cpp) ------------------------------

  /// The program is called to the front.
  void activate(const QVariantMap& platformData) override;
  /// Each address is handled as a URL event of its own.
  void open(const QStringList& addresses, const QVariantMap& platformData) override;
  /// "capture-from-safari", "capture-from-chrome" or "paste"; other names are logged and ignored.
  void activateAction(const QString& name, const QVariantList& parameters,
                      const QVariantMap& platformData) override;

  /// A URL event: an account redirect or a capture request of at most `CapturePayload::maximumSize`
  /// UTF-16 units. Returns at once; the request is decoded on the global queue, once `launched`.
  void handleAppleEvent(const QString& text);

  // --- Entries from requests and addresses (CVAppDelegate+CaptureProtocol.cpp) ----------------

  /// Queues plain addresses, in their order; returns at once.
  void processURLs(const QList<QUrl>& urls);

  /// Whether a browser shows exactly this address and has been captured instead. May wait for the
  /// browser: not on the main thread.
  bool handleURLFromBrowser(const QUrl& url);

  /// Queues a page; returns at once. A size of zero forces none.
  void addEntryWithSource(const std::optional<QString>& source, const QUrl& url,
                          bool useJavascript);
  void addEntryWithSource(const std::optional<QString>& source, const QUrl& url, bool useJavascript,
                          const QSizeF& size);

  void miniBrowserSnapWithURL(CVMiniBrowserWindowController& browser, const QUrl& url,
                              const std::optional<QString>& source, const QSizeF& size) override;

  // --- Capture from the user's browsers (CVAppDelegate+BrowserCapture.cpp) --------------------
  // These wait for the browser: not on the main thread, but for the user's commands, which return
  // at once.

  /// Whether an entry was added.
  bool captureFromSafari();
  bool captureFromChrome();

  /// The user's commands: the capture and, when it added an entry, the effect. Why Chrome could not
  /// be reached becomes a warning.
  void onCaptureFromSafari();
  void onCaptureFromChrome();

  // --- Drops and pastes: main thread (CVAppDelegate+Lifecycle.cpp) ----------------------------

  /// Two or more PDF files are merged; anything else that is no folder is captured.
  void dragViewFilesWereDropped(const QStringList& paths);
  void dragViewStringWasDragged(const QString& text);

  void onPasteURL();
  /// Whether the pasteboard carried text or files.
  bool processPasteboard();

  /// Queues every web address in the text; returns at once. Any thread.
  void scrapURLsFromText(const QString& text);

  // --- Queue commands (CVAppDelegate+QueueCommands.cpp) ---------------------------------------

  /// Enqueues what can be processed. The busy state ends when as many steps have ended as the queue
  /// had entries; entries that are skipped keep it on.
  void processAll();
  void clearAll();
  void clearCompleted();

  void entryTableControllerNumberOfEntriesChanged(CVEntryTable& table) override;
  void entryTableControllerStateOfEntriesChanged(CVEntryTable& table) override;

  // --- Multipage PDF (CVAppDelegate+MultipagePDF.cpp) -----------------------------------------

  /// At least two file addresses: asks for a target and writes the merged document there.
  void performPDFMergingForURLs(const QList<QUrl>& files);

  /// Converts every entry, in mode "Vector" or "Image", and merges the results into a temporary
  /// file. `completion` comes once, on a pool thread, with none when no entry gave a PDF.
  void createMultipagePDFTemporaryFileWithConversionMode(
      const QString& mode, std::function<void(std::optional<QUrl> file)> completion);

  void saveAsMultipagePDFVector();
  void saveAsMultipagePDFImage();
  void emailAsMultipagePDFVector();
  void emailAsMultipagePDFImage();

  // --- Changed settings -----------------------------------------------------------------------

  void setDarkTheme() override;
  void setLightTheme() override;
  void updateAddButton() override;
  void settingsCouldNotBeSaved(const Error& error) override;

 private:
  explicit CVAppDelegate(Services services);

  /// Runs `act` with the window, on the main thread, later; not at all when there is none.
  void withMainWindow(std::function<void(CVMainWindow& window)> act);

  void observeApplicationState();
  void endWaits();
  void announceLaunched();
  void whenLaunched(std::function<void()> work);
  void decodeCaptureRequest(const QString& text);
  void openDirectURL(const std::optional<QUrl>& url);
  void redirectEnded(CVRedirectOutcome outcome);
  void processURL(const QUrl& url);
  void warnWhyUnavailable(browsers::FrontPage* page);
  void beginProcessingURLs();
  void endProcessingURLs();
  void enqueueAll(const std::vector<std::shared_ptr<CVEntry>>& entries, bool processAutomatically);
  void allProcessed(bool processAutomatically);
  void saveAsMultipagePDF(const QString& mode);
  void emailAsMultipagePDF(const QString& mode);
  void mergeInBackground(const QList<QUrl>& files, const QUrl& target);
  /// Whether the document was written; the cause of a failure is logged.
  bool mergePDFURLs(const QList<QUrl>& files, const QUrl& target);
  std::optional<QUrl> mergedTemporaryPDF(const QString& mode);
  QList<QUrl> temporaryPDFsOfEntries(const QString& mode);
  void waitUntilIdle(const CVEntry& entry);

  const Services services_;
  CVMainWindow* window_ = nullptr;  // main thread only

  /// The object lock: guards what follows it.
  mutable std::recursive_mutex mutex_;
  std::shared_ptr<CVEntryTable> tableViewController_;
  QStringList warnings_;
  quint64 processURLSInvocationCount_ = 0;
  std::vector<std::function<void()>> waitingForLaunch_;

  std::atomic<bool> isForeground_ = false;
  std::atomic<bool> launched_ = false;
  std::atomic<bool> isEnding_ = false;

  /// Told whenever an entry's state or the queue's length changes.
  std::mutex entriesMutex_;
  std::condition_variable entriesChanged_;
};
