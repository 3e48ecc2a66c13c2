#include "jobs/files/FileKind.h"

#include "jobs/files/StrayMarkers.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::size_t BytesLookedAt = 4096;
constexpr char CommentMark = ';';
constexpr std::string_view SectionMark = "[SECTION]";

struct TKnownBeginning {
  std::string_view Bytes;
  const char* What;
  const char* Advice;
};

constexpr const char* Unpack = "unpack it first";
constexpr const char* Convert = "convert it to UTF-8 with carriage returns and line feeds";

constexpr TKnownBeginning KnownBeginnings[] = {
    {"SQLite format 3\0"sv, "an SQLite database", "as a database its address is sqlite:%s"},
    {"\x1F\x8B"sv, "compressed (gzip)", Unpack},
    {"BZh"sv, "compressed (bzip2)", Unpack},
    {"\xFD"
     "7zXZ\0"sv,
     "compressed (xz)", Unpack},
    {"\x28\xB5\x2F\xFD"sv, "compressed (zstd)", Unpack},
    {"PK\x03\x04"sv, "an archive (zip)", Unpack},
    {"\xFF\xFE"sv, "a text in UTF-16", Convert},
    {"\xFE\xFF"sv, "a text in UTF-16", Convert},
    {"PGDMP"sv, "a dump of PostgreSQL", "pg_restore reads it"},
};

/// Without the mark and the blanks before the first word.
std::string_view PlainText(std::string_view Start) {
  if (Start.starts_with(ByteOrderMark)) Start.remove_prefix(ByteOrderMark.size());
  return Trim(Start);
}

std::optional<TForeignKind> KindOfStart(std::string_view Start) {
  for (const auto& [Bytes, What, Advice] : KnownBeginnings)
    if (Start.starts_with(Bytes)) return TForeignKind{What, Advice};
  const std::string_view Text = PlainText(Start);
  if (Text.empty() || Text.front() == CommentMark) return std::nullopt;
  return TForeignKind{"not an export/import file", {}};
}

}  // namespace

std::optional<TForeignKind> ForeignKind(TEIFile& File) {
  if (File.Sections().Count() > 0) return std::nullopt;
  std::string Start(BytesLookedAt, '\0');
  File.Stream().SetPosition(0);
  Start.resize(File.Stream().Read(Start.data(), Start.size()));
  return KindOfStart(Start);
}

std::optional<TForeignKind> ForeignStart(std::string_view Start) {
  return PlainText(Start).starts_with(SectionMark) ? std::nullopt : KindOfStart(Start);
}

void RefuseForeignFile(TEIFile& File, const std::string& Name) {
  if (File.Sections().Count() > 0) return;
  const TErrorInfo Info{.Code = TErrorCode::FileKind, .File = Name};
  const std::optional<TForeignKind> Kind = ForeignKind(File);
  if (Kind && !Kind->Advice.empty())
    throw EEIError(Format("'%s' is %s; %s", Name, Kind->What, Format(Kind->Advice, Name)), Info);
  if (const std::vector<std::string> Hidden = FindStrayMarkers(File).Hidden; !Hidden.empty())
    throw EEIError(Format("'%s' holds no section: %s", Name, Joined(Hidden)), Info);
  if (Kind) throw EEIError(Format("'%s' is %s: no line of it is [SECTION]", Name, Kind->What), Info);
}

void RequireSections(TEIFile& File, const std::string& Name) {
  RefuseForeignFile(File, Name);
  if (File.Sections().Count() == 0)
    throw EEIError(Format("'%s' is empty: it holds no section", Name), {.Code = TErrorCode::FileKind, .File = Name});
}

}  // namespace velkrund
