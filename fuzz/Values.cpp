// Any text as a value of either version, for a column of any kind, in any code page: an error, or a value that is
// written and read again as the same value.

#include <cmath>
#include <iterator>

#include "fuzz/FuzzPlatform.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr TKvKind Kinds[] = {
    TKvKind::Null,     TKvKind::Byte,       TKvKind::SmallInt, TKvKind::Word,   TKvKind::Integer, TKvKind::LongWord,
    TKvKind::Double,   TKvKind::Extended,   TKvKind::Char,     TKvKind::String, TKvKind::Boolean, TKvKind::WordBool,
    TKvKind::SysDate,  TKvKind::SysTime,    TKvKind::DateTime, TKvKind::Int64,  TKvKind::UInt64,  TKvKind::Currency,
    TKvKind::AnsiChar, TKvKind::AnsiString, TKvKind::Bytes};

class TValueField final : public TField {
 public:
  explicit TValueField(TKvKind Kind) : TField("F", Kind) {}
  const TKvVariant& Value() override { return BufferedValue(); }
};

TKvVariant Read(TEICommonTableData& Section, TKvKind Column, std::string Text) {
  TValueField Field(Column);
  Section.StringToField(Text, Field);
  return Field.BufferedValue();
}

std::string Write(TEICommonTableData& Section, TKvKind Column, const TKvVariant& Value) {
  TValueField Field(Column);
  Field.SetValue(Value);
  std::string Text;
  Section.FieldToString(Field, Text);
  return Text;
}

bool IsNan(const TKvVariant& Value) { return Value.Kind() == TKvKind::Double && std::isnan(Value.AsReal()); }

}  // namespace
}  // namespace velkrund

// The first byte chooses version and strictness, the second the code page, the third the kind of the column.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  if (Size < 4) return 0;
  std::unique_ptr<TEICommonTableData> Section;
  if (Data[0] & 1)
    Section = std::make_unique<TEIOldTableData>();
  else
    Section = std::make_unique<TEITableData>();
  Section->StrictValues = (Data[0] & 2) != 0;
  Platform.ChangeSettings().AnsiCodePage = TCodePage::Find(1250 + Data[1] % 9);
  const TKvKind Column = Kinds[Data[2] % std::size(Kinds)];

  // As a record hands it on.
  std::string Text(reinterpret_cast<const char*>(Data) + 3, Size - 3);
  RepairUtf8(Text);
  Text = Trim(Text);
  if (Text.empty()) return 0;
  TKvVariant Value;
  try {
    Value = Read(*Section, Column, Text);
  } catch (const Exception&) {
    return 0;
  }
  const std::string Written = Write(*Section, Column, Value);
  const TKvVariant Again = Read(*Section, Column, Written);
  Require(Again == Value || (IsNan(Again) && IsNan(Value)));
  Require(Write(*Section, Column, Again) == Written);
  return 0;
}
