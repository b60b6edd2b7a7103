#include <QElapsedTimer>
#include <QTemporaryDir>
#include <atomic>

#include "DropboxTest.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/dropbox/Slice.h"

using namespace Qt::StringLiterals;

namespace {

using Response = HttpServer::Response;
using Stored = Result<dropbox::FileMetadata>;

class UploadTest : public DropboxTest {
 protected:
  UploadTest() {
    configuration.limits = {.singleRequest = 1000, .chunk = 400};
    manager = startLinked();
  }

  QString file(const QByteArray& contents) {
    const QString path = folder.filePath(u"page.pdf"_s);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
    return path;
  }

  static QByteArray bytes(int size) {
    QByteArray data(size, '\0');
    for (int i = 0; i < size; ++i)
      data[i] = static_cast<char>((i * 7919u) >> 3);
    return data;
  }

  Stored upload(const QString& path, const QString& remotePath = u"/page.pdf"_s) {
    std::optional<Stored> result;
    manager->authorizedClient()->filesRoutes().uploadFile(
        remotePath, path, [&](const Stored& stored) { result = stored; });
    EXPECT_TRUE(support::waitFor([&result] { return result.has_value(); }));
    return result.value_or(failure(u"test"_s, 0, u"no end"_s));
  }

  Stored uploadOnWorker(
      const QString& path, const std::function<void()>& meanwhile = [] {}) {
    std::optional<Stored> result;
    std::atomic<bool> isDone = false;
    const auto client = manager->authorizedClient();
    dispatch::globalAsync(dispatch::Priority::High, [&] {
      result = client->filesRoutes().uploadFileAndWait(u"/page.pdf"_s, path);
      isDone = true;
    });
    meanwhile();
    EXPECT_TRUE(support::waitFor([&isDone] { return isDone.load(); }));
    return *result;
  }

  static int code(const Stored& stored) { return stored ? 0 : stored.error().code; }

