#include "app/CaptureOptions.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QPageSize>
#include <cmath>

#include "app/OutputName.h"
#include "settings/CVPreferences.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int usageError = 2;

tl::unexpected<Error> usage(const QString& text) {
  return failure(u"usage"_s, usageError, text);
}

struct OptionText {
  const char* name;
  const char* value;
  const char* description;
};

/// Every option with a value or a flag, as the parser and the help show it.
constexpr OptionText optionTexts[] = {
    {"output", "PATH",
     "Folder for the files (default: the current one), or the file for a single source. Without "
     "--format its extension says the format; where the extension is missing or another format's, "
     "the right one is added."},
    {"format", "FORMAT", "PDF (default), BMP, GIF, JPEG, JP2, PNG or TIFF."},
    {"mode", "MODE", "Vector (default) or Image (default for Printer); for PDF."},
    {"width", "POINTS", "Width of the page's layout (default: 1024)."},
    {"scale", "FACTOR", "Device pixels per point in pictures (default: 1)."},
    {"compression", "FACTOR", "JPEG and JP2: 0.0 (smallest file) to 1.0 (best picture, default)."},
    {"destination", "NAME", "Disk (default), Printer, E-Mail, Evernote or DropBox."},
    {"multipage", "OUT.pdf", "Join all pages, paginated, in one PDF."},
    {"title-domain", nullptr, "Put the site's domain in front of the title."},
    {"paginate", nullptr, "PDF on pages of the paper's size instead of one tall page."},
    {"margin", "POINTS", "Margin of the pages (default: 50)."},
    {"orientation", "NAME", "Portrait (default) or Landscape."},
    {"headers", nullptr, "Title, date, address and page number in the margins."},
    {"font", "NAME,SIZE", "Font of headers and footers, for instance \"Serif,10\"."},
    {"notes", "TEXT", "A text for the foot of every page."},
    {"paper", "SIZE", "A4, Letter, another paper's name, or WIDTHxHEIGHT in points."},
    {"json", nullptr, "One JSON line per source."},
    {"quiet", nullptr, "Only errors."},
    {"verbose", nullptr, "Diagnostics on standard error."},
};

constexpr qsizetype helpIndent = 26;
constexpr qsizetype helpWidth = 100;

/// The text in lines, all but the first indented to the column of the help's texts.
QString inHelpColumn(const QString& text) {
  QString lines;
  qsizetype column = helpIndent;
  for (const QString& word : text.split(u' ')) {
    const bool fits = column + word.size() < helpWidth;
    if (!lines.isEmpty()) lines += fits ? u" "_s : u'\n' + QString(helpIndent, u' ');
    if (!fits) column = helpIndent;
    column += word.size() + 1;
    lines += word;
  }
  return lines + u'\n';
}

QString optionName(const char* name) {
  return QString::fromLatin1(name);
}

void addOptions(QCommandLineParser& parser) {
  for (const OptionText& text : optionTexts) {
    QStringList names{optionName(text.name)};
    if (names.first() == u"output"_s) names.prepend(u"o"_s);
    QCommandLineOption option(names, QString::fromLatin1(text.description));
    if (text.value) option.setValueName(QString::fromLatin1(text.value));
    parser.addOption(option);
  }
  parser.addOption({{u"h"_s, u"help"_s}, u"This text."_s});
}

/// The entry of `list` that is `text` but for capitals.
std::optional<QString> oneOf(const QStringList& list, const QString& text) {
  for (const QString& candidate : list) {
    if (candidate.compare(text, Qt::CaseInsensitive) == 0) return candidate;
  }
  return std::nullopt;
}

/// Reads the parsed options, one after the other; the first problem is kept.
class Reader {
 public:
  explicit Reader(const QCommandLineParser& parser) : parser_(parser) {}

  bool flag(const char* name) const { return parser_.isSet(optionName(name)); }

  std::optional<QString> text(const char* name) const {
    if (!flag(name)) return std::nullopt;
    return parser_.value(optionName(name));
  }

