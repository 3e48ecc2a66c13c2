#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/platform/database/Tables.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// What a run did, for reports.
struct TTableDataReport {
  std::int64_t RowCount = 0;
  std::int64_t DeletedRows = 0;            // that were in the table before an import
  std::int64_t NullsMade = 0;              // values that could not be read, where that is no error
  std::int64_t ValuesChanged = 0;          // values that come back as others, where that is no error
  std::vector<std::string> SkippedFields;  // fields of the file that the table lacks
  bool InKeyOrder = false;                 // the exported rows
};

/// The rows of one table as a section. The header parameter "TableName" names the table; the body is
///
///    [FIELDS]
///     ID                      one field name a line, sorted without regard to case
///     NAME
///    [RECORDS]
///     <17|'Smith#007CSons'>   one record a row, the values in the order of the field lines
///
/// A record text of more than 99990 UTF-16 units is cut into pieces of that length: every piece but the last is
/// followed by "@", every piece but the first is preceded by "@" on a line of its own. Readers trim every line. The
/// records end where the section ends.
///
/// The two concrete classes differ in the text of single values. Errors are EDicUtilError; those of the table and of
/// number texts pass through. Used for one export or one import.
class TEICommonTableData : public TEIObject {
 public:
  /// Settings are taken from the installed application manager.
  TEICommonTableData();

  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;
  /// Cancelled: EAbort.
  void ExportData(TEIStream& Stream) override;
  /// In one transaction; cancelled or failed, the table is as it was before. Rows of an SQL table that refer to
  /// nothing, where foreign keys say they should, are an error: EDatabaseError. Cancelled: Stopped() is true.
  void ImportData(TEIStream& Stream) override;

  /// Reads a body up to its records; returns the names of its fields in their order. For a look into a file.
  std::vector<std::string> ReadFieldNames(TEIStream& Stream);

  /// Appends the text of the field's value in the current row.
  virtual void FieldToString(TField& Field, std::string& Text) = 0;
  /// Reads a value text, never empty, into the field's place in the record buffer. The text is decoded in place: its
  /// content is lost, and the field may refer to it until the record is appended.
  virtual void StringToField(std::span<char> Text, TField& Field) = 0;

  bool Append =
      false;  // import: keep the rows that are there; otherwise an SQL table is emptied. Loading says it itself
  std::string TableName;
  TTable* Table = nullptr;                 // borrowed, opened by the caller; null: TableName is opened for the run
  bool KeyOrder = false;                   // export: rows by the table's key, where it has one
  const TStringList* Fields = nullptr;     // borrowed; the fields to export, or the only ones to import; null: all
  bool SkipMissingFields = true;           // import: fields that the table lacks are passed over; otherwise an error
  bool StrictValues;                       // import: an unparseable value is an error; otherwise it becomes NULL
  TTableDataReport* Report = &FOwnReport;  // borrowed; where the run is to be reported

  static const TEIObjectDescriptor Descriptor;

 protected:
  /// To be called where the code page lacks characters of a text in the current record; counts them, and raises an
  /// error that names field and record where the run is strict about text.
  void TextLost(const TField& Field, std::int64_t Count);
  /// To be called where the version has no text for a value in the current record that brings it back; counts it, and
  /// raises an error as TextLost does. What: what would become of it.
  void ValueLost(const TField& Field, const TKvVariant& Value, std::string_view What);
  /// A value that cannot be read: raises Message, or makes the field NULL where values are not strict.
  void Unparseable(TField& Field, const std::string& Message);
  /// Whether the section is written in the code page.
  bool WritesAnsi() const { return FWritesAnsi; }
  /// Whether characters that cannot be kept are errors: as the stream has it, outside of a run as the application had.
  bool StrictText() const { return FStrictText; }

 private:
  struct TImportField;

  void BeginRun(TEIStream& Stream);
  TTable& TakeTable(std::unique_ptr<TTable>& Owned, std::string_view Purpose);
  TStringList ExportedNames(TTable& Source) const;
  void AppendValue(TField& Column);
  void ExportRecords(TTable& Source, const std::vector<TField*>& Columns, TEIStream& Stream);
  std::string_view NextLine(TEIStream& Stream);
  bool ReadUntil(TEIStream& Stream, std::string_view Marker, std::vector<std::string>* Lines);
  std::vector<TImportField> ResolveFields(TTable& Target, const std::vector<std::string>& Names);
  bool Selected(std::string_view Name) const { return !Fields || Fields->IndexOf(Name) >= 0; }
  void ImportInto(TTable& Target, const std::vector<std::string>& Names, TEIStream& Stream);
  void ImportAlone(TODBCTable* SQLTable, TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream);
  void ImportRows(TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream);
  void ImportRecords(TTable& Target, std::span<const TImportField> Columns, TEIStream& Stream);
  void ReadRecord(TEIStream& Stream);
  void RecordToFields(std::span<const TImportField> Columns, TEIStream& Stream);
  std::string ValueInFile(std::size_t Column, TEIStream& Stream);
  void PlaceError(Exception& Error, TEIStream& Stream);
  [[noreturn]] void RecordError(std::string_view What, TEIStream& Stream) const;

  TTableDataReport FOwnReport;
  std::string FRecord;
  const TImportField* FColumn = nullptr;  // whose value is being read
  std::int64_t FRecordStart = 0;          // of the record at hand, within the body
  std::int64_t FRecordsStart = 0;         // of the first one
  std::int64_t FRecordsLine = 0;          // lines before it
  bool FWritesAnsi = false;
  bool FStrictText;
  TTextLosses* FLosses = nullptr;  // borrowed from the stream, during a run
};

/// Version 200: 16-bit escapes, bytes as hexadecimal pairs, dates as system texts, exact amounts, 64-bit integers.
class TEITableData final : public TEICommonTableData {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FieldToString(TField& Field, std::string& Text) override;
  void StringToField(std::span<char> Text, TField& Field) override;

  static const TEIObjectDescriptor Descriptor;

 private:
  void TextToString(const TField& Field, const TKvVariant& Value, std::string& Text);
  void CheckRepresentable(const TField& Field, std::string_view Text);
};

/// Version 100: 8-bit texts in the code page, bytes as such texts, dates as day numbers, 32-bit integers.
class TEIOldTableData final : public TEICommonTableData {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  void FieldToString(TField& Field, std::string& Text) override;
  void StringToField(std::span<char> Text, TField& Field) override;

  static const TEIObjectDescriptor Descriptor;
};

}  // namespace velkrund
