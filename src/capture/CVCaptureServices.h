#pragma once

#include <QSizeF>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>

class CVPreferences;
namespace web {
class Engine;
}

/// What becomes of a chosen name that does not end in the extension of its format: it gets that
/// extension appended, or it is the file's name as it stands.
enum class ChosenNames { Completed, Kept };

/// Asks the user where an entry's result goes and how it is converted. Main thread.
class CVSavePanel {
 public:
  virtual ~CVSavePanel() = default;

  /// Shows a sheet on the main window with the given name and folder; while it is open the user may
  /// change `preferences` (the entry's own copy). The extension is not shown; folders can be made.
  /// `completion` comes once, with none when the user cancels.
  virtual void beginSheet(const std::shared_ptr<CVPreferences>& preferences, const QString& name,
                          const std::optional<QUrl>& folder,
                          std::function<void(std::optional<QUrl> chosen)> completion) = 0;

  virtual ChosenNames chosenNames() const { return ChosenNames::Completed; }
};

class CVMiniBrowserWindowController;

/// Hears when the user snaps the page that a mini browser shows. Main thread.
class CVMiniBrowserWindowControllerDelegate {
 public:
  virtual ~CVMiniBrowserWindowControllerDelegate() = default;
  /// `size` is the page's in points.
  virtual void miniBrowserSnapWithURL(CVMiniBrowserWindowController& browser, const QUrl& url,
                                      const std::optional<QString>& source, const QSizeF& size) = 0;
};

/// The small browser as its users see it; the window stands in the user interface. Main thread.
class CVMiniBrowserWindowController {
 public:
  virtual ~CVMiniBrowserWindowController() = default;
  virtual void setDelegate(std::weak_ptr<CVMiniBrowserWindowControllerDelegate> delegate) = 0;
  virtual void loadURL(const QUrl& url) = 0;
  virtual void makeKeyAndOrderFront() = 0;
};

enum class Thumbnails { Made, NotShown };

/// Whether a loaded page is converted at once, in the expectation that it will be asked for with
/// the settings as they are.
enum class Conversions { WhenAsked, Ahead };

/// What a web-page entry needs of the program around it. A missing panel or browser stands for a
/// program without windows: the conversion then goes on without asking.
struct CVCaptureServices {
  std::shared_ptr<web::Engine> engine;
  std::shared_ptr<CVSavePanel> savePanel;
  std::function<std::shared_ptr<CVMiniBrowserWindowController>()> makeMiniBrowser;
  /// Shows a file in the file manager.
  std::function<void(const QString& path)> selectFile;
  /// Device pixels per point in pictures.
  double pixelsPerPoint = 1;
  Thumbnails thumbnails = Thumbnails::Made;
  Conversions conversions = Conversions::WhenAsked;
};
