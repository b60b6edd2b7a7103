#pragma once

#include <QTemporaryDir>
#include <QUrl>

/// The working folder of one run of the command line, in the user's cache. Removed at the end;
/// folders that runs which were killed have left are removed at the start of the next.
class WorkFolder {
 public:
  WorkFolder();

  QUrl url() const { return QUrl::fromLocalFile(folder_.path()); }

  /// Leaves the files to the programs that they were handed to: mail and note programs read them
  /// later.
  void keep();

 private:
  QTemporaryDir folder_;
};
