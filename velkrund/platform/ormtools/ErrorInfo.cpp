#include "velkrund/platform/ormtools/ErrorInfo.h"

#include <system_error>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

template <typename T>
void FillOne(T& Known, const T& Other) {
  if (Known == T()) Known = Other;
}

}  // namespace

std::string_view ErrorCodeText(TErrorCode Code) {
  switch (Code) {
    case TErrorCode::Cancelled:
      return "cancelled";
    case TErrorCode::Unanswered:
      return "unanswered";
    case TErrorCode::Settings:
      return "settings";
    case TErrorCode::Configuration:
      return "configuration";
    case TErrorCode::FileMissing:
      return "file-missing";
    case TErrorCode::FileAccess:
      return "file-access";
    case TErrorCode::FileInUse:
      return "file-in-use";
    case TErrorCode::FileOpen:
      return "file-open";
    case TErrorCode::FileRead:
      return "file-read";
    case TErrorCode::FileWrite:
      return "file-write";
    case TErrorCode::DiskFull:
      return "disk-full";
    case TErrorCode::PipeClosed:
      return "pipe-closed";
    case TErrorCode::FileKind:
      return "file-kind";
    case TErrorCode::FileStructure:
      return "file-structure";
    case TErrorCode::SectionMissing:
      return "section-missing";
    case TErrorCode::Record:
      return "record";
    case TErrorCode::Value:
      return "value";
    case TErrorCode::UnreadableValue:
      return "unreadable-value";
    case TErrorCode::Text:
      return "text";
    case TErrorCode::DatabaseName:
      return "database-name";
    case TErrorCode::DatabaseMissing:
      return "database-missing";
    case TErrorCode::DatabaseReadOnly:
      return "database-read-only";
    case TErrorCode::DatabaseBusy:
      return "database-busy";
    case TErrorCode::DatabaseAccess:
      return "database-access";
    case TErrorCode::Connection:
      return "connection";
    case TErrorCode::Database:
      return "database";
    case TErrorCode::TableMissing:
      return "table-missing";
    case TErrorCode::FieldMissing:
      return "field-missing";
    case TErrorCode::RowRefused:
      return "row-refused";
    case TErrorCode::References:
      return "references";
    case TErrorCode::StructureMissing:
      return "structure-missing";
    case TErrorCode::Structure:
      return "structure";
    case TErrorCode::Other:
      break;
  }
  return "other";
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
  FillOne(Database, Other.Database);
  FillOne(EngineCode, Other.EngineCode);
  FillOne(Statement, Other.Statement);
}

std::string Shortened(std::string_view Text, std::int64_t MaxUnits) {
  const std::string_view Shown = Text.substr(0, Utf16Prefix(Text, static_cast<std::size_t>(MaxUnits)));
  return std::string(Shown) + (Shown.size() < Text.size() ? "..." : "");
}

}  // namespace velkrund
