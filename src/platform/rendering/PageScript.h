#pragma once

#include <QJsonArray>
#include <QJsonValue>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "platform/base/Error.h"

namespace web {
class Page;
}

namespace rendering {

/// Calls one of our page scripts (resources/scripts/rendering) in the main frame, in a world of its
/// own that the page's scripts cannot reach. Its value comes back as JSON; a promise is awaited,
/// which needs the page's scripts to be on. The world lasts as long as the document.
void callPageScript(const std::shared_ptr<web::Page>& page, const QString& function,
                    const QJsonArray& arguments, std::function<void(Result<QJsonValue>)> callback,
                    std::chrono::milliseconds timeout = std::chrono::seconds(30));

}  // namespace rendering
