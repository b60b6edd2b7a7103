#pragma once

#include <memory>

#include "platform/browsers/FrontPage.h"

namespace desktop {
class RunningApplications;
class ScriptRunner;
}  // namespace desktop

namespace browsers {

class AddOnDoor;

/// What the machine offers to reach the user's browsers. Without a door no add-on is asked.
struct BrowserAccess {
  std::shared_ptr<desktop::ScriptRunner> scriptRunner;
  std::shared_ptr<desktop::RunningApplications> applications;
  std::shared_ptr<AddOnDoor> addOnDoor;
};

/// Safari by the system's scripts; where there are none, a browser that is not running.
std::shared_ptr<FrontPage> safariFrontPage(const BrowserAccess& access);

/// Google Chrome by the system's scripts; where there are none, the browser whose add-on is
/// connected, else Chrome or one of its family over the DevTools protocol. Which of them it is is
/// decided anew at each call.
std::shared_ptr<FrontPage> chromeFrontPage(const BrowserAccess& access);

}  // namespace browsers
