#include "standalone/localization/TextWriter.h"

#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// What is held back at most: so much that going from one table to the next no longer shows.
constexpr std::size_t MostRows = 1'000;
constexpr std::size_t MostBytes = std::size_t{256} << 10U;

TTableDescription Described(TConnection& Connection, const char* Name) {
  TTableInfo Table;
  Table.Name = Name;
  return Connection.Schema().Describe(Table);
}

std::vector<int> AllColumns(const TTableDescription& Table) {
  std::vector<int> Result(Table.Columns.size());
  for (std::size_t I = 0; I < Result.size(); ++I) Result[I] = static_cast<int>(I);
  return Result;
}

}  // namespace

void TTextWriter::AddString(std::int64_t Number, std::string_view StringID, std::string_view Name) {
  const std::size_t Start = FStringBytes.size();
  FStringBytes += LowerCase(StringID);
  const std::size_t KeySize = FStringBytes.size() - Start;
  FStringBytes += Name;
  FStrings.push_back({Number, KeySize, Name.size()});
}

void TTextWriter::Put(std::int64_t Number, std::string_view Text, bool IsThere, bool IsHeld) {
  if (!IsHeld) FToHold.push_back(Number);
  FTextBytes += Text;
  FTexts.push_back({Number, Text.size(), IsThere});
  if (FTexts.size() >= MostRows || FTextBytes.size() >= MostBytes) Flush();
}

void TTextWriter::Flush() {
  HoldStrings();
  FlushStrings();
  FlushTexts(Added);
  FlushTexts(Replaced);
  FTexts.clear();
  FTextBytes.clear();
}

void TTextWriter::Finish() {
  Flush();
  for (std::unique_ptr<TBulkAppender>& Appender : FAppenders) {
    if (Appender) Appender->Finish();
    Appender.reset();
  }
}

/// A string that somebody has deleted since it was found would lose its new text.
void TTextWriter::HoldStrings() {
  const std::string_view Lock = FTables.RowLock(TRowLock::Stay);
  if (!FToHold.empty() && !Lock.empty()) {
    const std::optional<std::int64_t> Found = FTables.QueryNumber(Format(
        "SELECT count(*) FROM (SELECT number FROM velkrund_strings WHERE number IN (%s)%s) s", ListOf(FToHold), Lock));
    if (Found != static_cast<std::int64_t>(FToHold.size()))
      throw EDatabaseError(
          Format("Cannot write texts of section '%s': another connection has deleted strings of it at the same moment. "
                 "Try again",
                 FSectionID),
          {.Code = TErrorCode::DatabaseBusy});
  }
  FToHold.clear();
}

void TTextWriter::FlushStrings() {
  if (FStrings.empty()) return;
  TBulkAppender& Appender = Open(Strings);
  TKvVariant Number, Key, Name;
  const TKvVariant SectionKey = TextCell(FSectionKey), SectionID = TextCell(FSectionID);
  const TKvVariant* const Row[] = {&Number, &Key, &SectionKey, &SectionID, &Name};
  std::string_view Left = FStringBytes;
  for (const TString& String : FStrings) {
    Number.SetInteger(String.Number);
    Key.BorrowText(Left.substr(0, String.KeySize));
    Name.BorrowText(Left.substr(String.KeySize, String.NameSize));
    Appender.Append(Row);
    Left.remove_prefix(String.KeySize + String.NameSize);
  }
  FStrings.clear();
  FStringBytes.clear();
}

void TTextWriter::FlushTexts(TAppender Which) {
  TBulkAppender* Appender = nullptr;
  TKvVariant Number, Text;
  const TKvVariant Language = NumberCell(FLanguage);
  const TKvVariant* const Row[] = {&Number, &Language, &Text};
  std::string_view Left = FTextBytes;
  for (const TText& Held : FTexts) {
    const std::string_view Bytes = Left.substr(0, Held.Size);
    Left.remove_prefix(Held.Size);
    if (Held.IsThere != (Which == Replaced)) continue;
    if (!Appender) Appender = &Open(Which);
    Number.SetInteger(Held.Number);
    Text.BorrowText(Bytes);
    Appender->Append(Row);
  }
}

TBulkAppender& TTextWriter::Open(TAppender Which) {
  std::unique_ptr<TBulkAppender>& Appender = FAppenders[Which];
  if (Appender) return *Appender;
  TConnection& Connection = FTables.Connection();
  const TTableDescription Table = Described(Connection, Which == Strings ? "velkrund_strings" : "velkrund_texts");
  TAppendOptions Options;
  Options.UpdateByKey = Which == Replaced;
  Appender = Connection.Rows().OpenAppender(Table, AllColumns(Table), Options);
  return *Appender;
}

}  // namespace velkrund
