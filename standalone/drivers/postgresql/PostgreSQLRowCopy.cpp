#include "standalone/drivers/postgresql/PostgreSQLRowCopy.h"

#include <algorithm>
#include <string_view>

namespace velkrund {
namespace {

using TType = TPostgreSQLType;

constexpr std::string_view OutputOfArrays = "pg_catalog.array_out";

/// Those whose text is read as the very same value. That of xml, for one, loses its encoding.
constexpr std::string_view ExactOutputs[] = {
    "pg_catalog.bit_out",    "pg_catalog.varbit_out",  "pg_catalog.cidr_out",     "pg_catalog.inet_out",
    "pg_catalog.json_out",   "pg_catalog.jsonb_out",   "pg_catalog.interval_out", "pg_catalog.uuid_out",
    "pg_catalog.enum_out",   "pg_catalog.macaddr_out", "pg_catalog.macaddr8_out", "pg_catalog.timetz_out",
    "pg_catalog.tsvectorout"};

/// Elements of which the same holds.
constexpr std::string_view ExactElements[] = {"smallint", "integer", "bigint", "boolean",
                                              "text",     "date",    "uuid",   "character varying",
                                              "numeric",  "real",    "jsonb",  "double precision"};

template <typename TList>
bool IsIn(const TList& List, std::string_view Word) {
  return std::find(std::begin(List), std::end(List), Word) != std::end(List);
}

bool HasExactElements(std::string_view DeclaredType) {
  const std::string_view Element = DeclaredType.substr(0, DeclaredType.find('['));
  return IsIn(ExactElements, Element.substr(0, Element.find('(')));
}

/// The same type on both sides.
bool IsRead(const TPostgreSQLColumn& Column, bool HasUtf8) {
  switch (Column.Type) {
    case TType::Text:
      // Of a type of somebody's own nothing is known, and what is one byte may be half a character.
      return HasUtf8 && Column.OutputFunction.empty() && Column.MaxBytes != 1;
    case TType::TimeTz:
    case TType::Other:
      if (Column.OutputFunction == OutputOfArrays) return HasUtf8 && HasExactElements(Column.Info.DeclaredType);
      return HasUtf8 && IsIn(ExactOutputs, Column.OutputFunction);
    default:
      return true;
  }
}

/// char(n) is none: its blanks are dropped on the way to the others.
bool IsPlainText(const TPostgreSQLColumn& Column) {
  const std::string_view Type = Column.Info.DeclaredType;
  return Type == "text" || Type.starts_with("character varying");
}

/// Every value of an integer type is one of the other type.
bool WidensInteger(TType From, const TPostgreSQLColumn& To) {
  switch (To.Type) {
    case TType::Int4:
    case TType::Float4:
      return From == TType::Int2;
    case TType::Int8:
    case TType::Float8:
      return From == TType::Int2 || From == TType::Int4;
    case TType::Numeric:
      return To.Scale.value_or(0) >= 0;
    default:
      return false;
  }
}

bool Widens(const TPostgreSQLColumn& From, const TPostgreSQLColumn& To, bool HasUtf8) {
  switch (From.Type) {
    case TType::Int2:
    case TType::Int4:
    case TType::Int8:
      return WidensInteger(From.Type, To);
    case TType::Float4:
      return To.Type == TType::Float8;
    case TType::Numeric:
      // Amounts travel without the zeros at their end, which a column without a scale would keep.
      return To.Type == TType::Numeric && From.Scale && To.Scale && *From.Scale <= *To.Scale;
    case TType::Time:
    case TType::Timestamp:
    case TType::TimestampTz:
      return To.Type == From.Type && From.Fraction <= To.Fraction;
    case TType::Text:
      return HasUtf8 && IsPlainText(From) && IsPlainText(To) &&
             (!To.MaxCharacters || (From.MaxCharacters && *From.MaxCharacters <= *To.MaxCharacters));
    default:
      return false;
  }
}

}  // namespace

bool PostgreSQLCopiesExactly(const TPostgreSQLColumn& From, const TPostgreSQLColumn& To, bool HasUtf8) {
  // What has come through records meets the conditions of a domain, what the engine moves itself does not.
  if (To.Info.Generated || !From.DomainOver.empty() || !To.DomainOver.empty()) return false;
  if (From.Info.DeclaredType == To.Info.DeclaredType) return IsRead(From, HasUtf8);
  return Widens(From, To, HasUtf8);
}

}  // namespace velkrund
