#include "velkrund/platform/ormtools/Variant.h"

#include <cstddef>
#include <functional>

#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

void TKvVariant::SetText(std::string_view Text, TKvKind Kind) {
  FOwned.assign(Text);
  FBytes = FOwned;
  FKind = Kind;
}

void TKvVariant::Assign(const TKvVariant& Other) {
  if (HasBytes(Other.FKind))
    SetText(Other.FBytes, Other.FKind);
  else
    FKind = Other.FKind;
  FNumber = Other.FNumber;
}

void TKvVariant::MoveFrom(TKvVariant& Other) noexcept {
  FKind = Other.FKind;
  FNumber = Other.FNumber;
  if (HasBytes(FKind)) {
    const char* const First = Other.FOwned.data();
    const char* const Last = First + Other.FOwned.size();
    FBytes = Other.FBytes;
    // Bytes in the other's own buffer come along with it. They may have moved: a short string lies in the object.
    if (std::less_equal<>()(First, FBytes.data()) && std::less_equal<>()(FBytes.data(), Last)) {
      const std::ptrdiff_t Start = FBytes.data() - First;
      FOwned.swap(Other.FOwned);
      FBytes = {FOwned.data() + Start, FBytes.size()};
    }
  }
  Other.FKind = TKvKind::Null;
}

void TKvVariant::AppendAsText(std::string& Out) const {
  switch (FKind) {
    case TKvKind::Null:
      break;
    case TKvKind::Byte:
    case TKvKind::SmallInt:
    case TKvKind::Word:
    case TKvKind::Integer:
    case TKvKind::LongWord:
    case TKvKind::Int64:
      AppendInteger(Out, FNumber);
      break;
    case TKvKind::UInt64:
      AppendUnsigned(Out, AsUnsigned());
      break;
    case TKvKind::Double:
    case TKvKind::Extended:
      AppendReal(Out, AsReal());
      break;
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      Out += AsBoolean() ? "TRUE" : "FALSE";
      break;
    case TKvKind::SysDate:
      AppendSysDate(Out, AsDateTime());
      break;
    case TKvKind::SysTime:
      AppendSysTime(Out, FNumber);
      break;
    case TKvKind::DateTime:
      AppendSysDateTime(Out, AsDateTime());
      break;
    case TKvKind::Currency:
      AppendCurrency(Out, AsCurrency());
      break;
    case TKvKind::Char:
    case TKvKind::String:
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
    case TKvKind::Bytes:
      Out += FBytes;
      break;
  }
}

bool operator==(const TKvVariant& A, const TKvVariant& B) {
  if (A.FKind != B.FKind) return false;
  if (HasBytes(A.FKind)) return A.FBytes == B.FBytes;
  return A.IsNull() || A.FNumber == B.FNumber;
}

}  // namespace velkrund
