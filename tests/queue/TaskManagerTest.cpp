#include <gtest/gtest.h>

#include <atomic>
#include <mutex>

#include "platform/dispatch/Dispatch.h"
#include "queue/CVEntryTaskManager.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

/// Records its steps and ends them when it is told to.
class ControlledEntry : public CVEntry {
 public:
  explicit ControlledEntry(const QString& name) : CVEntry(QUrl(u"http://localhost/"_s + name)) {}

  void prepareWithCompletion(Completion completion) override {
    preparedOnMain_ = dispatch::isMainThread();
    begin(prepare_, std::move(completion));
  }
  void processWithCompletion(Completion completion) override {
    processedOnMain_ = dispatch::isMainThread();
    begin(process_, std::move(completion));
  }

  bool isPreparing() { return isRunning(prepare_); }
  bool isProcessing() { return isRunning(process_); }
  void endPreparing(const MaybeError& error = {}) { end(prepare_, error); }
  void endProcessing(const MaybeError& error = {}) { end(process_, error); }
  bool preparedOnMain() const { return preparedOnMain_; }
  bool processedOnMain() const { return processedOnMain_; }

 private:
  void begin(Completion& step, Completion completion) {
    std::lock_guard lock(mutex_);
    step = std::move(completion);
  }
  bool isRunning(const Completion& step) {
    std::lock_guard lock(mutex_);
    return static_cast<bool>(step);
  }
  void end(Completion& step, const MaybeError& error) {
    Completion completion;
    {
      std::lock_guard lock(mutex_);
      std::swap(completion, step);
    }
    completion(shared_from_this(), error);
  }

  std::mutex mutex_;
  Completion prepare_;
  Completion process_;
  std::atomic<bool> preparedOnMain_ = false;
  std::atomic<bool> processedOnMain_ = true;
};

std::shared_ptr<ControlledEntry> makeEntry(const QString& name) {
  return std::make_shared<ControlledEntry>(name);
}

TEST(TaskManager, PreparesOneAtATimeInOrder) {
  const auto manager = CVEntryTaskManager::create();
  const auto a = makeEntry(u"a"_s);
  const auto b = makeEntry(u"b"_s);
  QStringList ended;
  const auto note = [&](const std::shared_ptr<CVEntry>& entry, const MaybeError& error) {
    ended += entry->initialURL().path() + (error ? u" failed"_s : QString());
  };
  manager->enqueueEntryForPreparing(a, note);
  manager->enqueueEntryForPreparing(b, note);
  ASSERT_TRUE(waitFor([&] { return a->isPreparing(); }));
  EXPECT_TRUE(a->preparedOnMain());
  EXPECT_FALSE(b->isPreparing());
  a->endPreparing(Error{u"x"_s, 1, u"no"_s});
  ASSERT_TRUE(waitFor([&] { return b->isPreparing(); }));
  b->endPreparing();
  EXPECT_EQ(ended, (QStringList{u"/a failed"_s, u"/b"_s}));
}

TEST(TaskManager, TheTwoStepsRunSideBySideButNeverTwoOfOne) {
  const auto manager = CVEntryTaskManager::create();
  const auto a = makeEntry(u"a"_s);
  const auto b = makeEntry(u"b"_s);
  const auto c = makeEntry(u"c"_s);
  manager->enqueueEntryForPreparing(a, nullptr);
  manager->enqueueEntryForProcessing(b, nullptr);
  manager->enqueueEntryForProcessing(c, nullptr);
  ASSERT_TRUE(waitFor([&] { return a->isPreparing() && b->isProcessing(); }));
  EXPECT_FALSE(b->processedOnMain());
  EXPECT_FALSE(c->isProcessing());
  b->endProcessing();
  ASSERT_TRUE(waitFor([&] { return c->isProcessing(); }));
  c->endProcessing();
  a->endPreparing();
}

TEST(TaskManager, EntriesWithAnErrorAreSkippedWithoutAWord) {
  const auto manager = CVEntryTaskManager::create();
  const auto running = makeEntry(u"running"_s);
  const auto failed = makeEntry(u"failed"_s);
  const auto next = makeEntry(u"next"_s);
  bool heard = false;
  manager->enqueueEntryForProcessing(running, nullptr);
  manager->enqueueEntryForProcessing(
      failed, [&](const std::shared_ptr<CVEntry>&, const MaybeError&) { heard = true; });
  manager->enqueueEntryForProcessing(next, nullptr);
  ASSERT_TRUE(waitFor([&] { return running->isProcessing(); }));
  failed->setError(std::make_shared<CVError>());
  running->endProcessing();
  ASSERT_TRUE(waitFor([&] { return next->isProcessing(); }));
  next->endProcessing();
  EXPECT_FALSE(heard);
}

TEST(TaskManager, ACompletionMayEnqueueTheNextStep) {
  const auto manager = CVEntryTaskManager::create();
  const auto entry = makeEntry(u"a"_s);
  manager->enqueueEntryForPreparing(
      entry, [&](const std::shared_ptr<CVEntry>& prepared, const MaybeError&) {
        manager->enqueueEntryForProcessing(prepared, nullptr);
      });
  ASSERT_TRUE(waitFor([&] { return entry->isPreparing(); }));
  entry->endPreparing();
  ASSERT_TRUE(waitFor([&] { return entry->isProcessing(); }));
  entry->endProcessing();
}

/// Ends its step in the name of another entry.
class ConfusedEntry : public CVEntry {
 public:
  using CVEntry::CVEntry;
  void prepareWithCompletion(Completion completion) override {
    completion(std::make_shared<CVEntry>(QUrl()), std::nullopt);
  }
};

TEST(TaskManagerDeathTest, AnUnknownCompletionEndsTheProgram) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto confuse = [] {
    const auto manager = CVEntryTaskManager::create();
    manager->enqueueEntryForPreparing(std::make_shared<ConfusedEntry>(QUrl()), nullptr);
    waitFor([] { return false; }, std::chrono::seconds(5));
  };
  EXPECT_DEATH(confuse(), "Internal inconsistency");
}

}  // namespace
