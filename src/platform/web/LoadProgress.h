#pragma once

#include <QSet>
#include <QString>

namespace web {

/// Estimates how far a page's load is from the requests it has made and those that have ended. The
/// number of requests grows while a page loads, so the estimate only ever rises and stays below 1
/// until the finish.
class LoadProgress {
 public:
  void restart();
  void requestStarted(const QString& request);
  /// One that has ended by itself or failed.
  void requestEnded(const QString& request);
  void committed() { raiseTo(afterCommit); }
  void finished() { raiseTo(1); }

  /// 0 to 1.
  double estimate() const { return estimate_; }

 private:
  static constexpr double afterRequest = 0.05;
  static constexpr double afterCommit = 0.15;
  static constexpr double beforeFinish = 0.95;

  void raiseTo(double value) { estimate_ = value > estimate_ ? value : estimate_; }

  double estimate_ = 0;
  qsizetype ended_ = 0;
  QSet<QString> open_;
};

}  // namespace web
