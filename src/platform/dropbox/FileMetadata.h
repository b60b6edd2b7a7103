#pragma once

#include <QString>

namespace dropbox {

/// A stored file as the service describes it.
struct FileMetadata {
  QString id;
  QString name;
  /// The path with the case as first given; relative to the application's own folder.
  QString pathDisplay;
  QString revision;
  qint64 size = 0;
  QString contentHash;

  /// One line for the log.
  QString description() const;
};

}  // namespace dropbox
