#pragma once

#include <QString>
#include <QUrl>
#include <chrono>
#include <optional>

namespace web {

enum class Scripts { Enabled, Disabled };
enum class LocalFiles { Refused, Allowed };

/// Whose cookies and storage a page uses. Pages of the program's profile share them with each other
/// and with the user's live pages; a private page starts with none and leaves none.
enum class Profile { Program, Private };

/// What the browser has painted of a page; the engine decides that.
enum class Painted { Viewport, WholeDocument };

/// What is decided when a page is made. Lengths are CSS pixels, which are points.
struct PageConfiguration {
  double layoutWidth = 1024;
  double viewportHeight = 768;
  /// Device pixels per CSS pixel in pictures.
  double deviceScaleFactor = 1;
  Scripts scripts = Scripts::Enabled;
  Profile profile = Profile::Program;
  Painted painted = Painted::Viewport;

  friend bool operator==(const PageConfiguration&, const PageConfiguration&) = default;
};

/// One load. With `markup` the document is that text, shown at `url` without asking the network for
/// it; what the document refers to is still fetched. Such a document stays: it cannot navigate
/// away.
struct PageRequest {
  QUrl url = {};
  std::optional<QString> markup = {};
  /// How long the main request may stay without an answer; each redirect starts it anew.
  std::chrono::milliseconds responseTimeout{5000};
  /// Refused: no `file:` address is read, neither as the page itself nor as a part of it.
  LocalFiles localFiles = LocalFiles::Refused;

  friend bool operator==(const PageRequest&, const PageRequest&) = default;
};

}  // namespace web
