#pragma once

#include <QByteArray>
#include <QString>
#include <deque>
#include <functional>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/web/FileDescriptor.h"

namespace web {

/// Carries messages over a pair of pipes: each is a text without NUL, ended by a NUL. Reads and
/// writes on a thread of its own, so that neither a reply of many megabytes nor a browser that does
/// not read holds up the caller.
class Transport {
 public:
  /// Bytes that may be read behind a message that is handed over.
  static constexpr std::size_t padding = 64;
  /// A message longer than this ends the connection; the browser's own replies stay far below.
  static constexpr std::size_t messageLimit = std::size_t{1} << 30;

  /// Called on the transport's thread; the text is valid during the call only.
  using MessageHandler = std::function<void(std::string_view message)>;
  /// Called on the transport's thread for a message that comes in pieces, with the first of them.
  using BeginHandler = std::function<void(std::string_view beginning)>;
  /// Called once, on the transport's thread, when the other side has closed or sent what cannot be
  /// read. Not called when the transport is destroyed first.
  using ClosedHandler = std::function<void(const QString& reason)>;

  struct Handlers {
    MessageHandler message;
    BeginHandler begin;
    ClosedHandler closed;
  };

  Transport(FileDescriptor readEnd, FileDescriptor writeEnd, Handlers handlers);
  /// Drops what has not been written. Not to be called from a handler.
  ~Transport();
  Transport(const Transport&) = delete;
  Transport& operator=(const Transport&) = delete;

  /// Any thread. The message is sent in the order of the calls.
  void send(QByteArray message);

 private:
  void run();
  bool serve();
  bool readSome();
  bool handOver(std::size_t scanned);
  bool writeSome();
  bool isStopping();
  bool hasOutput();
  void wake();

  FileDescriptor readEnd_;
  FileDescriptor writeEnd_;
  FileDescriptor wakeUp_;
  Handlers handlers_;
  QString closedReason_;

  std::vector<char> buffer_;
  std::size_t filled_ = 0;
  bool begun_ = false;

  std::mutex mutex_;
  std::deque<QByteArray> output_;
  qsizetype written_ = 0;
  bool stopping_ = false;

  std::thread thread_;
};

}  // namespace web
