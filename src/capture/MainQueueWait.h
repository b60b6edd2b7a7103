#pragma once

#include <functional>
#include <future>
#include <memory>

#include "platform/dispatch/Dispatch.h"

/// Starts work on the main queue and waits on the calling (not the main) thread for the value that
/// the work hands to its callback, now or later. The event loop goes on meanwhile. When the work is
/// dropped without an answer, because the program ends, `whenDropped` is returned.
template <class Value>
Value waitForMainQueue(std::function<void(std::function<void(Value)> answer)> work,
                       Value whenDropped) {
  // The callback alone holds the promise: once every copy of it is gone the wait ends.
  auto promise = std::make_shared<std::promise<Value>>();
  std::future<Value> future = promise->get_future();
  std::function<void(Value)> answer = [promise = std::move(promise)](Value value) {
    promise->set_value(std::move(value));
  };
  dispatch::mainAsync([work = std::move(work), answer = std::move(answer)] { work(answer); });
  try {
    return future.get();
  } catch (const std::future_error&) {
    return whenDropped;
  }
}
