#pragma once

#include <string>

#include "support/HttpServer.h"

namespace addon_test {

/// A page of which everything that a capture has to keep is there, at /page, and its parts.
void serveSeenPage(HttpServer& server);

/// The merged page shows, with scripts off, what the user saw.
void expectPageAsSeen(const std::string& merged, const HttpServer& server);

}  // namespace addon_test
