#pragma once

#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTemporaryDir>

#include "capture/CVURLEntry.h"
#include "delivery/CVUtils.h"
#include "platform/web/Engine.h"
#include "settings/CVDefaultPreferences.h"

/// A panel that stays open until it is answered.
class PatientPanel : public CVSavePanel {
 public:
  void beginSheet(const std::shared_ptr<CVPreferences>&, const QString&, const std::optional<QUrl>&,
                  std::function<void(std::optional<QUrl>)> completion) override {
    answer = std::move(completion);
  }
  std::function<void(std::optional<QUrl>)> answer;
};

/// Entries over the real engine, with settings and a working folder of the test's own.
class EntryFixture : public testing::Test {
 protected:
  EntryFixture();

  std::shared_ptr<CVURLEntry> entryFor(const QUrl& url, const std::optional<QString>& source = {},
                                       QSizeF forcedSize = QSizeF(0, 0)) const;

  /// A file with that markup.
  QUrl page(const QString& markup, const QString& name = QStringLiteral("page.html")) const;

  /// Runs a step to its end and returns its error.
  static MaybeError prepare(const std::shared_ptr<CVURLEntry>& entry);
  static MaybeError process(const std::shared_ptr<CVURLEntry>& entry);

  QStringList results() const;

  QTemporaryDir folder;
  QTemporaryDir output;
  CVCaptureServices services;
  std::shared_ptr<CVUtils> utils;
  std::shared_ptr<CVDefaultPreferences> settings;
};
