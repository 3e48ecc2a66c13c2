#pragma once

#include <span>
#include <string>

#include "velkrund/dictionary/RecordData.h"

namespace velkrund {

/// The rows of one table as a section: its field lines are sorted without regard to case. The header parameter
/// "TableName" names the table.
class TEICommonTableData : public TEIRecordData {
 public:
  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;
  /// Fields: the only ones to write. Cancelled: EAbort.
  void ExportData(TEIStream& Stream) override;

  bool KeyOrder = false;  // export: rows by the table's key, where it has one

  static const TEIObjectDescriptor Descriptor;

 protected:
  const char* Content() const override { return "table data"; }

 private:
  TStringList ExportedNames(TTable& Source) const;
  static void ReadAlone(TTable& Source, const std::vector<TField*>& Columns);
};

/// Version 200: 16-bit escapes, bytes as hexadecimal pairs, dates as system texts, exact amounts, 64-bit integers.
class TEITableData final : public TEICommonTableData {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FieldToString(TField& Field, std::string& Text) override { ValueToString(Field, Text); }
  void StringToField(std::span<char> Text, TField& Field) override { StringToValue(Text, Field); }

  static const TEIObjectDescriptor Descriptor;
};

/// Version 100: 8-bit texts in the code page, bytes as such texts, dates as day numbers, 32-bit integers.
class TEIOldTableData final : public TEICommonTableData {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FieldToString(TField& Field, std::string& Text) override;
  void StringToField(std::span<char> Text, TField& Field) override { OldStringToValue(Text, Field); }

  static const TEIObjectDescriptor Descriptor;
};

}  // namespace velkrund
