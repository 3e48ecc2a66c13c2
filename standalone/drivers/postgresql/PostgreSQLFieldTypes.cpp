#include "standalone/drivers/postgresql/PostgreSQLFieldTypes.h"

#include <algorithm>

namespace velkrund {
namespace {

// Numbers of the engine's own types; they are the same in every database.
constexpr std::int64_t PaddedCharType = 1042;
constexpr std::int64_t VarCharType = 1043;
constexpr std::int64_t NumericType = 1700;
constexpr std::int64_t IntervalType = 1186;

constexpr int ModifierHeader = 4;          // what the engine adds to lengths and precisions
constexpr int MaxCharacters = 10'485'760;  // of char(n), varchar(n)
constexpr int MaxDigits = 1000;
constexpr int MaxFraction = 6;

struct TOfEngine {
  std::int64_t Oid;
  TDicFieldType Type;
};

constexpr TOfEngine OfEngine[] = {
    {16, TDicFieldType::Boolean},
    {17, TDicFieldType::Bytes},
    {18, TDicFieldType::String},  // "char"
    {19, TDicFieldType::String},  // name
    {20, TDicFieldType::Int64},
    {21, TDicFieldType::Int16},
    {23, TDicFieldType::Int32},
    {25, TDicFieldType::String},
    {26, TDicFieldType::Int64},  // oid: 32 bits without a sign
    {114, TDicFieldType::Json},
    {700, TDicFieldType::Real32},
    {701, TDicFieldType::Real64},
    {790, TDicFieldType::Money},
    {PaddedCharType, TDicFieldType::FixedString},
    {VarCharType, TDicFieldType::String},
    {1082, TDicFieldType::Date},
    {1083, TDicFieldType::Time},
    {1114, TDicFieldType::DateTime},
    {1184, TDicFieldType::ZonedDateTime},
    {IntervalType, TDicFieldType::Interval},
    {1266, TDicFieldType::ZonedTime},
    {NumericType, TDicFieldType::Decimal},
    {2950, TDicFieldType::Uuid},
    {3802, TDicFieldType::Json},  // jsonb
};

std::string Sized(const std::string& Type, const std::optional<int>& Size) {
  return Size ? Type + "(" + std::to_string(*Size) + ")" : Type;
}

TPostgreSQLDeclaration Decimal(const TNeutralType& Type) {
  if (!Type.Size) return {"numeric"};
  if (*Type.Size > MaxDigits || *Type.Size < 1 || Type.Scale.value_or(0) > *Type.Size)
    return {"numeric", "PostgreSQL limits digits to 1000, and decimals to the digits"};
  return {"numeric(" + std::to_string(*Type.Size) + "," + std::to_string(Type.Scale.value_or(0)) + ")"};
}

TPostgreSQLDeclaration Characters(const TNeutralType& Type, const std::string& Word) {
  if (!Type.Size) return {"text"};
  if (*Type.Size < 1 || *Type.Size > MaxCharacters)
    return {"text", "PostgreSQL limits lengths to between 1 and 10485760 characters"};
  return {Sized(Word, Type.Size)};
}

TPostgreSQLDeclaration Moment(const TNeutralType& Type, const std::string& Word, const std::string& Zone = {}) {
  if (Type.Scale.value_or(0) > MaxFraction)
    return {Word + Zone, "PostgreSQL keeps microseconds and refuses what is finer", false};
  return {Sized(Word, Type.Scale) + Zone};
}

}  // namespace

TNeutralType NeutralTypeOf(std::int64_t Oid, std::int64_t Modifier, bool IsText) {
  const auto Found =
      std::find_if(std::begin(OfEngine), std::end(OfEngine), [&](const TOfEngine& Known) { return Known.Oid == Oid; });
  if (Found == std::end(OfEngine)) return {IsText ? TDicFieldType::String : TDicFieldType::Other};
  TNeutralType Result{Found->Type};
  const auto Number = static_cast<int>(Modifier);
  switch (Oid) {
    case PaddedCharType:
      if (Number < ModifierHeader) return {TDicFieldType::String};
      [[fallthrough]];
    case VarCharType:
      if (Number >= ModifierHeader) Result.Size = Number - ModifierHeader;
      break;
    case NumericType:
      if (Number < ModifierHeader) break;
      Result.Size = ((Number - ModifierHeader) >> 16) & 0xFFFF;
      Result.Scale = (((Number - ModifierHeader) & 0x7FF) ^ 0x400) - 0x400;  // eleven bits with a sign
      break;
    case IntervalType:
      if (Number >= 0 && (Number & 0xFFFF) <= MaxFraction) Result.Scale = Number & 0xFFFF;
      break;
    case 1083:
    case 1114:
    case 1184:
    case 1266:
      if (Number >= 0) Result.Scale = Number;
      break;
    default:
      break;
  }
  return Result;
}

TPostgreSQLDeclaration DeclarationOf(const TNeutralType& Type) {
  switch (Type.Type) {
    case TDicFieldType::Int16:
      return {"smallint"};
    case TDicFieldType::Int32:
      return {"integer"};
    case TDicFieldType::Int64:
      return {"bigint"};
    case TDicFieldType::UInt64:
      return {"numeric(20,0)", "PostgreSQL has no integers without a sign"};
    case TDicFieldType::Real32:
      return {"real"};
    case TDicFieldType::Real64:
      return {"double precision"};
    case TDicFieldType::Decimal:
      return Decimal(Type);
    case TDicFieldType::Money:
      return {"numeric(19,4)"};  // the engine's money has as many decimals as a setting of the server says
    case TDicFieldType::Boolean:
      return {"boolean"};
    case TDicFieldType::String:
      return Characters(Type, "character varying");
    case TDicFieldType::FixedString:
      return Characters(Type, "character");
    case TDicFieldType::Bytes:
      if (Type.Size) return {"bytea", "PostgreSQL does not limit the length of bytea"};
      return {"bytea"};
    case TDicFieldType::Date:
      return {"date"};
    case TDicFieldType::Time:
      return Moment(Type, "time");
    case TDicFieldType::DateTime:
      return Moment(Type, "timestamp");
    case TDicFieldType::ZonedDateTime:
      return Moment(Type, "timestamp", " with time zone");
    case TDicFieldType::ZonedTime:
      return Moment(Type, "time", " with time zone");
    case TDicFieldType::Interval:
      return Moment(Type, "interval");
    case TDicFieldType::Uuid:
      return {"uuid"};
    case TDicFieldType::Json:
      return {"json"};  // not jsonb: it keeps the text as it is
    case TDicFieldType::Any:
      return {"text", "it holds values of every kind, which would all become texts", false};
    case TDicFieldType::Other:
      break;
  }
  return {"text", "its type is another engine's alone, and its values would become texts", false};
}

std::string_view SequenceTypeFor(TDicFieldType Field) {
  if (Field == TDicFieldType::Int16) return "smallint";
  return Field == TDicFieldType::Int32 ? "integer" : "bigint";
}

}  // namespace velkrund
