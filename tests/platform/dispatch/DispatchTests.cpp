#include "platform/dispatch/Dispatch.h"

#include <gtest/gtest.h>

#include <QList>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include "support/Wait.h"

namespace {

/// Says on which thread it ended. What it calls then must not find the queue locked.
class Held {
 public:
  Held(std::atomic<int>& onMain, std::atomic<int>& elsewhere)
      : onMain_(onMain), elsewhere_(elsewhere) {}
  ~Held() {
    dispatch::mainAsync([] {});
    ++(dispatch::isMainThread() ? onMain_ : elsewhere_);
  }

 private:
  std::atomic<int>& onMain_;
  std::atomic<int>& elsewhere_;
};

TEST(MainQueue, WhatWorkHoldsEndsOnTheMainThread) {
  constexpr int count = 1000;
  std::atomic<int> onMain = 0, elsewhere = 0;
  // One at a time, so that each is often over before its caller returns.
  dispatch::globalAsync(dispatch::Priority::Default, [&] {
    for (int posted = 1; posted <= count; ++posted) {
      dispatch::mainAsync([held = std::make_shared<Held>(onMain, elsewhere)] {});
      while (onMain + elsewhere < posted)
        std::this_thread::yield();
    }
  });
  EXPECT_TRUE(support::waitFor([&] { return onMain + elsewhere == count; }));
  EXPECT_EQ(onMain, count);
  EXPECT_EQ(elsewhere, 0);
}

TEST(MainQueue, RunsInTheOrderOfTheCallsOfEachThread) {
  QList<int> order;
  std::atomic<bool> posted = false;
  dispatch::globalAsync(dispatch::Priority::High, [&] {
    for (int index = 0; index < 100; ++index)
      dispatch::mainAsync([&order, index] { order.append(index); });
    dispatch::mainSync([&order] { order.append(100); });
    posted = true;
  });
  EXPECT_TRUE(support::waitFor([&] { return posted.load(); }));
  ASSERT_EQ(order.size(), 101);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

}  // namespace
