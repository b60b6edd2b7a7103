#pragma once

#include <QString>
#include <QStringList>

/// Where Chrome and the browsers of its family keep their profiles, for this user.
namespace desktop {

/// The folders of all that we know, in a fixed order, there or not.
QStringList chromiumProfileFolders();

/// Those that a running browser of this machine holds: the profile's lock names its process. A
/// browser on another folder, such as the page engine, is in none of them. Read anew at each call.
/// Any thread.
QStringList chromiumProfileFoldersInUse();

}  // namespace desktop
