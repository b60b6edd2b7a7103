#include "platform/pdf/internal/merge/CompactFile.h"

#include <unistd.h>

#include <QRandomGenerator>
#include <algorithm>
#include <array>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/merge/Deflate.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

/// More pack better, but a reader unpacks a whole object stream for one object.
constexpr int objectsPerStream = 500;

/// Each waits with some 100 KB.
constexpr size_t packsAtOnce = 4;

/// Object streams came with it. A later one, of the same length, is put in its place at the end.
constexpr std::string_view leastVersion = "1.5";

constexpr qint64 versionPosition = 5;

constexpr size_t rowSize = 1 + 5 + 2;

void appendBytes(std::string& row, quint64 value, int bytes) {
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
    row += static_cast<char>(value >> shift);
}

std::string identifier() {
  QByteArray bytes(16, '\0');
  QRandomGenerator::global()->generate(bytes.begin(), bytes.end());
  const QByteArray hex = "<" + bytes.toHex() + ">";
  return ("[" + hex + hex + "]").toStdString();
}

}  // namespace

CompactFile::CompactFile(const QString& path) : file_(path) {
  if (!file_.open(QIODevice::WriteOnly)) return;
  // The second line marks the file as binary for programs that look (ISO 32000-1, 7.5.2).
  write("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n");
}

int CompactFile::reserve() {
  places_.emplace_back();
  return static_cast<int>(places_.size()) - 1;
}

bool CompactFile::hasFailed() const {
  return !file_.isOpen() || file_.error() != QFileDevice::NoError;
}

void CompactFile::write(std::string_view bytes) {
  position_ += static_cast<qint64>(bytes.size());
  if (!hasFailed()) file_.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void CompactFile::writeObject(int object, std::string_view text) {
  if (container_ == 0) container_ = reserve();
  places_[static_cast<size_t>(object)] = {Kind::InStream, container_, packedCount_++};
  packedIndex_ += std::to_string(object) + ' ' + std::to_string(packed_.size()) + ' ';
  packed_ += text;
  packed_ += ' ';
  if (packedCount_ == objectsPerStream) pack();
}

int CompactFile::add(std::string_view text) {
  const int object = reserve();
  writeObject(object, text);
  return object;
}

void CompactFile::pack() {
  if (packedCount_ == 0) return;
  if (packs_.size() == packsAtOnce) writePack();
  Pack& pack = packs_.emplace_back();
  pack.container = container_;
  pack.dictionary = "<</Type/ObjStm/Filter/FlateDecode/N " + std::to_string(packedCount_) +
                    "/First " + std::to_string(packedIndex_.size()) + ">>";
  pack.data =
      std::async(std::launch::async, [text = packedIndex_ + packed_] { return deflated(text); });
  container_ = packedCount_ = 0;
  packedIndex_.clear();
  packed_.clear();
}

void CompactFile::writePack() {
  writeStream(packs_.front().container, packs_.front().dictionary, packs_.front().data.get());
  packs_.pop_front();
}

qint64 CompactFile::writeStream(int object, std::string_view dictionary, std::string_view data) {
  places_[static_cast<size_t>(object)] = {Kind::InFile, position_, 0};
  std::string head = std::to_string(object) + " 0 obj\n";
  head += dictionary.substr(0, dictionary.size() - 2);
  head += "/Length " + std::to_string(data.size()) + ">>\nstream\n";
  write(head);
  const qint64 position = position_;
  write(data);
  write("\nendstream\nendobj\n");
  return position;
}

bool CompactFile::holds(qint64 position, std::string_view bytes) {
  const qint64 end = position + static_cast<qint64>(bytes.size());
  if (hasFailed() || end > position_) return false;
  if (end > flushed_) {
    file_.flush();
    flushed_ = position_;
  }
  std::array<char, 1 << 16> piece;
  while (!bytes.empty()) {
    const size_t wanted = std::min(piece.size(), bytes.size());
    // The device only writes, its file can be read too.
    if (pread(file_.handle(), piece.data(), wanted, position) != static_cast<ssize_t>(wanted) ||
        bytes.substr(0, wanted) != std::string_view(piece.data(), wanted))
      return false;
    bytes.remove_prefix(wanted);
    position += static_cast<qint64>(wanted);
  }
  return true;
}

std::string CompactFile::crossReferenceRows() const {
  std::string rows, above(rowSize, '\0'), row;
  for (const Place& place : places_) {
    row.clear();
    appendBytes(row, static_cast<quint64>(place.kind), 1);
    appendBytes(row, static_cast<quint64>(place.position), 5);
    appendBytes(row, static_cast<quint64>(place.index), 2);
    // The PNG filter "up": most rows differ little from the one above.
    rows += '\2';
    for (size_t column = 0; column < rowSize; ++column)
      rows += static_cast<char>(row[column] - above[column]);
    std::swap(row, above);
  }
  return rows;
}

void CompactFile::writeCrossReferences(const std::string& trailer) {
  const qint64 start = position_;
  const int object = reserve();
  places_.back() = {Kind::InFile, start, 0};
  writeStream(object,
              "<</Type/XRef/Filter/FlateDecode/DecodeParms<</Predictor 12/Columns " +
                  std::to_string(rowSize) + ">>/W[1 5 2]/Size " + std::to_string(places_.size()) +
                  "/ID" + identifier() + trailer + ">>",
              deflated(crossReferenceRows()));
  write("startxref\n" + std::to_string(start) + "\n%%EOF\n");
}

MaybeError CompactFile::finish(const std::string& version, const std::string& trailer) {
  pack();
  while (!packs_.empty())
    writePack();
  writeCrossReferences(trailer);
  if (!hasFailed() && version > leastVersion && file_.seek(versionPosition))
    file_.write(version.data(), static_cast<qint64>(leastVersion.size()));
  // What waits in the buffer is not looked at by commit.
  if (!hasFailed() && file_.flush() && file_.commit()) return std::nullopt;
  return Error{
      QString::fromUtf16(errorDomain), PDFErrorWrite,
      u"The document \"%1\" cannot be written: %2"_s.arg(file_.fileName(), file_.errorString())};
}

}  // namespace pdf