  std::unique_ptr<dropbox::ClientsManager> manager;
  QTemporaryDir folder;
};

TEST_F(UploadTest, NamesOfAllKindsArriveAsTheyAre) {
  const QString path = file("contents");
  for (const QString& name : {u"/plain.pdf"_s, u"/Größe – 日本 🌍.pdf"_s,
                              u"/quote\" back\\slash.pdf"_s, u"/delete\x7f tab\t line\n.pdf"_s}) {
    const Stored stored = upload(path, name);
    ASSERT_TRUE(stored) << stored.error().localizedDescription.toStdString();
    EXPECT_EQ(stored->pathDisplay, name);
    EXPECT_EQ(service.files.value(name), "contents");
  }
}

TEST_F(UploadTest, ATakenNameIsAConflictUnlessTheContentsAreTheSame) {
  for (const int size : {10, 2000}) {
    service.files = {{u"/page.pdf"_s, "another page"}};
    EXPECT_EQ(code(upload(file(bytes(size)))), dropbox::ErrorConflict) << size;
    EXPECT_EQ(service.files.value(u"/page.pdf"_s), "another page");
    service.files = {{u"/page.pdf"_s, bytes(size)}};
    EXPECT_TRUE(upload(file(bytes(size)))) << size;
  }
}

TEST_F(UploadTest, RefusalsEndTheUploadAtOnceWithTheirCause) {
  struct Case {
    int status;
    const char* body;
    int code;
    const char* words;
  };
  const Case cases[] = {
      {400, "Error in call to API function: bad path", dropbox::ErrorRequest, "bad path"},
      {401,
       R"({"error_summary":"invalid_access_token/..","error":{".tag":"invalid_access_token"}})",
       dropbox::ErrorAuthorization, "invalid_access_token"},
      {401,
       R"({"error_summary":"missing_scope/..","error":{".tag":"missing_scope","required_scope":"files.content.write"}})",
       dropbox::ErrorAuthorization, "missing_scope"},
      {403, R"({"error_summary":"access_denied/..","error":{".tag":"access_denied"}})",
       dropbox::ErrorRequest, "access_denied"},
      {409,
       R"({"error_summary":"path/insufficient_space/..","error":{".tag":"path","reason":{".tag":"insufficient_space"}}})",
       dropbox::ErrorNoSpace, "space"},
      {409,
       R"({"error_summary":"path/disallowed_name/..","error":{".tag":"path","reason":{".tag":"disallowed_name"}}})",
       dropbox::ErrorPath, "page.pdf"},
      {409,
       R"({"error_summary":"path/no_write_permission/.","error":{".tag":"path","reason":{".tag":"no_write_permission"}}})",
       dropbox::ErrorPath, "page.pdf"},
      {409, R"({"error_summary":"novel_reason/...","error":{".tag":"novel_reason"}})",
       dropbox::ErrorRequest, "novel_reason"},
      {409, "not what it should be", dropbox::ErrorRequest, "not what"},
      {200, "<html>", dropbox::ErrorService, "cannot be read"},
      {302, "", dropbox::ErrorRequest, "302"},
  };
  for (const Case& each : cases) {
    service.routes.clear();
    service.answerNext(u"upload"_s, jsonResponse(each.status, each.body));
    const Stored stored = upload(file("x"));
    EXPECT_EQ(code(stored), each.code) << each.body;
    EXPECT_TRUE(!stored &&
                stored.error().localizedDescription.contains(QString::fromUtf8(each.words)))
        << each.body;
    EXPECT_EQ(service.routes.size(), 1) << each.body;
  }
}

TEST_F(UploadTest, PassingTroubleIsSatOut) {
  Response cut, limited = jsonResponse(429, "too_many_requests");
  cut.cut = Response::Cut::BeforeAnswer;
  limited.headers = {"Retry-After: 0"};
  const Response cases[] = {
      cut,
      limited,
      jsonResponse(500, "<html>"),
      jsonResponse(503, ""),
      jsonResponse(
          429,
          R"({"error_summary":"too_many_requests/..","error":{"reason":{".tag":"too_many_requests"},"retry_after":0}})"),
      jsonResponse(
          409,
          R"({"error_summary":"path/too_many_write_operations/","error":{".tag":"path","reason":{".tag":"too_many_write_operations"}}})")};
  for (const Response& trouble : cases) {
    service.files.clear();
    service.answerNext(u"upload"_s, trouble);
    const Stored stored = upload(file(bytes(900)));
    EXPECT_TRUE(stored) << trouble.status
                        << (stored ? "" : stored.error().localizedDescription.toStdString());
    EXPECT_EQ(service.files.value(u"/page.pdf"_s), bytes(900));
  }
}

TEST_F(UploadTest, ABrokenConnectionInTheMiddleOfTheFileOrOfTheAnswerIsSentAgainWhole) {
  configuration.limits.singleRequest = 50'000'000;
  manager = startLinked();
  service.http().cutNextBodyAfter(3'000'000);
  EXPECT_TRUE(upload(file(bytes(9'000'000))));
  EXPECT_EQ(service.files.value(u"/page.pdf"_s), bytes(9'000'000));
  service.files.clear();
  service.loseNextAnswer(u"upload"_s);
  EXPECT_TRUE(upload(file("short")));
}

TEST_F(UploadTest, RetryAfterIsHonouredUpToABound) {
  Response limited = jsonResponse(429, "");
  limited.headers = {"Retry-After: 1"};
  service.answerNext(u"upload"_s, limited);
  QElapsedTimer timer;
  timer.start();
  EXPECT_TRUE(upload(file("x")));
  EXPECT_GE(timer.elapsed(), 950);

  limited.headers = {"Retry-After: 86400"};
  service.answerNext(u"upload"_s, limited);
  EXPECT_EQ(code(upload(file("x"))), dropbox::ErrorRateLimit);
}

TEST_F(UploadTest, TroubleThatStaysEndsAfterTheLastAttempt) {
  for (int i = 0; i < 3; ++i)
    service.answerNext(u"upload"_s, jsonResponse(500, ""));
  EXPECT_EQ(code(upload(file("x"))), dropbox::ErrorService);
  EXPECT_EQ(service.routes.size(), 3);

  configuration.retry.silence = std::chrono::milliseconds(300);
  manager = startLinked();
  Response silent;
  silent.isSilent = true;
  for (int i = 0; i < 3; ++i)
    service.answerNext(u"upload"_s, silent);
  EXPECT_EQ(code(upload(file("x"))), dropbox::ErrorNetwork);
}

TEST_F(UploadTest, AnExpiredTokenIsRenewedOnceForAllAndTheRenewedOneIsKept) {
  service.expireAccessTokens();
  const QByteArray storedBefore = [] {
    QFile file(tokenPath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }();
  int ended = 0;
  for (const QString& name : {u"/a"_s, u"/b"_s, u"/c"_s})
    manager->authorizedClient()->filesRoutes().uploadData(name, "x", [&](const Stored& stored) {
      EXPECT_TRUE(stored);
      ++ended;
    });
  ASSERT_TRUE(support::waitFor([&ended] { return ended == 3; }));
  EXPECT_EQ(service.routes.count(u"/oauth2/token"_s), 1);
  EXPECT_TRUE(support::waitFor([&] {
    QFile file(tokenPath());
    return file.open(QIODevice::ReadOnly) && file.readAll() != storedBefore;
  }));

  const QByteArray expired =
      R"({"error_summary":"expired_access_token/","error":{".tag":"expired_access_token"}})";
  for (int i = 0; i < 2; ++i)
    service.answerNext(u"upload"_s, jsonResponse(401, expired));
  service.routes.clear();
  EXPECT_EQ(code(upload(file("x"))), dropbox::ErrorAuthorization);
  EXPECT_EQ(service.routes.size(), 3) << "renewed once and no more";
}

TEST_F(UploadTest, ATokenNearItsEndIsRenewedBeforeTheFileTravels) {
  service.lifeTime = 30;
  manager = startLinked();
  EXPECT_TRUE(upload(file("x")));
  EXPECT_EQ(service.routes, QStringList({u"/oauth2/token"_s, u"upload"_s}));
}

TEST_F(UploadTest, AnAuthorizationThatTheServiceEndedIsForgottenHereToo) {
  service.expireAccessTokens();
  service.refuseRefreshTokens();
  const auto client = manager->authorizedClient();
  EXPECT_EQ(code(upload(file("x"))), dropbox::ErrorAuthorization);
  EXPECT_FALSE(manager->authorizedClient());
  EXPECT_TRUE(support::waitFor([] { return !QFile::exists(tokenPath()); }));

  std::optional<Stored> late;
  client->filesRoutes().uploadData(u"/late"_s, "x", [&](const Stored& stored) { late = stored; });
  ASSERT_TRUE(support::waitFor([&late] { return late.has_value(); }));
  EXPECT_EQ(code(*late), dropbox::ErrorNotLinked);
}

TEST_F(UploadTest, AFileAboveTheLimitArrivesInPartsAsOneFile) {
  struct Case {
    int size;
    int requests;
  };
  for (const Case& each :
       {Case{0, 1}, Case{1000, 1}, Case{1001, 3}, Case{1200, 3}, Case{1201, 4}}) {
    service.files.clear();
    service.routes.clear();
    const Stored stored = upload(file(bytes(each.size)));
    ASSERT_TRUE(stored) << each.size << stored.error().localizedDescription.toStdString();
    EXPECT_EQ(stored->size, each.size);
    EXPECT_EQ(service.files.value(u"/page.pdf"_s), bytes(each.size));
    EXPECT_EQ(service.routes.size(), each.requests) << service.routes.join(u' ').toStdString();
  }
}

TEST_F(UploadTest, APartOfAFileIsADeviceOfItsOwn) {
  auto whole = std::make_unique<QFile>(file("0123456789"));
  ASSERT_TRUE(whole->open(QIODevice::ReadOnly));
  dropbox::Slice slice(std::move(whole), 3, 5);
  EXPECT_EQ(slice.size(), 5);
  EXPECT_EQ(slice.read(2), "34");
  EXPECT_EQ(slice.readAll(), "567");
  EXPECT_TRUE(slice.atEnd());
  EXPECT_TRUE(slice.reset() && slice.seek(4));
  EXPECT_EQ(slice.read(9), "7");
  EXPECT_FALSE(slice.seek(6));
}

TEST_F(UploadTest, ASessionRecoversFromLostAnswersWithoutDoublingOrLosingBytes) {
  const QByteArray expired =
      R"({"error_summary":"expired_access_token/","error":{".tag":"expired_access_token"}})";
  for (const QString& route :
       {u"upload_session/start"_s, u"upload_session/append_v2"_s, u"upload_session/finish"_s}) {
    service.files.clear();
    service.loseNextAnswer(route);
    const Stored lost = upload(file(bytes(1900)));
    ASSERT_TRUE(lost) << route.toStdString() << lost.error().localizedDescription.toStdString();
    EXPECT_EQ(service.files.value(u"/page.pdf"_s), bytes(1900)) << route.toStdString();

    service.files.clear();
    service.answerNext(route, jsonResponse(401, expired));
    EXPECT_TRUE(upload(file(bytes(1900))));
    EXPECT_EQ(service.files.value(u"/page.pdf"_s), bytes(1900)) << route.toStdString();
  }
}

TEST_F(UploadTest, ASessionThatTheServiceLosesBeginsAgainButNotForEver) {
  const Response gone =
      jsonResponse(409, R"({"error_summary":"not_found/..","error":{".tag":"not_found"}})");
  service.answerNext(u"upload_session/append_v2"_s, gone);
  EXPECT_TRUE(upload(file(bytes(1900))));
  EXPECT_EQ(service.files.value(u"/page.pdf"_s), bytes(1900));

  const Response wandering = jsonResponse(
      409,
      R"({"error_summary":"incorrect_offset/","error":{".tag":"incorrect_offset","correct_offset":400}})");
  const Response outside = jsonResponse(
      409,
      R"({"error_summary":"incorrect_offset/","error":{".tag":"incorrect_offset","correct_offset":99999}})");
  for (const Response& each : {gone, wandering, outside}) {
    for (int i = 0; i < 50; ++i)
      service.answerNext(u"upload_session/append_v2"_s, each);
    service.routes.clear();
    EXPECT_EQ(code(upload(file(bytes(1900)))), dropbox::ErrorRequest);
    EXPECT_LE(service.routes.size(), 15);
    service.clearAnswers();
  }
}

TEST_F(UploadTest, AWorkerWaitsForTheEndOfItsUpload) {
  EXPECT_TRUE(uploadOnWorker(file(bytes(1900))));
  EXPECT_EQ(code(uploadOnWorker(folder.filePath(u"missing"_s))), dropbox::ErrorFile);
  EXPECT_EQ(code(uploadOnWorker(folder.path())), dropbox::ErrorFile);
  EXPECT_EQ(code(manager->authorizedClient()->filesRoutes().uploadFileAndWait(u"/x"_s, file("x"))),
            dropbox::ErrorUnavailable)
      << "waiting on the main thread would never end";
}

TEST_F(UploadTest, AWaitingWorkerIsReleasedWhenTheProgramEnds) {
  Response silent, limited = jsonResponse(429, "");
  silent.isSilent = true;
  limited.headers = {"Retry-After: 5"};
  for (const Response& each : {silent, limited}) {
    configuration.retry.silence = std::chrono::seconds(60);
    manager = startLinked();
    service.answerNext(u"upload"_s, each);
    const auto closeOnceAsked = [this] {
      EXPECT_TRUE(support::waitFor([this] { return service.routes.contains(u"upload"_s); }));
      manager->close();
    };
    EXPECT_EQ(code(uploadOnWorker(file("x"), closeOnceAsked)), dropbox::ErrorUnavailable);
  }
}

TEST_F(UploadTest, AFileThatChangesBetweenTwoAttemptsIsNotSentAsAMixture) {
  const QString path = file(bytes(1900));
  service.onRequest = [&, grown = false](const QString& route) mutable {
    if (route != u"upload_session/append_v2" || std::exchange(grown, true)) return;
    QFile changed(path);
    EXPECT_TRUE(changed.open(QIODevice::Append));
    changed.write("more");
  };
  EXPECT_EQ(code(upload(path)), dropbox::ErrorFile);
  EXPECT_TRUE(service.files.isEmpty());
}

TEST_F(UploadTest, ATeamUploadsInTheNameOfItsMember) {
  service.isTeam = true;
  service.expectedMember = "dbmid:7";
  manager = startLinked();
  std::optional<Stored> result;
  manager->authorizedTeamClient()
      ->clientForMember(u"dbmid:7"_s)
      ->filesRoutes()
      .uploadData(u"/x"_s, "x", [&](const Stored& stored) { result = stored; });
  ASSERT_TRUE(support::waitFor([&result] { return result.has_value(); }));
  EXPECT_TRUE(*result);
}

}  // namespace
