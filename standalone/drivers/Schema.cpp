#include "standalone/drivers/Schema.h"

#include <algorithm>

#include "standalone/drivers/Dialect.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::string FullName(const TTableInfo& Table) {
  if (!Table.SharesName) return DottedName(Table);
  return (Table.Schema.empty() ? std::string() : QuoteStandardName(Table.Schema) + ".") + QuoteStandardName(Table.Name);
}

std::optional<std::vector<std::string>> ExactNameParts(std::string_view Name) {
  std::vector<std::string> Result;
  for (std::size_t At = 0; At < Name.size() && Name[At] == '"';) {
    std::string& Part = Result.emplace_back();
    for (++At; At < Name.size(); ++At) {
      const bool IsQuote = Name[At] == '"';
      if (IsQuote && (At + 1 == Name.size() || Name[At + 1] != '"')) break;
      Part += Name[At += IsQuote ? 1 : 0];
    }
    if (At >= Name.size() || Part.empty()) return std::nullopt;
    if (++At == Name.size()) return Result;
    if (Name[At++] != '.') return std::nullopt;
  }
  return std::nullopt;
}

bool HasExactName(const TTableInfo& Table, std::string_view Name) {
  const auto Parts = ExactNameParts(Name);
  if (!Parts || Parts->size() > 2 || Parts->back() != Table.Name) return false;
  return Table.Schema == (Parts->size() == 2 ? Parts->front() : std::string());
}

int IndexInAnyCase(const TTableDescription& Table, std::string_view Name) {
  if (const int Exact = IndexOf(Table, Name); Exact >= 0) return Exact;
  const auto Found = std::find_if(Table.Columns.begin(), Table.Columns.end(),
                                  [&](const TColumnInfo& Column) { return SameText(Column.Name, Name); });
  return Found == Table.Columns.end() ? -1 : static_cast<int>(Found - Table.Columns.begin());
}

}  // namespace velkrund
