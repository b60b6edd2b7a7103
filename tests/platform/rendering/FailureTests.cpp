#include <csignal>

#include "RenderingTest.h"

using namespace Qt::StringLiterals;

namespace {

class FailureTest : public RenderingTest {
 protected:
  void openTall() {
    openMarkup(
        u"<!DOCTYPE html><body style='margin:0'><div style='height:90000px;"
        "background:linear-gradient(red,blue)'></div>"_s);
  }
};

/// A receiver whose disk is full after some strips, or that counts what still comes.
class Failing : public Canvas {
 public:
  explicit Failing(int strips) : left_(strips) {}
  MaybeError began(QSize) override { return {}; }
  MaybeError rows(const QImage&) override {
    ++calls;
    if (left_-- > 0) return {};
    return Error{u"test"_s, 7, u"The disk is full."_s};
  }
  int calls = 0;

 private:
  int left_;
};

TEST_F(FailureTest, AReceiversErrorEndsThePicture) {
  openTall();
  const auto receiver = std::make_shared<Failing>(1);
  const auto result = await<Result<rendering::CapturedPicture>>(
      [&](auto done) { rendering::capturePicture(page, {}, receiver, done); });
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().code, 7);
  EXPECT_EQ(receiver->calls, 2) << "nothing is delivered after the error";
  EXPECT_EQ(picture({.scale = 0.1}).height(), 9000) << "the page is free for the next conversion";
}

TEST_F(FailureTest, AClosedPageEndsItsOperationsWithAnError) {
  openTall();
  int errors = 0;
  const auto expectError = [&errors](const auto& result) { errors += !result; };
  rendering::capturePicture(page, {}, std::make_shared<Failing>(1000), expectError);
  rendering::textLayer(page, expectError);
  rendering::printTall(page, {}, folder.filePath(u"x.pdf"_s), expectError);
  rendering::viewportPicture(page, expectError);
  rendering::documentSize(page, expectError);
  rendering::settle(page, {}, [&errors](const MaybeError& error) { errors += error.has_value(); });
  page->close();
  EXPECT_TRUE(support::waitFor([&errors] { return errors == 6; })) << errors;
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(FailureTest, ABrowserThatDiesEndsThePictureAndTheNextPageWorks) {
  openTall();
  const auto receiver = std::make_shared<Failing>(1000);
  std::optional<Result<rendering::CapturedPicture>> result;
  rendering::capturePicture(page, {.scale = 2}, receiver,
                            [&](auto end) { result = std::move(end); });
  ASSERT_TRUE(support::waitFor([&] { return receiver->calls > 0 || result; }));
  kill(pid_t(engine()->processIdentifier().value()), SIGKILL);
  ASSERT_TRUE(support::waitFor([&] { return result.has_value(); }));
  EXPECT_FALSE(*result);
  openMarkup(u"<!DOCTYPE html><body style='margin:0'><div style='height:99px'>"_s);
  EXPECT_EQ(picture().height(), 99);
}

}  // namespace
