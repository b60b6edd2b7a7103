#pragma once

#include <QStringView>

/// Which words of a text are host names. Written without a scheme, "example.co.uk" is one, while
/// "e.g", "1.2.3" and "notes.md" are not.
namespace PublicHost {

/// Letters, digits, hyphens, dots and underscores: what a word that may be a host is made of.
bool isHostCharacter(QChar character);

/// How sure a word's surroundings make it that an address is meant.
enum class Surroundings {
  Plain,             ///< the word stands alone
  PortOrPathFollows  ///< it is followed by a port or a path
};

/// Whether the word is a host name below a suffix of the Public Suffix List (publicsuffix.org), or
/// begins with "www.". Words that are more often names of files, versions or the seam of two
/// sentences are host names only when a port or path follows.
bool isHostName(QStringView word, Surroundings surroundings);

/// Four numbers of 0 to 255.
bool isIPv4Address(QStringView word);

}  // namespace PublicHost
