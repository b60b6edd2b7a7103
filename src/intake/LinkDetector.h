#pragma once

#include <QList>
#include <QStringView>
#include <QUrl>

/// Finds the web addresses in a text: with "http://" or "https://", and without a scheme when the
/// word is clearly a host name. Mail addresses and addresses of other schemes, "file:" above all,
/// are passed over. Time is linear in the text.
class LinkDetector {
 public:
  /// In the order of the text; an address that stands there twice is found twice.
  static QList<QUrl> linksIn(QStringView text);

 private:
  explicit LinkDetector(QStringView text) : text_(text) {}

  void run();
  qsizetype endOfWord(qsizetype start) const;
  qsizetype takeWithScheme(qsizetype start, qsizetype end);
  qsizetype takeBare(qsizetype start, qsizetype end);
  bool mayBeginAddress(qsizetype position) const;
  bool isAddressWithoutScheme(QStringView word, qsizetype end, qsizetype hostEnd) const;
  qsizetype endOfPort(qsizetype position) const;
  QString addressText(qsizetype start, qsizetype end) const;
  void add(const QString& address);

  QChar at(qsizetype position) const;

  QStringView text_;
  QList<QUrl> found_;
};
