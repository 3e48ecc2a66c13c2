#include "standalone/drivers/BulkAppender.h"

#include <algorithm>

#include "standalone/drivers/OrderingKey.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::vector<std::size_t> KeyToUpdateBy(const TTableDescription& Table, std::span<const int> Columns,
                                       const TAppendOptions& Options) {
  const std::string Name = FullName(Table.Table);
  const std::vector<int> Key = PrimaryKey(Table);
  if (Key.empty())
    throw EDatabaseError(Format("Cannot update rows of table '%s': it has no primary key to find them by", Name),
                         {.Table = Name});
  std::vector<std::size_t> Result;
  for (const int Column : Key) {
    const auto Found = std::find(Columns.begin(), Columns.end(), Column);
    const std::string& Field = Table.Columns[static_cast<std::size_t>(Column)].Name;
    if (Found == Columns.end())
      throw EDatabaseError(Format("Cannot update the row of record %d in table '%s': the record has no value for field "
                                  "'%s' of the primary key",
                                  Options.FirstRecord, Name, Field),
                           {.Table = Name, .Column = Field, .Record = Options.FirstRecord});
    Result.push_back(static_cast<std::size_t>(Found - Columns.begin()));
  }
  return Result;
}

TErrorInfo RefusedValue(const std::string& Table, const std::string& Column, std::int64_t Record,
                        const TKvVariant& Value) {
  // Of long ones no more than is shown, and a bit so that it shows that there is more.
  constexpr std::size_t Most = 400;
  std::string Text;
  if (HasBytes(Value.Kind())) {
    const std::string_view Beginning = Value.AsText().substr(0, std::min(Value.AsText().size(), Most));
    if (Value.Kind() == TKvKind::Bytes)
      AppendHex(Text += "0x", Beginning);
    else
      RepairUtf8(Text = Beginning);
  } else {
    Value.AppendAsText(Text);
  }
  return {.Code = TErrorCode::Value,
          .Table = Table,
          .Column = Column,
          .Record = Record,
          .Value = Shortened(Value.IsNull() ? "NULL" : Text)};
}

}  // namespace velkrund
