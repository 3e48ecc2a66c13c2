#include "standalone/drivers/BulkAppender.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TErrorInfo RefusedValue(const std::string& Table, const std::string& Column, std::int64_t Record,
                        const TKvVariant& Value) {
  // Of long ones no more than is shown, and a bit so that it shows that there is more.
  constexpr std::size_t Most = 400;
  std::string Text;
  if (HasBytes(Value.Kind())) {
    const std::string_view Beginning = Value.AsText().substr(0, std::min(Value.AsText().size(), Most));
    if (Value.Kind() == TKvKind::Bytes)
      AppendHex(Text += "0x", Beginning);
    else
      RepairUtf8(Text = Beginning);
  } else {
    Value.AppendAsText(Text);
  }
  return {.Code = TErrorCode::Value,
          .Table = Table,
          .Column = Column,
          .Record = Record,
          .Value = Shortened(Value.IsNull() ? "NULL" : Text)};
}

}  // namespace velkrund
