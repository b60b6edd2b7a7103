#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <memory>
#include <optional>

#include "platform/base/Error.h"
#include "settings/CVOSXVersion.h"

class CVAppDelegate;

namespace browsers {
class FrontPage;
}
namespace desktop {
class FileClipboard;
class MailComposer;
class NoteImporter;
class RunningApplications;
class ScriptRunner;
}  // namespace desktop
namespace dropbox {
class ClientsManager;
}

/// Shows the user a message with one button "Ok" and returns when it was dismissed; other work of
/// the main queue may run meanwhile. Main thread.
class CVAlertPresenter {
 public:
  virtual ~CVAlertPresenter() = default;
  virtual void displayOKAlertWithTitle(const QString& title, const QString& message) = 0;
};

/// The utility service: working files and names, pictures on disk, scripts, the user's browsers,
/// the destinations, and the merging of captured pages. Registered as "utils". Its operations keep
/// no state and may be called from any thread unless they say otherwise.
class CVUtils {
 public:
  /// The outside world. A missing service makes its operations do nothing and log so.
  struct Services {
    std::shared_ptr<desktop::ScriptRunner> scriptRunner;
    std::shared_ptr<desktop::RunningApplications> runningApplications;
    std::shared_ptr<desktop::MailComposer> mailComposer;
    std::shared_ptr<desktop::FileClipboard> clipboard;
    std::shared_ptr<desktop::NoteImporter> noteImporter;
    std::shared_ptr<browsers::FrontPage> safari;
    std::shared_ptr<browsers::FrontPage> chrome;
    std::shared_ptr<dropbox::ClientsManager> dropbox;
    std::shared_ptr<CVAlertPresenter> alerts;
  };

  explicit CVUtils(Services services);
  ~CVUtils();
  CVUtils(const CVUtils&) = delete;
  CVUtils& operator=(const CVUtils&) = delete;

  const Services& services() const { return services_; }

  // --- Shared objects -------------------------------------------------------------------------

  /// The release of the system's services; 0.0.0 when it cannot be told.
  CVOSXVersion getOSXVersion() const;

  /// None in the command line and before start-up.
  std::shared_ptr<CVAppDelegate> getAppDelegate() const;
  void setAppDelegate(std::weak_ptr<CVAppDelegate> appDelegate);

  /// As `CVAlertPresenter`; without one the text goes to the log. Main thread only.
  void displayOKAlertWithTitle(const QString& title, const QString& message) const;

  // --- Working files and names ----------------------------------------------------------------

  static QString UUIDString();

  /// The user's data folder for this program; made if it is missing.
  QUrl getApplicationDataDirectory() const;

  /// The working folder, made if it is missing: all temporary files stand in it.
  QUrl getDownloadsDirectory() const;

  /// Moves the working folder: the command line must not share (and clear) the one of a running
  /// window.
  void setDownloadsDirectory(const QUrl& folder);

  /// Removes the working folder with everything in it.
  void deleteDownloadsDirectory() const;

  /// A name in the working folder that no file has yet; nothing is made.
  QUrl createTemporaryFile() const;

  /// A new, empty folder in the working folder.
  QUrl createTemporaryFolder() const;

  QUrl getUserHomeDirectory() const;
  QUrl getUserDesktopDirectory() const;

  /// The address itself when no file is there, else the first free of "name 2.ext", "name 3.ext",
  /// ...
  QUrl uncollideFile(const QUrl& file) const;

  /// A name of more than 200 UTF-16 units becomes its first and last 150 with "..." between them.
  static QString trimFileName(const QString& name);

  /// A name that a file can have and a user can see: control characters and slashes become spaces,
  /// a leading dot is masked, and the name is cut at a character to `longestInBytes` (the file
  /// system's 255 less what numbering and writing beside the file add).
  static QString legalFileName(const QString& name, qsizetype longestInBytes = 220);

  /// Encodes the picture in `data` (any format that can be read) in the bitmap file type (0 TIFF,
  /// 1 BMP, 2 GIF, 3 JPEG, 4 PNG, 5 JPEG 2000) and writes it whole or not at all. `compression` is
  /// the factor for JPEG and JPEG 2000, 0.0 (smallest) to 1.0 (best). `address` is kept where the
  /// format has a place for it.
  void saveDataToFile(const QByteArray& data, const QUrl& file, unsigned format, float compression,
                      MaybeError& error,
                      const std::optional<QString>& address = std::nullopt) const;

  /// Marks the file with the address that it came from: `user.xdg.origin.url` (freedesktop common
  /// extended attributes) and the property list that macOS keeps; by a script too where the machine
  /// runs scripts, then blocking for as long. The user's name and password stay out. File systems
  /// without attributes are passed over in silence.
  void setWhereFrom(const QString& address, const QString& path) const;

  // --- Scripts and the user's browsers --------------------------------------------------------

  /// The script's result; none when it failed or there is no script system.
  std::optional<QString> runAppleScript(const QString& script) const;

  /// What a browser's front tab shows, and where.
  struct FrontDocument {
    std::optional<QString> document;
    std::optional<QUrl> url;
  };

  std::optional<QString> getDOMFromSafari() const;
  std::optional<QString> getSourceFromSafari() const;
  std::optional<QString> getDOMFromChrome() const;
  std::optional<QUrl> getURLFromSafari() const;
  std::optional<QUrl> getURLFromChrome() const;

  /// Document and address of one page, also when the browser's user goes on to another tab
  /// meanwhile: the address that came with the texts counts, and it is asked for only where none
  /// did.
  FrontDocument getFrontDocumentFromChrome() const;

  /// By bundle identifier, for instance "com.google.Chrome".
  bool applicationIsRunning(const QString& bundleIdentifier) const;

  // --- Merging captured pages -----------------------------------------------------------------

  /// One self-contained document: scripts stripped, styles injected, frames filled in by position.
  /// Without styles the page code is returned as it came.
  std::optional<QString> mergePageCode(const std::optional<QString>& page,
                                       const std::optional<QString>& styles) const;
  std::optional<QString> mergePageCode(const std::optional<QString>& page,
                                       const std::optional<QString>& styles,
                                       const std::optional<QString>& iframes) const;

  /// A frame's document from its Base64 text; none when a decoding step fails.
  static std::optional<QString> decodeIFrame(const QString& item);

  // --- Destinations ---------------------------------------------------------------------------
  // The file must exist and stays where it is. Failures are logged, not reported.

  void newMailWithAttachment(const QUrl& file) const;
  void pasteFileToClipboard(const QUrl& file) const;
  void importFileIntoEvernote(const QUrl& file, const QString& title) const;

  /// Returns when the upload has ended: not on the main thread.
  void uploadFileToDropBox(const QUrl& file) const;

 private:
  Services services_;
  std::weak_ptr<CVAppDelegate> appDelegate_;
  std::optional<QUrl> downloadsDirectory_;
};
