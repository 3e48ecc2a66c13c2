#include "velkrund/dsp/VariantForms.h"

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

constexpr std::size_t ShortestForm = 3;

[[noreturn]] void FormError(std::string_view What) {
  throw EDSPUtilError(std::string("Error importing DSP structure. ").append(What));
}

}  // namespace

void InvalidVariantKind(TKvKind Kind) {
  throw EDSPError(Format("Invalid variant type of node value for export: %d", static_cast<int>(Kind)));
}

void UnknownVariantWord() { FormError("Invalid variant type of value"); }

void ReadVariantForm(std::string_view Text, const TFormReader& Reader, TKvVariant& Value) {
  if (SameAsciiWord(Text, "NULL")) return Value.SetNull();
  if (Utf16Length(Text.substr(0, 4 * ShortestForm)) < ShortestForm)
    FormError("Unexpected end of line while reading variant value");
  if (Text.back() != ')') FormError("')' symbol expected while reading variant value");
  Text.remove_suffix(1);
  const std::size_t Open = Text.find('(');
  const std::string Word = UpperCase(Text.substr(0, Open));
  const std::string_view Inside = Open == std::string_view::npos ? std::string_view() : Text.substr(Open + 1);
  bool Converted = false;
  try {
    Converted = Reader(Word, Inside, Value);
  } catch (const EConvertError&) {
    // Said below, in the words for all forms.
  }
  if (!Converted) FormError("Invalid variant value");
}

}  // namespace velkrund
