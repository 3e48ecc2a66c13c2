#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// The word for the values of a kind, as files of the current release spell it; empty for Null and for what is no kind.
constexpr std::string_view KindWord(TKvKind Kind) {
  switch (Kind) {
    case TKvKind::Null:
      return {};
    case TKvKind::Byte:
      return "byte";
    case TKvKind::SmallInt:
      return "smallint";
    case TKvKind::Word:
      return "Word";
    case TKvKind::Integer:
      return "integer";
    case TKvKind::LongWord:
      return "UInt32";
    case TKvKind::Double:
      return "double";
    case TKvKind::Extended:
      return "Extended";
    case TKvKind::Char:
      return "Char";
    case TKvKind::String:
      return "string";
    case TKvKind::Boolean:
      return "boolean";
    case TKvKind::WordBool:
      return "WordBool";
    case TKvKind::SysDate:
      return "SysDate";
    case TKvKind::SysTime:
      return "SysTime";
    case TKvKind::DateTime:
      return "DateTime";
    case TKvKind::Int64:
      return "Int64";
    case TKvKind::UInt64:
      return "UInt64";
    case TKvKind::Currency:
      return "Currency";
    case TKvKind::AnsiChar:
      return "ANSIChar";
    case TKvKind::AnsiString:
      return "ANSIString";
    case TKvKind::Bytes:
      return "binary";
  }
  return {};
}

/// All words, in the order of their kinds.
std::vector<std::string> KindWords();
/// The kind of a word, in any case; nothing for any other text.
std::optional<TKvKind> FindKindWord(std::string_view Word);

}  // namespace velkrund
