#include "jobs/recreation/TableChanges.h"

#include <algorithm>
#include <optional>

#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

const TDicField* FieldOf(const TDicTableDescription& Table, const std::string& Name) {
  const auto Found = std::find_if(Table.Fields.begin(), Table.Fields.end(),
                                  [&](const TDicField& Field) { return SameText(Field.Name, Name); });
  return Found == Table.Fields.end() ? nullptr : &*Found;
}

bool HasDefault(const TDicField& Field) {
  return Field.Default || Field.Auto != TDicAutoKey::None || Field.Computed ||
         std::any_of(Field.Words.begin(), Field.Words.end(),
                     [](const auto& Words) { return Words.second.Part("Default") != nullptr; });
}

class TComparison {
 public:
  TComparison(const TDicTableDescription& Old, const TDicTableDescription& New, const TStringPairs& Mapping)
      : FOld(Old), FNew(New), FMapping(Mapping) {}

  TTableChanges Changes() {
    CompareFields();
    AddGone(
        FOld.Keys, FNew.Keys, [this](const TDicKey& Key, bool IsOld) { return ColumnsOf(Key.Columns, IsOld); },
        [](const TDicKey& Key) { return Format("the %s key", Key.Primary ? "primary" : "unique"); });
    AddGone(
        FOld.Indexes, FNew.Indexes, [](const TDicIndex& Index, bool) { return Index.Name; },
        [](const TDicIndex&) { return std::string("the index"); });
    AddGone(
        FOld.ForeignKeys, FNew.ForeignKeys,
        [this](const TDicForeignKey& Key, bool IsOld) { return TextOf(Key, IsOld); },
        [](const TDicForeignKey&) { return std::string("the foreign key"); });
    AddGone(
        FOld.Checks, FNew.Checks, [](const TDicCheck& Check, bool) { return TextOf(Check); },
        [](const TDicCheck&) { return std::string("the check"); });
    return std::move(FResult);
  }

 private:
  void CompareFields() {
    for (const TDicField& Field : FOld.Fields) {
      if (Field.Computed) continue;
      const bool IsTaken = std::any_of(FNew.Fields.begin(), FNew.Fields.end(), [&](const TDicField& Taker) {
        return !Taker.Computed && SameText(OldNameFor(FMapping, Taker.Name), Field.Name);
      });
      if (!IsTaken) FResult.LostFields.push_back(Field.Name);
    }
    for (const TDicField& Field : FNew.Fields) {
      const TDicField* const Source = FieldOf(FOld, OldNameFor(FMapping, Field.Name));
      const bool HasZone =
          Source && (Source->Type == TDicFieldType::ZonedDateTime || Source->Type == TDicFieldType::ZonedTime);
      const bool IsText = Field.Type == TDicFieldType::String || Field.Type == TDicFieldType::FixedString;
      if (HasZone && IsText) FResult.Unzoned.push_back(Field.Name);
    }
    for (const TDicField& Field : FNew.Fields)
      if (Field.NotNull && !HasDefault(Field) && !FieldOf(FOld, OldNameFor(FMapping, Field.Name)))
        FResult.Unfilled.push_back(Field.Name);
  }

  /// The name that the new table has for a column.
  std::string NewName(const std::string& Name, bool IsOld) const {
    if (!IsOld) return LowerCase(Name);
    for (const auto& [From, To] : FMapping)
      if (SameText(From, Name)) return LowerCase(To);
    return LowerCase(Name);
  }

  std::string ColumnsOf(const std::vector<TDicColumn>& Columns, bool IsOld) const {
    std::vector<std::string> Names;
    for (const TDicColumn& Column : Columns) Names.push_back(NewName(Column.Name, IsOld));
    return Joined(Names);
  }

  std::string TextOf(const TDicForeignKey& Key, bool IsOld) const {
    std::vector<std::string> Names;
    for (const TDicForeignKey::TPair& Pair : Key.Columns) Names.push_back(NewName(Pair.Column, IsOld));
    return Joined(Names) + " to " + LowerCase(Key.FullTable());
  }

  static std::string TextOf(const TDicCheck& Check) {
    if (!Check.Name.empty()) return Check.Name;
    if (Check.Text) return *Check.Text;
    return Check.Words.empty() ? std::string() : Check.Words.begin()->second.Text.value_or("");
  }

  template <typename TItem, typename TIdentify, typename TName>
  void AddGone(const std::vector<TItem>& Old, const std::vector<TItem>& New, const TIdentify& Identify,
               const TName& Name) {
    for (const TItem& Item : Old) {
      const std::string Identity = Identify(Item, true);
      const bool IsThere = std::any_of(New.begin(), New.end(),
                                       [&](const TItem& Each) { return SameText(Identify(Each, false), Identity); });
      if (!IsThere) FResult.Gone.push_back(Format("%s '%s'", Name(Item), Item.Name.empty() ? Identity : Item.Name));
    }
  }

  const TDicTableDescription& FOld;
  const TDicTableDescription& FNew;
  const TStringPairs& FMapping;
  TTableChanges FResult;
};

}  // namespace

TTableChanges ChangesOf(const TDicTableDescription& Old, const TDicTableDescription& New, const TStringPairs& Mapping) {
  return TComparison(Old, New, Mapping).Changes();
}

}  // namespace velkrund
