#include "standalone/dictionary/DescriptionCheck.h"

#include <set>
#include <string>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

class TCheck {
 public:
  explicit TCheck(const TDicTableDescription& Table) : FTable(Table) {
    for (const TDicField& Field : Table.Fields)
      if (!FFields.insert(LowerCase(Field.Name)).second) Refuse(Format("two fields are called '%s'", Field.Name));
  }

  void Field(const std::string& Name, const std::string& Of) const {
    if (!FFields.contains(LowerCase(Name))) Refuse(Format("%s names the field '%s', which is none", Of, Name));
  }
  void Columns(const std::vector<TDicColumn>& Columns, const std::string& Of) const {
    if (Columns.empty()) Refuse(Of + " names no field");
    for (const TDicColumn& Column : Columns) {
      if (Column.Expression)
        Expression(Column.Name, Of);
      else
        Field(Column.Name, Of);
    }
  }
  /// Columns alone stand between double quotes there.
  void Expression(const std::string& Text, const std::string& Of) const {
    for (std::size_t At = 0; At < Text.size(); ++At) {
      const char Quote = Text[At];
      if (Quote != '"' && Quote != '\'') continue;
      std::string Name;
      for (++At; At < Text.size(); ++At) {
        if (Text[At] == Quote && (At + 1 == Text.size() || Text[At + 1] != Quote)) break;
        if (Text[At] == Quote) ++At;
        Name += Text[At];
      }
      if (Quote == '"') Field(Name, Of);
    }
  }

 private:
  [[noreturn]] void Refuse(const std::string& Why) const {
    throw EDatabaseError(Format("The structure of table '%s' is none: %s", FTable.FullName(), Why),
                         {.Code = TErrorCode::Structure, .Table = FTable.FullName()});
  }

  const TDicTableDescription& FTable;
  std::set<std::string> FFields;
};

}  // namespace

void CheckDescription(const TDicTableDescription& Table) {
  const TCheck Check(Table);
  for (const TDicField& Field : Table.Fields)
    if (Field.Computed) Check.Expression(*Field.Computed, Format("the computed field '%s'", Field.Name));
  for (const TDicKey& Key : Table.Keys) Check.Columns(Key.Columns, Key.Primary ? "the primary key" : "a unique key");
  for (const TDicIndex& Index : Table.Indexes)
    if (Index.Words.empty()) Check.Columns(Index.Columns, Format("the index '%s'", Index.Name));
  for (const TDicForeignKey& Key : Table.ForeignKeys)
    for (const TDicForeignKey::TPair& Pair : Key.Columns)
      Check.Field(Pair.Column, Format("the reference to table '%s'", Key.Table));
  for (const TDicCheck& One : Table.Checks)
    if (One.Text) Check.Expression(*One.Text, Format("the check '%s'", One.Name));
}

}  // namespace velkrund
