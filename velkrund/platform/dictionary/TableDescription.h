#pragma once

#include <optional>
#include <string>
#include <vector>

#include "velkrund/platform/dictionary/EngineWords.h"

namespace velkrund {

/// What a field holds, whatever the engine calls it. The numbers are those of the platform's field types: they stay.
enum class TDicFieldType : int {
  Any = 0,  // values of every kind, side by side
  Int16 = 1,
  Int32 = 2,
  Int64 = 3,
  UInt64 = 4,
  Real32 = 5,
  Real64 = 6,
  Decimal = 7,  // Size: digits, Scale: those behind the point
  Money = 8,
  Boolean = 9,
  String = 10,       // Size: characters at most; nothing: any number
  FixedString = 11,  // Size: characters, filled up with blanks
  Bytes = 12,        // Size: bytes at most
  Date = 13,
  // 14: see AutoKeyFieldType
  Time = 15,  // Scale: decimals of a second, of this and the ones that follow; nothing: microseconds
  DateTime = 16,
  ZonedDateTime = 17,
  ZonedTime = 18,
  Interval = 19,
  Uuid = 20,
  Json = 21,
  Other = 22,  // what one engine alone has; its own words say what
};

/// The platform's number for fields that the engine numbers by itself, whatever type they have.
inline constexpr int AutoKeyFieldType = 14;

enum class TDicAutoKey {
  None,
  Always,     // only the engine gives numbers
  ByDefault,  // it gives one where a row brings none
  RowNumber,  // the same, and the number is that by which the engine finds the row
};

/// How a generator counts. Numbers in decimal; nothing: the usual, by 1 from 1 upwards.
struct TDicCounter {
  std::optional<std::string> Start = {}, Step = {}, Min = {}, Max = {};
  bool Cycle = false;

  bool operator==(const TDicCounter&) const = default;
};

struct TDicField {
  std::string Name = {};
  TDicFieldType Type = TDicFieldType::Any;
  std::optional<int> Size = {}, Scale = {};
  bool NotNull = false;
  std::string Comment = {};
  std::optional<std::string> Default = {};  // a neutral literal ('x', 1.5, TRUE, NULL, x'00') or NOW TODAY TIME UUID
  TDicAutoKey Auto = TDicAutoKey::None;
  TDicCounter Counter = {};  // of an automatic key
  std::string Owned = {};    // the sequence that counts for it and goes with it; empty: none with a name
  std::optional<std::string> Computed = {};  // a neutral expression; also empty where only own words say it
  bool Stored = false;                       // of a computed one: its value is kept in the row
  /// Text: the complete declared type. Parts: Default, Computed, Collate; Sequence, of its counter; Base and Check of a
  /// domain. Lines: the values of an enumeration.
  TDicEngineWords Words = {};

  bool operator==(const TDicField&) const = default;

  int FieldType() const { return Auto == TDicAutoKey::None ? static_cast<int>(Type) : AutoKeyFieldType; }
};

struct TDicColumn {
  std::string Name = {};  // of a field; of an index also an expression
  bool Expression = false;
  bool Descending = false;

  bool operator==(const TDicColumn&) const = default;
};

enum class TDicDeferrable { No, Immediate, Deferred };

/// A primary or unique key.
struct TDicKey {
  std::string Name = {};  // empty: the engine has named it
  bool Primary = false;
  std::vector<TDicColumn> Columns = {};
  TDicDeferrable Deferrable = TDicDeferrable::No;
  TDicEngineWords Words = {};  // Text: AUTOINCREMENT, ON CONFLICT, INCLUDE, NULLS NOT DISTINCT

  bool operator==(const TDicKey&) const = default;
};

struct TDicIndex {
  std::string Name = {};
  bool Unique = false;
  std::vector<TDicColumn> Columns = {};
  TDicEngineWords Words = {};  // Text: the whole statement, where the above does not say all. Part: Numbers

  bool operator==(const TDicIndex&) const = default;
};

enum class TDicKeyAction { NoAction, Cascade, SetNull, SetDefault, Restrict };

struct TDicForeignKey {
  std::string Name = {};  // empty: the engine has named it
  std::string Table = {}, Schema = {};
  struct TPair {
    std::string Column = {};
    std::string To = {};  // empty: the other table's primary key

    bool operator==(const TPair&) const = default;
  };
  std::vector<TPair> Columns = {};
  TDicKeyAction OnDelete = TDicKeyAction::NoAction, OnUpdate = TDicKeyAction::NoAction;
  bool MatchFull = false;
  TDicDeferrable Deferrable = TDicDeferrable::No;
  bool NotChecked = false;     // rows that were there before it may break it
  TDicEngineWords Words = {};  // Text: what the above does not say

  /// The name of the other table, behind its schema and a full stop where it has one.
  std::string FullTable() const { return Schema.empty() ? Table : Schema + "." + Table; }
  bool operator==(const TDicForeignKey&) const = default;
};

struct TDicCheck {
  std::string Name = {};                 // empty: the engine has named it
  std::optional<std::string> Text = {};  // neutral; nothing: only own words say it
  TDicEngineWords Words = {};            // Text: the condition

  bool operator==(const TDicCheck&) const = default;
};

struct TDicTrigger {
  std::string Name = {};
  std::string Enabled = {};    // empty: as usual; "Disabled", "Replica", "Always"
  TDicEngineWords Words = {};  // Lines: the statement

  bool operator==(const TDicTrigger&) const = default;
};

/// A database object as structures describe it.
struct TDicObjectDescription {
  std::string Name = {};    // exact
  std::string Schema = {};  // empty: the current one
  std::string Comment = {};

  /// The name by which people and files know it.
  std::string FullName() const { return Schema.empty() ? Name : Schema + "." + Name; }

  bool operator==(const TDicObjectDescription&) const = default;
};

/// A table, in terms that every engine understands, and beside them in those of each engine that it has been in.
struct TDicTableDescription : TDicObjectDescription {
  std::vector<TDicField> Fields = {};
  std::vector<TDicKey> Keys = {};
  std::vector<TDicIndex> Indexes = {};
  std::vector<TDicForeignKey> ForeignKeys = {};
  std::vector<TDicCheck> Checks = {};
  std::vector<TDicTrigger> Triggers = {};
  /// Text: words of the table, "STRICT, WITHOUT ROWID". Parts: Virtual, Partition, PartitionOf, Inherits.
  TDicEngineWords Words = {};

  bool operator==(const TDicTableDescription&) const = default;
};

}  // namespace velkrund
