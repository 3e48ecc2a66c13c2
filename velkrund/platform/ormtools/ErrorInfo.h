#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velkrund {

/// What kind of error it is, for programs and for whoever knows what to do about it. The words, docs/json.md lists
/// them, do not change once released.
enum class TErrorCode {
  Other,
  Cancelled,
  Unanswered,     // a question that nobody can answer
  Settings,       // of a job, or a command line
  Configuration,  // the file of it
  FileMissing,
  FileAccess,  // missing rights
  FileInUse,
  FileOpen,
  FileRead,
  FileWrite,
  DiskFull,
  PipeClosed,       // by its reader
  FileKind,         // it is no export/import file
  FileStructure,    // headers and marker lines
  LineFeeds,        // lines of the file end with a line feed alone, and are none
  Unfinished,       // sections at the end of the file are not whole
  SectionMissing,   // named, and not in the file
  Record,           // the layout of a section's body
  Value,            // one value that its kind, or the table, does not take
  UnreadableValue,  // one that is of no kind at all; a run can be told to make it NULL
  Text,             // characters would be lost
  Loss,             // a value would come back as another
  DatabaseName,     // neither a known name nor an address
  DatabaseMissing,
  DatabaseReadOnly,
  DatabaseBusy,
  DatabaseLocks,   // more than the engine has room for
  DatabaseAccess,  // login or rights
  Connection,      // no server, or no longer
  Database,        // anything else that an engine says
  TableMissing,
  ProcedureMissing,
  FieldMissing,
  RepeatedTable,  // several sections for one table that is to be replaced
  RowRefused,     // by a constraint
  TriggerRefused,
  References,  // rows would refer to nothing
  StructureMissing,
  LanguageMissing,  // texts of a file are in one that the database does not have
  BLOBTable,        // in the value of a field: damaged, or of a newer layout
  Structure,        // a stored structure, or the text of one
  NoWords,          // the engine has none for a part of what is to be made
  Catalogue,        // of gettext: how it is written
  ContextMissing,   // an entry of one has none, which would be the ID of its string
  FuzzyEntry,       // of one: somebody has to look at it
};

/// The word of a code: "file-missing"; of a number that is no code "other".
std::string_view ErrorCodeText(TErrorCode Code);

/// Of a failed operation on a file. Error: a value of errno. Other: none that says more than what failed.
TErrorCode FileErrorCode(int Error);

/// What is known of an error beside its message. Empty, or 0, is unknown. Texts are UTF-8.
struct TErrorInfo {
  TErrorCode Code = TErrorCode::Other;
  std::string File = {};     // as people named it
  std::int64_t Line = 0;     // of File, from 1
  std::string Section = {};  // its name
  std::string Table = {};
  std::string Column = {};      // of the table, or the field of a section
  std::int64_t Record = 0;      // of the section, from 1
  std::string Value = {};       // that was refused, shortened
  std::string Structure = {};   // "CLIENTS (12)": name and type
  std::string Node = {};        // its full name in the structure
  std::string Database = {};    // without passwords
  std::string EngineCode = {};  // the engine's own: an SQLSTATE, or a number of SQLite
  std::string Statement = {};   // what the engine was asked to do, shortened

  /// Takes what is not known yet from Other.
  void Fill(const TErrorInfo& Other);
};

/// Text as it is shown in an error: at most so many UTF-16 units, then "...".
std::string Shortened(std::string_view Text, std::int64_t MaxUnits = 60);

}  // namespace velkrund
