#pragma once

#include <gtest/gtest.h>

#include <QJsonValue>
#include <memory>
#include <optional>

#include "Recorder.h"
#include "platform/web/Engine.h"
#include "support/HttpServer.h"
#include "support/Wait.h"

/// Tests that share one real browser; each makes the pages it needs.
class EngineTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { engine() = std::make_unique<web::Engine>(); }
  static void TearDownTestSuite() { engine().reset(); }
  static std::unique_ptr<web::Engine>& engine() {
    static std::unique_ptr<web::Engine> shared;
    return shared;
  }

  std::shared_ptr<web::Page> openPage(const web::PageConfiguration& configuration = {}) {
    page = engine()->createPage(configuration);
    recorder = std::make_shared<Recorder>();
    page->addObserver(recorder);
    return page;
  }
  /// Loads and waits for the end, good or bad.
  void load(const web::PageRequest& request) {
    page->load(request);
    ASSERT_TRUE(support::waitFor([this] { return recorder->settled(); }))
        << recorder->events.join(' ').toStdString();
  }
  Result<QJsonValue> evaluate(const QString& script) {
    std::optional<Result<QJsonValue>> value;
    page->evaluate(script, [&value](Result<QJsonValue> result) { value = std::move(result); });
    support::waitFor([&value] { return value.has_value(); });
    return *value;
  }
  QString text(const QString& script) { return evaluate(script).value_or(QJsonValue()).toString(); }

  HttpServer server;
  std::shared_ptr<web::Page> page;
  std::shared_ptr<Recorder> recorder;
};
