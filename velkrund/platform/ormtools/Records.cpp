#include "velkrund/platform/ormtools/Records.h"

#include <algorithm>
#include <cstring>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

std::string_view BlockOf(TField& Field) {
  const TKvVariant& Value = Field.Value();
  if (!Value.IsNull() && !HasBytes(Value.Kind()))
    throw EDatabaseError(Format("Field '%s' holds no block of bytes", Field.Name()));
  return Value.AsText();
}

}  // namespace

std::int64_t TField::GetDataSize() { return static_cast<std::int64_t>(BlockOf(*this).size()); }

void TField::GetData(char* Data, std::int64_t Size) {
  const std::string_view Block = BlockOf(*this);
  if (Size > 0 && !Block.empty())
    std::memcpy(Data, Block.data(), std::min(static_cast<std::size_t>(Size), Block.size()));
}

TField* TRecord::FindField(std::string_view Name) {
  TField* Similar = nullptr;
  for (int Index = 0, Count = FieldCount(); Index < Count; ++Index) {
    TField& Field = Fields(Index);
    if (Field.Name() == Name) return &Field;
    if (!Similar && SameText(Field.Name(), Name)) Similar = &Field;
  }
  return Similar;
}

TField& TRecord::FieldByName(std::string_view Name) {
  if (TField* Field = FindField(Name)) return *Field;
  throw EDatabaseError(Format("Field '%s' not found", Name));
}

void TRecord::ClearData() {
  for (int Index = 0, Count = FieldCount(); Index < Count; ++Index) Fields(Index).Clear();
}

}  // namespace velkrund
