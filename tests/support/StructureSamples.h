#pragma once

#include <string>
#include <vector>

#include "tests/support/Values.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund::tests {

/// A value of a node, and what stands for it behind the name in a section of version 200.
struct TNodeSample {
  TDSPValueType Type;
  TKvVariant Value;
  std::string Text;
};

/// Every type, every kind of variant, awkward texts and extreme numbers.
inline const std::vector<TNodeSample>& NodeSamples() {
  using T = TDSPValueType;
  static const std::vector<TNodeSample> Result = {
      {T::None, {}, ""},
      {T::Deleted, {}, ":DELETED"},
      {T::String, Text(" it's a#b=c:d|e@\r\n\x7F\xC2\x85\xC2\xA0Ж😀"),
       ":string = ' it's a#0023b=c:d|e@#000D#000A#007F#0085\xC2\xA0Ж😀'"},
      {T::String, Text(""), ":string = ''"},
      {T::String, Text("a\xFF\xED\xA0\xBD"), ":string = 'a#DCFF#DCED#DCA0#DCBD'"},
      {T::Integer, Integer(-5, TKvKind::Integer), ":integer = -5"},
      {T::Boolean, Boolean(true), ":boolean = TRUE"},
      {T::Double, Real(5), ":double = 5.0"},
      {T::Binary, Text("\x0A\xFF\x10", TKvKind::Bytes), ":binary = 0A FF 10"},
      {T::Binary, Text("", TKvKind::Bytes), ":binary = "},
      {T::Byte, Integer(255, TKvKind::Byte), ":byte = 255"},
      {T::SmallInt, Integer(-32768, TKvKind::SmallInt), ":smallint = -32768"},
      {T::Word, Integer(65535, TKvKind::Word), ":Word = 65535"},
      {T::UInt32, Integer(4294967295, TKvKind::LongWord), ":UInt32 = 4294967295"},
      {T::Extended, Real(-0.0, TKvKind::Extended), ":Extended = -0.0"},
      {T::Char, Text("\n", TKvKind::Char), ":Char = '#000A'"},
      {T::Char, Text("\xFF", TKvKind::Char), ":Char = '#DCFF'"},
      {T::WordBool, Boolean(true, TKvKind::WordBool), ":WordBool = TRUE"},
      {T::SysDate, Date("2024-02-29"), ":SysDate = 2024-02-29"},
      {T::SysTime, TimeOfDay("23:59:59.999999"), ":SysTime = 23:59:59.999999"},
      {T::DateTime, Moment("0001-01-01 10:00:00"), ":DateTime = 0001-01-01 10:00:00"},
      {T::Int64, Integer(INT64_MIN), ":Int64 = -9223372036854775808"},
      {T::UInt64, Unsigned(UINT64_MAX), ":UInt64 = 18446744073709551615"},
      {T::Currency, Currency(-125'001), ":Currency = -12.5001"},
      {T::AnsiChar, Text("\xCF", TKvKind::AnsiChar), ":ANSIChar = '#CF'"},
      {T::AnsiString, Text("a\x7F\x1F\xFF|'", TKvKind::AnsiString), ":ANSIString = 'a\x7F#1F#FF|''"},
      {T::Variant, {}, ":variant = NULL"},
      {T::Variant, Integer(7, TKvKind::Byte), ":variant = BYTE(7)"},
      {T::Variant, Integer(-7, TKvKind::SmallInt), ":variant = SMALLINT(-7)"},
      {T::Variant, Integer(7, TKvKind::Word), ":variant = WORD(7)"},
      {T::Variant, Integer(-7, TKvKind::Integer), ":variant = INTEGER(-7)"},
      {T::Variant, Integer(7, TKvKind::LongWord), ":variant = UINT32(7)"},
      {T::Variant, Real(0.1), ":variant = DOUBLE(0.1)"},
      {T::Variant, Real(0.1, TKvKind::Extended), ":variant = EXTENDED(0.1)"},
      {T::Variant, Text("#", TKvKind::Char), ":variant = CHAR(#0023)"},
      {T::Variant, Text("\xC3("), ":variant = STRING(#DCC3()"},
      {T::Variant, Text(" (a)\t"), ":variant = STRING( (a)#0009)"},
      {T::Variant, Boolean(false), ":variant = BOOLEAN(FALSE)"},
      {T::Variant, Boolean(true, TKvKind::WordBool), ":variant = WORDBOOL(TRUE)"},
      {T::Variant, Date("2024-02-29"), ":variant = SYSDATE(2024-02-29)"},
      {T::Variant, TimeOfDay("10:00:00"), ":variant = SYSTIME(10:00:00)"},
      {T::Variant, Moment("2024-02-29 10:00:00.5"), ":variant = DATETIME(2024-02-29 10:00:00.500)"},
      {T::Variant, Integer(INT64_MAX), ":variant = INT64(9223372036854775807)"},
      {T::Variant, Unsigned(UINT64_MAX), ":variant = UINT64(18446744073709551615)"},
      {T::Variant, Currency(70'000), ":variant = CURRENCY(7)"},
      {T::Variant, Text("\n", TKvKind::AnsiChar), ":variant = ANSICHAR(#0A)"},
      {T::Variant, Text("\xCF)", TKvKind::AnsiString), ":variant = ANSISTRING(#CF))"},
      {T::Variant, Text("\x01\x02", TKvKind::Bytes), ":variant = BYTES(01 02)"},
  };
  return Result;
}

/// The samples as children of Parent.
inline void AddNodeSamples(TDSPNode& Parent) {
  int Number = 0;
  for (const TNodeSample& Sample : NodeSamples()) {
    TDSPNode& Node = Parent.AddNode("n " + std::to_string(++Number));
    Node.SetValueType(Sample.Type);
    if (!Sample.Value.IsNull()) Node.SetValue(Sample.Value);
  }
}

}  // namespace velkrund::tests
