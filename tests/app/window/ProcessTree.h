#pragma once

#include <QList>

/// A program and all that it has started, as it is now.
class ProcessTree {
 public:
  explicit ProcessTree(qint64 root);

  /// The first process in the tree whose command line holds the text; 0 when there is none.
  qint64 find(const QByteArray& text) const;
  /// Whether all of them have ended.
  bool hasEnded() const;
  qsizetype size() const { return processes_.size(); }

 private:
  struct Process {
    qint64 identifier;
    /// Numbers of processes are given again; with the time of its start one is unmistakable.
    QByteArray startTime;
  };
  QList<Process> processes_;
};
