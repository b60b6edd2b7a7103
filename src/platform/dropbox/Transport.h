#pragma once

#include <QNetworkRequest>
#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "platform/dispatch/Timer.h"
#include "platform/dropbox/HttpReply.h"

class QIODevice;
class QNetworkAccessManager;
class QNetworkReply;

namespace dropbox {

/// Sends single requests; knows HTTP and nothing of the service. Main thread, but for the
/// destructor.
class Transport : public std::enable_shared_from_this<Transport> {
 public:
  using Completion = std::function<void(HttpReply)>;

  explicit Transport(std::chrono::milliseconds silence);
  ~Transport();
  Transport(const Transport&) = delete;
  Transport& operator=(const Transport&) = delete;

  /// Streams `body` (its size must be known; may be empty for a request without one) and gives the
  /// answer, later, once.
  void post(QNetworkRequest request, std::unique_ptr<QIODevice> body, Completion completion);

  /// Runs `work` after the time, or as soon as the transport is closed.
  void pause(std::chrono::milliseconds duration, std::function<void()> work);

  /// Ends what is under way; later posts end at once, without an answer.
  void close();
  bool isClosed() const { return closed_; }

 private:
  struct Pause;

  void finished(QNetworkReply* reply, const Completion& completion);
  HttpReply answerOf(QNetworkReply& reply) const;
  void endPause(Pause* pause);

  std::chrono::milliseconds silence_;
  std::unique_ptr<QNetworkAccessManager> manager_;
  std::set<QNetworkReply*> running_;
  std::vector<std::shared_ptr<Pause>> pauses_;
  bool closed_ = false;
};

}  // namespace dropbox
