#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QImage>
#include <QSizeF>
#include <functional>
#include <memory>

#include "platform/dispatch/Timer.h"
#include "platform/web/Page.h"

namespace web {

/// The pictures of a page that is watched: quick ones as often as it changes, with a pixel for each
/// CSS pixel, and when it has come to rest one with a pixel for each device pixel. Pictures that
/// come faster than they are decoded are left out; the last one always comes. Main thread only.
class LivePictures : public std::enable_shared_from_this<LivePictures> {
 public:
  using Receiver = std::function<void(const QImage&)>;

  /// `receiver` is called on the main queue while pictures run.
  static std::shared_ptr<LivePictures> create(std::shared_ptr<Page> page, Receiver receiver);
  ~LivePictures();
  LivePictures(const LivePictures&) = delete;
  LivePictures& operator=(const LivePictures&) = delete;

  /// Gives the page a viewport of that size in CSS pixels, with `scale` device pixels for each.
  void setViewport(const QSizeF& size, double scale);

  void start();
  void stop();

  /// The page shows another document, perhaps in another process.
  void documentReplaced();
  /// Somebody types: the next keys must not wait for a sharp picture.
  void keyPressed() { lastKey_.start(); }

 private:
  LivePictures(std::shared_ptr<Page> page, Receiver receiver);
  void subscribe();
  void applySize();
  void startScreencast();
  void handlePicture(const QJsonObject& event);
  void requestPictureAtRest();
  void requestSharpPicture();
  bool endSharpPicture();
  void decode(const QByteArray& jpeg);
  void decodeNext();
  void showPicture(const QImage& picture);

  const std::shared_ptr<Page> page_;
  const Receiver receiver_;
  QSizeF viewport_;
  double scale_ = 1;
  bool running_ = false;

  /// The newest picture that has not been decoded, as JPEG.
  QByteArray waitingPicture_;
  QByteArray lastPicture_;
  bool decoding_ = false;
  QElapsedTimer lastKey_;
  bool takingSharpPicture_ = false;
  /// Number of the document shown.
  int document_ = 0;
  /// The page has not been given the viewport's size.
  bool sizeWaits_ = false;
  std::unique_ptr<dispatch::Timer> restTimer_;
  Subscription pictures_;
};

}  // namespace web
