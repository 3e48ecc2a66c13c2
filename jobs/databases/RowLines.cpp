#include "jobs/databases/RowLines.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t BytesAtOnce = 64 * 1024;

bool IsControl(char32_t Code) { return Code < 0x20 || (Code >= 0x7F && Code < 0xA0); }

/// The letter behind the backslash; 0: there is none.
char EscapeOf(char32_t Code) {
  switch (Code) {
    case '\t':
      return 't';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\\':
      return '\\';
    default:
      return 0;
  }
}

}  // namespace

void TRowLines::BeginCell() {
  if (FInRow) FLines += '\t';
  FInRow = true;
}

void TRowLines::Add(const TKvVariant& Value) {
  BeginCell();
  if (Value.IsNull()) {
    FLines += "\\N";
  } else if (Value.Kind() == TKvKind::Bytes) {
    AppendBytes(Value.AsText());
  } else {
    FScratch.clear();
    if (IsAnsiKind(Value.Kind()))
      WorkSettings().AnsiCodePage->Decode(Value.AsText(), FScratch);
    else
      Value.AppendAsText(FScratch);
    AppendText(FScratch);
  }
}

void TRowLines::AddText(std::string_view Text) {
  BeginCell();
  AppendText(Text);
}

void TRowLines::AppendText(std::string_view Text) {
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Text, At);
    const std::string_view Bytes = Text.substr(Start, At - Start);
    const bool Malformed = Code == 0xFFFD && Bytes != ReplacementUtf8;
    if (const char Letter = EscapeOf(Code)) {
      FLines += '\\';
      FLines += Letter;
    } else if (Malformed || IsControl(Code)) {
      AppendBytes(Bytes);
    } else {
      FLines += Bytes;
    }
  }
}

void TRowLines::AppendBytes(std::string_view Bytes) {
  for (const char& Byte : Bytes) {
    FLines += "\\x";
    AppendHex(FLines, {&Byte, 1});
  }
}

void TRowLines::EndRow() {
  FLines += '\n';
  FInRow = false;
  if (FLines.size() >= BytesAtOnce) End();
}

void TRowLines::End() {
  if (!FLines.empty()) FTake(FLines);
  FLines.clear();
}

}  // namespace velkrund
