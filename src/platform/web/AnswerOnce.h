#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "platform/web/PagePromptDelegate.h"

namespace web {

/// An answer handler that passes on the first answer, or `fallback` when the last copy is dropped
/// without one: a page must never wait for a question that was forgotten.
template <class Answer>
AnswerHandler<Answer> answerOnce(AnswerHandler<Answer> handler, Answer fallback) {
  struct Once {
    AnswerHandler<Answer> handler;
    Answer fallback;

    void give(const Answer& answer) {
      if (const auto taken = std::exchange(handler, nullptr)) taken(answer);
    }
    ~Once() { give(fallback); }
  };
  auto once = std::make_shared<Once>(std::move(handler), std::move(fallback));
  return [once](const Answer& answer) { once->give(answer); };
}

}  // namespace web
