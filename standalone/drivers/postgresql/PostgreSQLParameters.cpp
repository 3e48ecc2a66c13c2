#include "standalone/drivers/postgresql/PostgreSQLParameters.h"

#include <limits>

#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TPostgreSQLParameters::TPostgreSQLParameters(std::span<const TKvVariant> Values, const TCodePage& CodePage) {
  // The texts are pointed to: they must not move.
  FTexts.reserve(Values.size());
  for (const TKvVariant& Value : Values) {
    const bool IsBytes = Value.Kind() == TKvKind::Bytes;
    std::string& Text = FTexts.emplace_back();
    if (IsAnsiKind(Value.Kind()))
      CodePage.Decode(Value.AsText(), Text);
    else
      Value.AppendAsText(Text);
    if (!IsBytes && Text.find('\0') != std::string::npos)
      throw EDatabaseError(
          Format("Cannot execute a statement, parameter %d: the engine has no character U+0000", FTexts.size()));
    if (Text.size() > std::numeric_limits<int>::max())
      throw EDatabaseError(Format("Cannot execute a statement, parameter %d: %d bytes are more than the engine takes",
                                  FTexts.size(), Text.size()));
    FValues.push_back(Value.IsNull() ? nullptr : Text.c_str());
    FTypes.push_back(IsBytes ? PostgreSQLBytesType : 0);
    FLengths.push_back(static_cast<int>(Text.size()));
    FFormats.push_back(IsBytes ? 1 : 0);
  }
}

}  // namespace velkrund
