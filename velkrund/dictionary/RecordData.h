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

/// Rows as a section, whatever they come from, on their way into a table. The body is
///
///    [FIELDS]
///     ID                      one field name a line
///     NAME
///    [RECORDS]
///     <17|'Smith#007CSons'>   one record a row, the values in the order of the field lines
///
/// A record text of more than 99990 UTF-16 units is cut into pieces of that length: every piece but the last is
/// followed by "@", every piece but the first is preceded by "@" on a line of its own. Readers trim every line. The
/// records end where the section ends.
///
/// Concrete classes differ in where rows come from and in the text of single values. Errors are EDicUtilError; those of
/// the database and of number texts pass through. Used for one export or one import.
class TEIRecordData : public TEIObject {
 public:
  /// Settings are taken from the installed application manager.
  TEIRecordData();

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
  TTable* Table = nullptr;              // borrowed, opened by the caller; null: TableName is opened for the run
  const TStringList* Fields = nullptr;  // borrowed; the only ones to import, as the file has them; null: all
  /// Import: fields of the file, and fields of the table that they fill, one or several; "": the field goes nowhere.
  /// One without a pair fills that of its own name, unless a pair names it. A pair of a field that the file lacks is an
  /// error.
  TStringPairs FieldMapping;
  bool SkipMissingFields = true;           // import: fields that the table lacks are passed over; otherwise an error
  bool StrictValues;                       // import: an unparseable value is an error; otherwise it becomes NULL
  TTableDataReport* Report = &FOwnReport;  // borrowed; where the run is to be reported

 protected:
  /// "table data": what messages are about.
  virtual const char* Content() const = 0;
  /// What progress is about.
  virtual const std::string& Subject() const { return TableName; }
  /// Before the table of an import is opened, Names being the fields of the file; false: the section is passed over.
  virtual bool ChooseTable(const std::vector<std::string>& /*Names*/) { return true; }
  /// Reads a body up to and with its "[FIELDS]" line; false when there is none.
  virtual bool ReadUntilFields(TEIStream& Stream);
  /// Whether the table may lack a field of the file.
  virtual bool MayLack(std::string_view /*Name*/) const { return SkipMissingFields; }

  void BeginRun(TEIStream& Stream);
  TTable& TakeTable(std::unique_ptr<TTable>& Owned, std::string_view Verb);
  /// Raises an error where field lines cannot hold the names.
  void CheckFieldNames(TStringList Names) const;
  /// Writes the "[RECORDS]" line and the rows. Total: for progress, 0 where nobody knows. IsNumbered: the running
  /// number of the row, from 1, comes first. Cancelled: EAbort.
  void ExportRecords(TRows& Source, const std::vector<TField*>& Columns, std::int64_t Total, bool IsNumbered,
                     TEIStream& Stream);
  /// IsShort: the line cannot sensibly be long, and is refused when it is.
  std::string_view NextLine(TEIStream& Stream, bool IsShort = false);
  bool ReadUntil(TEIStream& Stream, std::string_view Marker, std::vector<std::string>* Lines);
  /// "Can not import table data. " and What.
  [[noreturn]] void ImportError(const std::string& What, TErrorInfo Info = {.Code = TErrorCode::Record}) const;
  /// Counts characters of a text that the code page lacks; an error that names the place, "Field:'A';Record:1", where
  /// the run is strict about text.
  void TextLost(std::int64_t Count, const std::string& Place);

  // The value texts of version 200, as FieldToString and StringToField; those of version 100.
  void ValueToString(TField& Field, std::string& Text);
  void StringToValue(std::span<char> Text, TField& Field);
  /// UnknownKind: what is said of a value of unknown kind; with a "%d" for the kind.
  void OldValueToString(TField& Field, std::string& Text, const char* UnknownKind);
  void OldStringToValue(std::span<char> Text, TField& Field);
  /// Digits: of an escape that is none.
  [[noreturn]] void BadCharacter(std::string_view Digits) const;

 private:
  struct TImportField;
  class TFieldTargets;

  std::string PlaceOf(const TField& Field) const;
  void ValueLost(const TField& Field, const TKvVariant& Value, std::string_view What);
  void Unparseable(TField& Field, const std::string& Message);
  void TextToString(const TField& Field, const TKvVariant& Value, std::string& Text);
  void CheckRepresentable(const TField& Field, std::string_view Text);
  void ReadText(std::span<char> Text, TKvVariant& Value) const;
  void ReadBytes(std::span<char> Digits, TKvVariant& Value) const;
  void AppendValue(TField& Column);
  void CheckMapping(const std::vector<std::string>& Names) const;
  std::vector<TImportField> ResolveFields(TTable& Target, const std::vector<std::string>& Names);
  bool Selected(std::string_view Name) const { return !Fields || Fields->IndexOf(Name) >= 0; }
  void ImportInto(TTable& Target, const std::vector<std::string>& Names, TEIStream& Stream);
  void ImportAlone(TODBCTable* SQLTable, TTable& Target, std::span<TImportField> Columns, TEIStream& Stream);
  void ImportRows(TTable& Target, std::span<TImportField> Columns, TEIStream& Stream);
  void ImportRecords(TTable& Target, std::span<TImportField> Columns, TEIStream& Stream);
  void ReadRecord(TEIStream& Stream);
  void RecordToFields(std::span<TImportField> Columns, TEIStream& Stream);
  void ValueToFields(std::span<char> Value, TImportField& Column);
  std::string ValueInFile(std::size_t Column, TEIStream& Stream);
  void PlaceError(Exception& Error, TEIStream& Stream);
  [[noreturn]] void RecordError(std::string_view What, TEIStream& Stream) const;

  TTableDataReport FOwnReport;
  std::string FRecord;
  std::string FEncoded;                   // a text in the code page, to see what it loses there
  const TImportField* FColumn = nullptr;  // whose value is being read
  std::int64_t FRecordStart = 0;          // of the record at hand, within the body
  std::int64_t FRecordsStart = 0;         // of the first one
  std::int64_t FRecordsLine = 0;          // lines before it
  bool FWritesAnsi = false;               // in the code page
  bool FStrictText;  // characters that cannot be kept are errors: as the stream has it, before a run the application
  TTextLosses* FLosses = nullptr;  // borrowed from the stream, during a run
};

}  // namespace velkrund
