#include "velkrund/platform/ormtools/ErrorInfo.h"

#include <iterator>
#include <system_error>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// In the order of the codes.
constexpr std::string_view CodeWords[] = {
    "other",
    "cancelled",
    "unanswered",
    "settings",
    "configuration",
    "file-missing",
    "file-access",
    "file-in-use",
    "file-open",
    "file-read",
    "file-write",
    "disk-full",
    "pipe-closed",
    "file-kind",
    "file-structure",
    "line-feeds",
    "unfinished",
    "section-missing",
    "record",
    "value",
    "unreadable-value",
    "text",
    "loss",
    "database-name",
    "database-missing",
    "database-read-only",
    "database-busy",
    "database-locks",
    "database-access",
    "connection",
    "database",
    "table-missing",
    "procedure-missing",
    "field-missing",
    "repeated-table",
    "row-refused",
    "trigger-refused",
    "references",
    "structure-missing",
    "language-missing",
    "blob-table",
    "structure",
    "no-words",
    "catalogue",
    "context-missing",
    "fuzzy-entry",
};

template <typename T>
void FillOne(T& Known, const T& Other) {
  if (Known == T()) Known = Other;
}

}  // namespace

std::string_view ErrorCodeText(TErrorCode Code) {
  static_assert(std::size(CodeWords) == static_cast<std::size_t>(TErrorCode::FuzzyEntry) + 1);
  const auto Place = static_cast<std::size_t>(Code);
  return CodeWords[Place < std::size(CodeWords) ? Place : 0];
}

TErrorCode FileErrorCode(int Error) {
  switch (static_cast<std::errc>(Error)) {
    case std::errc::no_such_file_or_directory:
    case std::errc::not_a_directory:
      return TErrorCode::FileMissing;
    case std::errc::permission_denied:
    case std::errc::operation_not_permitted:
    case std::errc::read_only_file_system:
      return TErrorCode::FileAccess;
    case std::errc::no_space_on_device:
    case std::errc::file_too_large:
      return TErrorCode::DiskFull;
    case std::errc::broken_pipe:
      return TErrorCode::PipeClosed;
    default:
      return TErrorCode::Other;
  }
}

void TErrorInfo::Fill(const TErrorInfo& Other) {
  FillOne(Code, Other.Code);
  // A line is one of its file.
  if (File.empty() || File == Other.File) FillOne(Line, Other.Line);
  FillOne(File, Other.File);
  FillOne(Section, Other.Section);
  FillOne(Table, Other.Table);
  FillOne(Column, Other.Column);
  FillOne(Record, Other.Record);
  FillOne(Value, Other.Value);
  FillOne(Structure, Other.Structure);
  FillOne(Node, Other.Node);
  FillOne(Database, Other.Database);
  FillOne(EngineCode, Other.EngineCode);
  FillOne(Statement, Other.Statement);
}

std::string Shortened(std::string_view Text, std::int64_t MaxUnits) {
  const std::string_view Shown = Text.substr(0, Utf16Prefix(Text, static_cast<std::size_t>(MaxUnits)));
  return std::string(Shown) + (Shown.size() < Text.size() ? "..." : "");
}

}  // namespace velkrund
