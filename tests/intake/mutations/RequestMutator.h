#pragma once

#include <QString>
#include <QStringList>
#include <random>

/// Makes broken capture requests out of good ones: bits of every layer (markers, percent escapes,
/// Base64, markup) are cut, doubled, swapped and overwritten before and after encoding. The same
/// seed gives the same requests.
class RequestMutator {
 public:
  explicit RequestMutator(std::uint64_t seed);

  QString next();

 private:
  std::size_t below(std::size_t count);
  bool oneIn(std::size_t count);
  QString markup();
  QString encodedPart();
  QString frames();
  QString data();
  void mutate(QString& text);
  qsizetype position(const QString& text);

  std::mt19937_64 random_;
};