  template <class Text>
  void choice(const char* name, const QStringList& choices, Text& value) {
    const auto given = text(name);
    if (!given) return;
    const auto chosen = oneOf(choices, *given);
    if (!chosen) {
      fail(u"“%1” is not a value of --%2; use one of %3."_s.arg(*given, optionName(name),
                                                                choices.join(u", "_s)));
    }
    if (chosen) value = *chosen;
  }

  template <class Number>
  void number(const char* name, double lowest, double highest, Number& value) {
    const auto given = text(name);
    if (!given) return;
    bool valid = false;
    const double parsed = given->toDouble(&valid);
    const bool whole = !std::is_integral_v<Number> || parsed == std::floor(parsed);
    if (!valid || !whole || !(parsed >= lowest && parsed <= highest)) {
      const QString kind = std::is_integral_v<Number> ? u"whole number"_s : u"number"_s;
      return fail(u"--%1 takes a %2 from %3 to %4, not “%5”."_s.arg(optionName(name), kind)
                      .arg(lowest)
                      .arg(highest)
                      .arg(*given));
    }
    value = static_cast<Number>(parsed);
  }

  void fail(const QString& problem) {
    if (!problem_) problem_ = problem;
  }
  const std::optional<QString>& problem() const { return problem_; }

 private:
  const QCommandLineParser& parser_;
  std::optional<QString> problem_;
};

void readFormat(Reader& reader, CaptureOptions& options) {
  reader.choice("format", CVPreferences::getConversionFormats(), options.format);
  reader.choice("mode", CVPreferences::getConversionModes(), options.mode);
  const std::optional<QString> file = options.outputFile();
  if (reader.flag("format") || !file) return;
  // A file name says what is wanted as well as --format does.
  options.format = OutputName::format(*file).value_or(options.format);
}

void readFont(Reader& reader, CaptureOptions& options) {
  const auto given = reader.text("font");
  if (!given) return;
  const qsizetype comma = given->lastIndexOf(u',');
  const double size = given->sliced(comma + 1).toDouble();
  if (comma <= 0 || !(size >= 1 && size <= 200)) {
    return reader.fail(u"--font takes a name and a size, as in \"Serif,10\"."_s);
  }
  options.font = Font{given->first(comma).trimmed(), size};
}

std::optional<QSizeF> paperWithName(const QString& name) {
  for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
    const auto page = static_cast<QPageSize::PageSizeId>(id);
    if (QPageSize::key(page).compare(name, Qt::CaseInsensitive) == 0) {
      return QPageSize::size(page, QPageSize::Point);
    }
  }
  return std::nullopt;
}

std::optional<QSizeF> paperWithMeasures(const QString& text) {
  const QStringList sides = text.toLower().split(u'x');
  if (sides.size() != 2) return std::nullopt;
  const QSizeF size(sides[0].toDouble(), sides[1].toDouble());
  const bool usable =
      size.width() >= 72 && size.height() >= 72 && size.width() <= 14400 && size.height() <= 14400;
  return usable ? std::optional(size) : std::nullopt;
}

void readPagination(Reader& reader, CaptureOptions& options) {
  options.paginate = reader.flag("paginate");
  reader.number("margin", 0, 1000, options.margin);
  QString orientation = u"Portrait"_s;
  reader.choice("orientation", {u"Portrait"_s, u"Landscape"_s}, orientation);
  options.orientation = orientation == u"Landscape"_s ? 1 : 0;
  options.headers = reader.flag("headers");
  readFont(reader, options);
  options.notes = reader.text("notes");
  const auto paper = reader.text("paper");
  if (!paper) return;
  options.paper = paperWithName(*paper);
  if (!options.paper) options.paper = paperWithMeasures(*paper);
  if (!options.paper) {
    reader.fail(
        u"“%1” is no paper; use A4, Letter or WIDTHxHEIGHT in points (72 to 14400)."_s.arg(*paper));
  }
}

