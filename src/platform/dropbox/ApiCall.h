#pragma once

#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/dropbox/HttpReply.h"
#include "platform/dropbox/RetriedPost.h"

namespace dropbox {

class Connection;

/// Sends a request in the account's name: with its token, renewed before it expires or once when
/// the service finds it expired, and with the retries of the connection's policy. The completion
/// gets a successful answer or one of status 409, whose meaning is the route's; anything else is an
/// error.
void callApi(std::shared_ptr<Connection> connection, PostRequest request,
             std::function<void(Result<HttpReply>)> completion);

}  // namespace dropbox
