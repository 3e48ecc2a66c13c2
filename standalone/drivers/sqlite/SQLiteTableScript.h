#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

/// Writes the statements that make one table.
class TSQLiteTableScript {
 public:
  /// Table outlives it.
  explicit TSQLiteTableScript(const TDicTableDescription& Table);

  /// Raises EDatabaseError.
  TScript Write(const TTableParts& Parts, const std::string& Pattern);

 private:
  void WriteTable(const std::string& Pattern);
  void WriteIndex(const TDicIndex& Index);
  void WriteTrigger(const TDicTrigger& Trigger);
  void WriteCounter();

  std::string FieldText(const TDicField& Field);
  std::string TypeText(const TDicField& Field) const;
  std::string DefaultText(const TDicField& Field, const std::string& Type);
  std::string ComputedText(const TDicField& Field);
  std::string KeyText(const TDicKey& Key, bool Inline);
  std::string ReferenceText(const TDicForeignKey& Key);
  std::string CheckText(const TDicCheck& Check);
  std::string ExpressionText(const std::string& Neutral) const;
  std::string OthersValue(const std::string& Neutral, const TDicField* Computed) const;
  std::string ColumnList(const std::vector<TDicColumn>& Columns) const;

  bool IsAutomatic(const TDicField& Field) const;
  bool StandsInline(const TDicKey& Key) const;
  bool Counts(const TDicKey& Key) const;
  const TDicField* FieldOf(const TDicKey& Key) const;

  void AddFieldGaps(const TDicField& Field);
  void AddTableGaps();
  /// What is not made of the table at all, and why; empty: it can be made.
  std::pair<std::string, std::string> Hindrance() const;
  /// What: "the check 'C'", to which the table's name is added.
  void AddGap(std::string_view Kind, const std::string& What, const std::string& Why, bool Harmless = false);

  const TDicTableDescription& FTable;
  const std::string FName;
  const TDicKey* FPrimary = nullptr;  // of one field
  TScript FScript;
};

}  // namespace velkrund
