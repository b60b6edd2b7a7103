#pragma once

#include <QStringList>

#include "platform/base/Error.h"
#include "platform/dropbox/HttpReply.h"

namespace dropbox {

/// The service's error unions, from the outer tag inwards: {"path", "conflict", "file"}. Empty when
/// the answer carries none.
QStringList errorTags(const HttpReply& reply);

/// The offset that the service expects next, when it refused one of an upload session.
std::optional<qint64> correctOffset(const HttpReply& reply);

/// The pause that the answer asks for, in its header or its body.
std::optional<std::chrono::seconds> requestedPause(const HttpReply& reply);

/// What an answer that is no success means, in words for the user. `subject` is the path or what
/// else the request was about.
Error routeError(const HttpReply& reply, const QString& subject);

}  // namespace dropbox
