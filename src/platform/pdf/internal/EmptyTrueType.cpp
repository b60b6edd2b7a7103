#include "platform/pdf/internal/EmptyTrueType.h"

#include <QtEndian>
#include <array>

namespace pdf {
namespace {

constexpr quint16 glyphCount = 2;

/// Big-endian values one after the other.
class Table {
 public:
  Table& word(int value) {
    const quint16 bytes = qToBigEndian(static_cast<quint16>(value));
    data_.append(reinterpret_cast<const char*>(&bytes), sizeof bytes);
    return *this;
  }
  Table& doubleWord(quint32 value) {
    const quint32 bytes = qToBigEndian(value);
    data_.append(reinterpret_cast<const char*>(&bytes), sizeof bytes);
    return *this;
  }
  Table& zeros(int words) {
    data_.append(QByteArray(words * 2, '\0'));
    return *this;
  }
  const QByteArray& data() const { return data_; }

 private:
  QByteArray data_;
};

struct NamedTable {
  QByteArray tag;
  QByteArray data;
};

QByteArray head() {
  Table table;
  table.doubleWord(0x00010000).doubleWord(0x00010000).doubleWord(0).doubleWord(0x5F0F3CF5);
  table.word(0).word(1000).zeros(8);              // flags, units per em, dates
  table.word(0).word(-200).word(1000).word(800);  // bounding box
  table.word(0).word(8).word(2).word(0).word(
      0);  // style, smallest size, direction, short offsets, glyph format
  return table.data();
}

QByteArray horizontalHeader() {
  Table table;
  table.doubleWord(0x00010000).word(800).word(-200).word(0).word(1000);
  return table.zeros(11).word(glyphCount).data();
}

QByteArray maximumProfile() {
  return Table().doubleWord(0x00010000).word(glyphCount).zeros(13).data();
}

QByteArray horizontalMetrics() {
  return Table().word(1000).word(0).word(1000).word(0).data();
}

quint32 checkSum(QByteArray data) {
  data.append(QByteArray((4 - data.size() % 4) % 4, '\0'));
  quint32 sum = 0;
  for (qsizetype index = 0; index < data.size(); index += 4)
    sum += qFromBigEndian<quint32>(data.constData() + index);
  return sum;
}

}  // namespace

QByteArray emptyTrueType() {
  // In the order of their tags; the glyphs' table is one padding word, to which no offset points.
  const std::array<NamedTable, 6> tables{{{"glyf", Table().zeros(2).data()},
                                          {"head", head()},
                                          {"hhea", horizontalHeader()},
                                          {"hmtx", horizontalMetrics()},
                                          {"loca", Table().zeros(glyphCount + 1).data()},
                                          {"maxp", maximumProfile()}}};
  Table directory;
  directory.doubleWord(0x00010000)
      .word(tables.size())
      .word(64)
      .word(2)
      .word(tables.size() * 16 - 64);
  QByteArray entries, contents;
  const qsizetype start = 12 + 16 * static_cast<qsizetype>(tables.size());
  for (const NamedTable& table : tables) {
    entries += table.tag + Table()
                               .doubleWord(checkSum(table.data))
                               .doubleWord(static_cast<quint32>(start + contents.size()))
                               .doubleWord(static_cast<quint32>(table.data.size()))
                               .data();
    contents += table.data + QByteArray((4 - table.data.size() % 4) % 4, '\0');
  }
  return directory.data() + entries + contents;
}

}  // namespace pdf
