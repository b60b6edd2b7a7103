#include <sys/stat.h>

#include "DropboxTest.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace {

using LinkingTest = DropboxTest;

void unlinkAndWait(dropbox::ClientsManager& manager) {
  bool isDone = false;
  manager.unlinkAndResetClients([&isDone] { isDone = true; });
  EXPECT_FALSE(manager.authorizedClient()) << "the account is forgotten at once";
  EXPECT_TRUE(support::waitFor([&isDone] { return isDone; }));
}

TEST_F(LinkingTest, AnAccountStaysLinkedAfterARestartInAFileThatOnlyItsOwnerReads) {
  startLinked();
  struct stat status {};
  ASSERT_EQ(::stat(tokenPath().toLocal8Bit().constData(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);

  const auto restarted = start();
  EXPECT_TRUE(restarted->authorizedClient());
  EXPECT_FALSE(restarted->authorizedTeamClient());
}

TEST_F(LinkingTest, AWorkerThatAsksRightAfterTheStartFindsTheAccount) {
  startLinked();
  dropbox::ClientsManager manager(configuration);
  manager.setupWithAppKeyDesktop(QString::fromLatin1(StandIn::kAppKey));
  std::atomic<int> found = -1;
  dispatch::globalAsync(dispatch::Priority::Default,
                        [&] { found = manager.authorizedClient() ? 1 : 0; });
  ASSERT_TRUE(support::waitFor([&found] { return found >= 0; }));
  EXPECT_EQ(found, 1);
}

TEST_F(LinkingTest, ATeamHasATeamClientAndNoUserClient) {
  service.isTeam = true;
  const auto manager = startLinked();
  EXPECT_TRUE(manager->authorizedTeamClient());
  EXPECT_FALSE(manager->authorizedClient());
}

TEST_F(LinkingTest, ForeignRedirectsNeitherLinkNorSpoilTheLinkUnderWay) {
  const auto manager = start();
  for (const char* address :
       {"db-other://2/token?code=1&state=2", "corvxurl://2/token", "http://2/token"})
    EXPECT_FALSE(manager->handleRedirectURL(QUrl(QString::fromLatin1(address)), {})) << address;

  const QUrl authorization = begin(*manager);
  const QUrl redirect = service.consent(authorization);
  for (const QString& query : {u"code=stolen&state=guessed"_s, u"code=stolen"_s,
                               u"error=access_denied&state=x"_s, QString()}) {
    const auto result = handle(*manager, StandIn::redirect(query));
    EXPECT_EQ(result.outcome, Outcome::Error) << query.toStdString();
    EXPECT_EQ(result.error->code, dropbox::ErrorStateMismatch);
  }
  EXPECT_TRUE(service.routes.isEmpty()) << "a foreign code was sent to the service";

  EXPECT_EQ(handle(*manager, redirect).outcome, Outcome::Success);
  EXPECT_EQ(handle(*manager, redirect).error->code, dropbox::ErrorStateMismatch)
      << "a redirect serves once";
}

TEST_F(LinkingTest, RefusalsAreToldApart) {
  const auto manager = start();
  const auto refuse = [&](const QString& query) {
    const QString state = StandIn::stateOf(begin(*manager));
    return handle(*manager, StandIn::redirect(query + u"&state="_s + state));
  };
  EXPECT_EQ(refuse(u"error=access_denied"_s).outcome, Outcome::Cancel);
  const auto failed = refuse(u"error=server_error&error_description=out+of%20order"_s);
  EXPECT_EQ(failed.outcome, Outcome::Error);
  EXPECT_TRUE(failed.error->localizedDescription.contains(u"out of order"_s));
  begin(*manager);
  EXPECT_EQ(handle(*manager, QUrl(u"db-k3r8tq0vz5mha2x://2/cancel"_s)).outcome, Outcome::Cancel);
  EXPECT_EQ(refuse(u"code=never-given"_s).error->code, dropbox::ErrorAuthorization);
  EXPECT_FALSE(manager->authorizedClient());
}

TEST_F(LinkingTest, TheCodeIsExchangedThroughABadConnectionAndNotThroughGarbage) {
  const auto manager = start();
  const QString route = u"/oauth2/token"_s;
  service.answerNext(route, jsonResponse(200, "<html>sign in to the hotel network"));
  EXPECT_EQ(handle(*manager, service.consent(begin(*manager))).error->code, dropbox::ErrorService);
  EXPECT_FALSE(QFile::exists(tokenPath()));

  service.answerNext(route, jsonResponse(500, ""));
  HttpServer::Response cut;
  cut.cut = HttpServer::Response::Cut::BeforeAnswer;
  service.answerNext(route, cut);
  EXPECT_EQ(handle(*manager, service.consent(begin(*manager))).outcome, Outcome::Success);
}

TEST_F(LinkingTest, UnlinkingRevokesTheTokenEvenWhenItHasExpired) {
  auto manager = startLinked();
  unlinkAndWait(*manager);
  EXPECT_EQ(service.revoked.size(), 1);
  EXPECT_FALSE(QFile::exists(tokenPath()));

  manager = startLinked();
  service.expireAccessTokens();
  unlinkAndWait(*manager);
  EXPECT_EQ(service.revoked.size(), 2);
  EXPECT_FALSE(start()->authorizedClient());
}

TEST_F(LinkingTest, UnlinkingForgetsTheAccountWhenTheServiceIsOutOfReach) {
  startLinked();
  configuration.endpoints = dropbox::Endpoints::onServer(QUrl(u"http://127.0.0.1:9"_s));
  const auto manager = start();
  ASSERT_TRUE(manager->authorizedClient());
  unlinkAndWait(*manager);
  EXPECT_FALSE(start()->authorizedClient());
}

TEST_F(LinkingTest, ADamagedTokenFileMeansUnlinkedAndIsReplaced) {
  startLinked();
  for (const QByteArray& contents :
       {QByteArray(), QByteArray("{\"access_tok"), QByteArray(100'000, '[')}) {
    QFile file(tokenPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
    file.close();
    file.setPermissions(file.permissions() | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_FALSE(start()->authorizedClient());
  }
  startLinked();
  EXPECT_TRUE(start()->authorizedClient());
  EXPECT_FALSE(QFile::permissions(tokenPath()) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(LinkingTest, ARemovalIsNotOvertakenByAWritingThatFallsBackToTheFile) {
  const auto store = dropbox::makeStandardTokenStore(u"k3r8tq0vz5mha2x"_s);
  int ended = 0;
  const auto count = [&ended](const MaybeError& error) {
    EXPECT_FALSE(error);
    ++ended;
  };
  store->write(dropbox::Token{.accessToken = u"access"_s}, count);
  store->remove(count);
  ASSERT_TRUE(support::waitFor([&ended] { return ended == 2; }));
  EXPECT_FALSE(QFile::exists(tokenPath()));
}

TEST_F(LinkingTest, OnlyAServerOnThisMachineStandsInForTheService) {
  qputenv("CORVALIS_DROPBOX_SERVER", "http://127.0.0.1:8080/");
  EXPECT_EQ(dropbox::Endpoints::standard().token, QUrl(u"http://127.0.0.1:8080/oauth2/token"_s));
  qputenv("CORVALIS_DROPBOX_SERVER", "http://127.0.0.1.example.test/");
  EXPECT_EQ(dropbox::Endpoints::standard().token.scheme(), u"https"_s);
  qunsetenv("CORVALIS_DROPBOX_SERVER");
}

}  // namespace
