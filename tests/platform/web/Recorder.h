#pragma once

#include <QStringList>
#include <optional>

#include "platform/web/Page.h"

/// Writes down what a page tells its observers: one word per event, in their order.
class Recorder : public web::PageObserver {
 public:
  QStringList events;
  QStringList redirects;
  QStringList titles;
  std::vector<double> progress;
  std::optional<Error> failure;
  std::optional<Error> crash;
  std::optional<web::LoadPhase> failedPhase;
  web::Response response;
  int childFinishes = 0;
  qint64 mainFrameBytes = 0;

  int count(const char* event) const { return int(events.count(QString::fromLatin1(event))); }
  bool finished() const { return count("finish") > 0; }
  bool ended() const { return failure || finished(); }
  /// The load has ended and "loading" has turned false.
  bool settled() const { return ended() && !events.isEmpty() && count("idle") == count("loading"); }

  void pageStartedProvisionalLoad(web::Page&, const web::Frame& frame) override {
    if (frame.isMain()) events << "start";
  }
  void pageReceivedRedirect(web::Page&, const web::Frame& frame) override {
    if (!frame.isMain()) return;
    events << "redirect";
    redirects << frame.url.path();
  }
  void pageReceivedResponse(web::Page&, const web::Response& answered) override {
    response = answered;
  }
  void pageCommittedLoad(web::Page&, const web::Frame& frame) override {
    if (frame.isMain()) events << "commit";
  }
  void pageReceivedTitle(web::Page&, const QString& title) override {
    events << "title";
    titles << title;
  }
  void pageReceivedData(web::Page&, const web::Frame& frame, const QString&,
                        qint64 length) override {
    if (frame.isMain()) mainFrameBytes += length;
  }
  void pageChangedProgress(web::Page&, double value) override { progress.push_back(value); }
  void pageFinishedLoad(web::Page&, const web::Frame& frame) override {
    if (frame.isMain())
      events << "finish";
    else
      ++childFinishes;
  }
  void pageFailedLoad(web::Page&, web::LoadPhase phase, const Error& error) override {
    events << "fail";
    failure = error;
    failedPhase = phase;
  }
  void pageChangedLoading(web::Page&, bool loading) override {
    events << (loading ? "loading" : "idle");
  }
  void pageCrashed(web::Page&, const Error& error) override { crash = error; }
};
