#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/dictionary/RecordData.h"
#include "velkrund/platform/database/SelectQuery.h"

namespace velkrund {

/// The rows of a query's result as a section, to be loaded into a table that is chosen then. The header parameter
/// "Query" is the query's text. Where the query has parameters, the body begins with
///
///    [PARAMETRS]
///     <Name|Type|Value>
///     <FROM|SysDate|2024-01-31>
///
/// The field lines are those of the result in its order, behind a line "#" for the running number of the row. Names
/// that readers could not tell apart, or not read, are refused before anything is written, and so are parameters.
class TEICommonQueryData : public TEIRecordData {
 public:
  void FillParameters(TEISectionParameters& Parameters) override;
  /// Gives Query, where there is one, the text of the section.
  void Initialize(const TEISection& Section) override;
  /// Opens the query and closes it again. Cancelled: EAbort.
  void ExportData(TEIStream& Stream) override;
  /// Raises what an export would raise before it writes anything. Opens the query and closes it again.
  void CheckQuery() const;
  /// Asks for a table where TableName is empty; without one the section is passed over, and LeftAlone() is true.
  void ImportData(TEIStream& Stream) override;
  bool LeftAlone() const override { return FLeftAlone; }

  /// A text without the characters that a header line cannot hold, and back. EDicUtilError for an escape that is none.
  virtual std::string ChangeSpecialSimbols(std::string_view Text) = 0;
  virtual std::string UnChangeSpecialSimbols(std::string_view Text) = 0;

  TSelectQuery* Query = nullptr;        // borrowed; export: with the values of its parameters
  std::string QueryText;                // import: of the section
  std::vector<std::string> FieldNames;  // import: of the section, from its body
  bool SortFields = false;              // export: field lines without regard to case, as for tables; "#" stays first
  bool WithoutRowNumbers = false;       // export

  static const TEIObjectDescriptor Descriptor;

 protected:
  const char* Content() const override { return "query data"; }
  const std::string& Subject() const override;
  bool ReadUntilFields(TEIStream& Stream) override;
  bool ChooseTable(const std::vector<std::string>& Names) override;
  /// No table has the numbers of rows.
  bool MayLack(std::string_view Name) const override { return SkipMissingFields || Name == RowNumberName; }
  /// Asks a person for TableName, FieldMapping and Append. On the main thread.
  void SetupTableFieldsMapping();

  std::int64_t FTextLost = 0;  // characters of the query's text that the header could not take

 private:
  static constexpr std::string_view RowNumberName = "#";

  std::vector<std::string> ParameterLines() const;
  std::vector<TField*> ResultFields() const;

  bool FLeftAlone = false;
};

/// Version 200: the values of TEITableData, 16-bit escapes.
class TEIQueryData final : public TEICommonQueryData {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FieldToString(TField& Field, std::string& Text) override { ValueToString(Field, Text); }
  void StringToField(std::span<char> Text, TField& Field) override { StringToValue(Text, Field); }
  std::string ChangeSpecialSimbols(std::string_view Text) override;
  std::string UnChangeSpecialSimbols(std::string_view Text) override;

  static const TEIObjectDescriptor Descriptor;
};

/// Version 100: the values of TEIOldTableData, escapes of bytes in the code page.
class TEIOldQueryData final : public TEICommonQueryData {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FieldToString(TField& Field, std::string& Text) override;
  void StringToField(std::span<char> Text, TField& Field) override { OldStringToValue(Text, Field); }
  std::string ChangeSpecialSimbols(std::string_view Text) override;
  std::string UnChangeSpecialSimbols(std::string_view Text) override;

  static const TEIObjectDescriptor Descriptor;
};

}  // namespace velkrund
