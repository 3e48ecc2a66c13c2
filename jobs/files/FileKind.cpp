#include "jobs/files/FileKind.h"

#include <algorithm>

#include "jobs/files/StrayMarkers.h"
#include "velkrund/eif/UnfinishedTail.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::size_t BytesLookedAt = 4096;
constexpr char CommentMark = ';';
constexpr std::size_t TarMarkAt = 257;
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
    {"7z\xBC\xAF\x27\x1C"sv, "an archive (7z)", Unpack},
    {"\xFF\xFE\0\0"sv, "a text in UTF-32", Convert},
    {"\0\0\xFE\xFF"sv, "a text in UTF-32", Convert},
    {"\xFF\xFE"sv, "a text in UTF-16", Convert},
    {"\xFE\xFF"sv, "a text in UTF-16", Convert},
    {"PGDMP"sv, "a dump of PostgreSQL", "pg_restore reads it"},
    {"--\n-- PostgreSQL database dump"sv, "a dump of PostgreSQL", "psql reads it"},
    {"<?xml"sv, "an XML document", ""},
    {"{"sv, "a JSON document", ""},
};

/// Without a byte-order mark it shows in the zeros between the characters of ASCII.
bool IsUtf16(std::string_view Start) {
  constexpr std::size_t Least = 4, Enough = 64;
  const std::string_view Text = Start.substr(0, Enough & ~std::size_t{1});
  if (Text.size() < Least) return false;
  const auto Zeros = [&](std::size_t From) {
    for (std::size_t At = From; At < Text.size(); At += 2)
      if (Text[At] != '\0' || Text[At ^ 1] == '\0') return false;
    return true;
  };
  return Zeros(0) || Zeros(1);
}

/// Whether there is nothing but empty lines and remarks, whatever ends the lines.
bool HoldsOnlyRemarks(std::string_view Text) {
  while (!Text.empty()) {
    const std::size_t End = std::min(Text.find_first_of("\r\n"), Text.size());
    const std::size_t First = Text.find_first_not_of(" \t");
    if (First < End && Text[First] != CommentMark) return false;
    Text.remove_prefix(std::min(End + 1, Text.size()));
  }
  return true;
}

std::string_view WithoutMark(std::string_view Start) {
  if (Start.starts_with(ByteOrderMark)) Start.remove_prefix(ByteOrderMark.size());
  return Start;
}

std::optional<TForeignKind> KindOfStart(std::string_view Start) {
  const std::string_view Text = WithoutMark(Start);
  for (const auto& [Bytes, What, Advice] : KnownBeginnings)
    if (Text.starts_with(Bytes)) return TForeignKind{What, Advice};
  if (Text.substr(std::min(TarMarkAt, Text.size())).starts_with("ustar"))
    return TForeignKind{"an archive (tar)", Unpack};
  if (IsUtf16(Text)) return TForeignKind{"a text in UTF-16", Convert};
  if (HoldsOnlyRemarks(Text)) return std::nullopt;
  return TForeignKind{"not an export/import file", {}};
}

}  // namespace

std::optional<TForeignKind> ForeignKind(TEIFile& File) {
  if (File.Sections().Count() > 0) return std::nullopt;
  std::string Start(BytesLookedAt, '\0');
  File.Stream().SetPosition(0);
  Start.resize(File.Stream().Read(Start.data(), Start.size()));
  if (File.UnfinishedPosition() >= 0)
    Start.resize(std::min(Start.size(), static_cast<std::size_t>(File.UnfinishedPosition())));
  return KindOfStart(Start);
}

std::optional<TForeignKind> ForeignStart(std::string_view Start) {
  const std::string_view Text = Trim(WithoutMark(Start));
  return Text.starts_with(SectionMark) || Text.starts_with(UnfinishedMarker) ? std::nullopt : KindOfStart(Start);
}

void RefuseForeignFile(TEIFile& File, const std::string& Name) {
  if (File.Sections().Count() > 0) return;
  const TErrorInfo Info{.Code = TErrorCode::FileKind, .File = Name};
  const std::optional<TForeignKind> Kind = ForeignKind(File);
  if (Kind && !Kind->Advice.empty())
    throw EEIError(Format("'%s' is %s; %s", Name, Kind->What, Format(Kind->Advice, Name)), Info);
  RefuseHiddenSections(File, Name);
  if (Kind) throw EEIError(Format("'%s' is %s: no line of it is [SECTION]", Name, Kind->What), Info);
}

void RefuseFileWithoutSections(TEIFile& File, const std::string& Name) {
  RefuseForeignFile(File, Name);
  if (File.Sections().Count() > 0) return;
  const char* const Text = File.Stream().Size() == 0       ? "'%s' is empty: it holds no section"
                           : File.UnfinishedPosition() < 0 ? "'%s' holds no section"
                                                           : "'%s' holds no section but an unfinished one: an export "
                                                             "was killed, or is still at work";
  throw EEIError(Format(Text, Name), {.Code = TErrorCode::FileKind, .File = Name});
}

void RefuseUnfinished(const TEIFile& File, const std::string& Name) {
  if (File.UnfinishedPosition() < 0) return;
  throw EEIError(Format("'%s' ends with an unfinished section (Position:%d): an export was killed, or is still at work",
                        Name, File.UnfinishedPosition()),
                 {.Code = TErrorCode::Unfinished, .File = Name});
}

void RequireSections(TEIFile& File, const std::string& Name) {
  RefuseFileWithoutSections(File, Name);
  RefuseHiddenSections(File, Name);
}

}  // namespace velkrund