QStringList destinations() {
  QStringList names = CVPreferences::getDestinations();
  // What is on the clipboard ends with the program that put it there.
  names.removeAll(u"Pasteboard"_s);
  return names;
}

void readDestination(Reader& reader, CaptureOptions& options) {
  reader.choice("destination", destinations(), options.destination);
  options.multipage = reader.text("multipage");
  if (options.multipage && options.output) {
    reader.fail(u"--multipage names the file; leave --output out."_s);
  }
  if (options.multipage && options.destination != u"Disk"_s) {
    reader.fail(u"--multipage writes to the disk; leave --destination out."_s);
  }
  if (options.multipage && options.format != u"PDF"_s) {
    reader.fail(u"--multipage makes a PDF; leave --format out."_s);
  }
  if (options.destination == u"Printer"_s && options.format != u"PDF"_s) {
    reader.fail(
        u"--destination Printer prints the pages of a PDF; %1 has none."_s.arg(options.format));
  }
  if (options.sources.count(u"-"_s) > 1) {
    reader.fail(u"Standard input carries one request; name \"-\" once."_s);
  }
}

void readReport(const Reader& reader, CaptureOptions& options) {
  if (reader.flag("json")) options.report = ReportForm::JsonLines;
  if (reader.flag("quiet")) options.verbosity = Verbosity::Quiet;
  if (reader.flag("verbose")) options.verbosity = Verbosity::Verbose;
}

}  // namespace

std::optional<QString> CaptureOptions::outputFile() const {
  if (!output || sources.size() != 1) return std::nullopt;
  const QFileInfo place(*output);
  const bool isFile = !place.isDir() && !output->endsWith(u'/') && !place.suffix().isEmpty();
  return isFile ? output : std::nullopt;
}

Result<CaptureOptions::Parsed> CaptureOptions::parse(const QStringList& arguments) {
  QCommandLineParser parser;
  addOptions(parser);
  if (!parser.parse(QStringList{u"corvalis capture"_s} + arguments))
    return usage(parser.errorText());
  Parsed parsed;
  parsed.helpWanted = parser.isSet(u"help"_s);
  if (parsed.helpWanted) return parsed;

  CaptureOptions& options = parsed.options;
  Reader reader(parser);
  options.sources = parser.positionalArguments();
  options.output = reader.text("output");
  readFormat(reader, options);
  reader.number("width", 1, 16384, options.width);
  reader.number("scale", 0.1, 8, options.scale);
  reader.number("compression", 0, 1, options.compression);
  options.prependDomain = reader.flag("title-domain");
  readPagination(reader, options);
  readDestination(reader, options);
  readReport(reader, options);
  if (options.sources.isEmpty()) reader.fail(u"Name at least one page to capture."_s);
  if (options.paginate && options.format != u"PDF"_s) {
    reader.fail(u"--paginate makes a PDF; %1 has no pages."_s.arg(options.format));
  }
  if (reader.problem()) return usage(*reader.problem());
  return parsed;
}

QString CaptureOptions::help() {
  QString text =
      u"Usage: corvalis capture [options] SOURCE...\n\n"
      "Turns web pages into files. A SOURCE is an http, https or file address, or the path of an\n"
      "HTML file; \"-\" reads a capture request (docs/capture-protocol.md) from standard input.\n\n"
      "Options:\n"_s;
  for (const OptionText& option : optionTexts) {
    QString name = u"  --"_s + optionName(option.name);
    if (name == u"  --output"_s) name = u"  -o, --output"_s;
    if (option.value) name += u' ' + QString::fromLatin1(option.value);
    text += name.leftJustified(helpIndent) + inHelpColumn(QString::fromLatin1(option.description));
  }
  text +=
      u"  -h, --help              This text.\n"
      "      --version           The version of the program.\n\n"
      "Exit status: 0 all pages done, 1 some failed, 2 wrong usage.\n"_s;
  return text;
}
