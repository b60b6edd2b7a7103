#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>

#include "StandIn.h"
#include "platform/dropbox/ClientsManager.h"
#include "platform/dropbox/DropboxError.h"
#include "support/Wait.h"

/// A stand-in of the service and managers that speak to it; the token is kept in the real store,
/// which has no key ring here.
class DropboxTest : public ::testing::Test {
 protected:
  using Outcome = dropbox::AuthorizationOutcome;

  DropboxTest() {
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    QFile::remove(tokenPath());
    configuration.endpoints = dropbox::Endpoints::onServer(service.http().address());
    configuration.retry = {.attempts = 3,
                           .firstPause = std::chrono::milliseconds(1),
                           .longestPause = std::chrono::seconds(5),
                           .silence = std::chrono::seconds(20)};
  }
  void TearDown() override { EXPECT_EQ(service.faults().join(u'\n').toStdString(), ""); }

  static QString tokenPath() {
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QStringLiteral("/dropbox-token");
  }

  std::unique_ptr<dropbox::ClientsManager> start() {
    auto manager = std::make_unique<dropbox::ClientsManager>(configuration);
    bool isReady = false;
    manager->setupWithAppKeyDesktop(QString::fromLatin1(StandIn::kAppKey),
                                    [&isReady] { isReady = true; });
    EXPECT_TRUE(support::waitFor([&isReady] { return isReady; }));
    return manager;
  }

  static QUrl begin(dropbox::ClientsManager& manager) {
    QUrl opened;
    manager.authorizeFromControllerDesktop([&opened](const QUrl& url) { opened = url; });
    return opened;
  }

  static dropbox::AuthorizationResult handle(dropbox::ClientsManager& manager,
                                             const QUrl& redirect) {
    std::optional<dropbox::AuthorizationResult> result;
    EXPECT_TRUE(
        manager.handleRedirectURL(redirect, [&result](const auto& given) { result = given; }));
    EXPECT_FALSE(result) << "the outcome came before the call returned";
    EXPECT_TRUE(support::waitFor([&result] { return result.has_value(); }));
    return result.value_or(dropbox::AuthorizationResult{Outcome::Error, {}});
  }

  std::unique_ptr<dropbox::ClientsManager> startLinked() {
    auto manager = start();
    EXPECT_EQ(handle(*manager, service.consent(begin(*manager))).outcome, Outcome::Success);
    service.routes.clear();
    return manager;
  }

  StandIn service;
  dropbox::Configuration configuration;
};
