#pragma once

#include <gtest/gtest.h>

#include <QFile>

#include "Scheduler.h"
#include "platform/printing/PrintService.h"

/// One scheduler for all tests of a suite: it takes a second to start.
class PrintingTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { scheduler = Scheduler::start(); }
  static void TearDownTestSuite() { scheduler.reset(); }
  void SetUp() override {
    if (!scheduler) GTEST_SKIP() << "cupsd and lpadmin are not installed";
    service = printing::makePrintService(scheduler->socket());
  }

  QString file(const QString& name, const QByteArray& contents) const {
    const QString path = folder.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
    return path;
  }

  static QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
  }

  /// Bytes that no conversion of line ends or texts would leave as they are.
  static QByteArray pdf(int size = 200'000) {
    QByteArray data("%PDF-1.7\r\n");
    while (data.size() < size)
      data.append(static_cast<char>(data.size() * 31 ^ data.size() >> 7));
    return data;
  }

  inline static std::unique_ptr<Scheduler> scheduler;
  std::shared_ptr<printing::PrintService> service;
  QTemporaryDir folder;
};
