#include "jobs/resources/PoReader.h"

#include <algorithm>

#include "jobs/resources/PoWriter.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view Blanks = " \t\f\v\r";

bool IsWordPart(char Char) { return (Char >= 'a' && Char <= 'z') || Char == '_'; }

/// The value of a digit; beyond every base where it is none.
unsigned DigitOf(char Char) {
  if (Char >= '0' && Char <= '9') return static_cast<unsigned>(Char - '0');
  const char Small = static_cast<char>(Char | 0x20);
  return Small >= 'a' && Small <= 'f' ? static_cast<unsigned>(Small - 'a') + 10 : 99;
}

/// The number behind one of the prefixes; nothing where there is none.
std::optional<int> PageNumber(std::string_view Name) {
  for (const std::string_view Prefix : {"windows-", "cp", "cp-"}) {
    if (!SameText(Name.substr(0, Prefix.size()), Prefix)) continue;
    if (const auto Number = StrToInt32(Name.substr(Prefix.size()))) return *Number;
  }
  return std::nullopt;
}

/// The value of the field in a header; where there are several, of the first.
std::string FieldOf(std::string_view Header, std::string_view Name) {
  while (!Header.empty()) {
    const std::string_view Line = Header.substr(0, Header.find('\n'));
    Header.remove_prefix(std::min(Header.size(), Line.size() + 1));
    const std::size_t Colon = Line.find(':');
    if (Colon != std::string_view::npos && SameText(Trim(Line.substr(0, Colon)), Name))
      return std::string(Trim(Line.substr(Colon + 1)));
  }
  return {};
}

std::string_view CharsetOf(std::string_view ContentType) {
  constexpr std::string_view Mark = "charset=";
  const std::size_t At = LowerCase(ContentType).find(Mark);
  if (At == std::string::npos) return {};
  ContentType.remove_prefix(At + Mark.size());
  return ContentType.substr(0, ContentType.find_first_of("; \t"));
}

}  // namespace

TPoReader::TPoReader(TStream& Stream, std::string FileName) : FStream(Stream), FFileName(std::move(FileName)) {
  Advance();
  const TPoPlace Start = NextPlace();
  TPoEntry Entry;
  if (!ReadEntry(Entry)) return;
  if (!Entry.Context && Entry.Id.empty()) {
    TakeHeader(Entry);
  } else {
    FObsolete = 0;
    SeekTo(Start);
  }
}

void TPoReader::SeekTo(const TPoPlace& Place) {
  FStream.SetPosition(Place.Position);
  FLineNumber = Place.Line - 1;
  ReadLine();
  FAt = Place.Column;
  Advance();
}

void TPoReader::Refuse(std::int64_t Line, const std::string& Text, TErrorCode Code) const {
  // What it quotes may be no text at all.
  std::string Message;
  AppendStrictUtf8(Message, Text);
  throw EPoError(Message, {.Code = Code, .File = FFileName, .Line = Line});
}

std::string TPoReader::Field(std::string_view Name) const { return FieldOf(FHeader, Name); }

bool TPoReader::Next(TPoEntry& Entry) {
  if (!ReadEntry(Entry)) return false;
  if (!Entry.Context && Entry.Id.empty())
    Refuse(Entry.Line,
           "an empty msgid without msgctxt is the header, which has to stand in front of all entries, once");
  if (Entry.Context) Decode(*Entry.Context, Entry.Line);
  Decode(Entry.Id, Entry.Line);
  Decode(Entry.Text, Entry.Line);
  Decode(Entry.Section, Entry.Line);
  return true;
}

void TPoReader::TakeHeader(const TPoEntry& Header) {
  FHeader = Header.Text;
  SetCharset(CharsetOf(Field("Content-Type")), Header.Line);
  Decode(FHeader, Header.Line);
}

void TPoReader::SetCharset(std::string_view Name, std::int64_t Line) {
  if (Name.empty() || SameText(Name, "UTF-8") || SameText(Name, "UTF8")) return;
  FCharsetName = Name;
  FCharset = TCharset::Ascii;
  // The last one is what a template has before anybody has filled it in.
  if (SameText(Name, "ASCII") || SameText(Name, "US-ASCII") || SameText(Name, "CHARSET")) return;
  const std::optional<int> Number = PageNumber(Name);
  FCodePage = Number ? TCodePage::Find(*Number) : nullptr;
  if (!FCodePage)
    Refuse(Line, Format("the charset %s is not read; msgconv -t UTF-8 -o NEW.po '%s' converts the catalogue", Name,
                        FFileName));
  FCharset = TCharset::CodePage;
}

void TPoReader::Decode(std::string& Text, std::int64_t Line) const {
  if (Text.find('\0') != std::string::npos) Refuse(Line, "a text has the character U+0000, which nothing can hold");
  if (AsciiPrefix(Text) == Text.size()) return;
  if (FCharset == TCharset::CodePage) {
    std::string Decoded;
    FCodePage->Decode(Text, Decoded);
    Text = std::move(Decoded);
  } else if (FCharset == TCharset::Ascii) {
    Refuse(Line, Format("a text has characters beyond ASCII, and the charset of the header is %s: it has to be the one "
                        "that they are written in",
                        FCharsetName));
  } else if (!IsStrictUtf8(Text)) {
    Refuse(Line, "a text is not UTF-8: the charset of the header has to be the one that it is written in");
  }
}

/// Texts as they stand in the file.
bool TPoReader::ReadEntry(TPoEntry& Entry) {
  Entry = {};
  FFuzzy = false;
  FSection.clear();
  for (; FKind == TKind::Comment; Advance()) TakeComment();
  if (FKind == TKind::End) return false;
  Entry.Line = FLineNumber;
  Entry.IsFuzzy = FFuzzy;
  Entry.Section = std::move(FSection);
  if (IsWord("domain"))
    Refuse(FLineNumber, "catalogues of several domains are not read: give each domain a file of its own");
  if (IsWord("msgctxt")) TakeStrings(Entry.Context.emplace());
  Expect("msgid", Entry.Context ? "msgctxt" : "the entry before");
  TakeStrings(Entry.Id);
  TakeTexts(Entry);
  return true;
}

void TPoReader::TakeTexts(TPoEntry& Entry) {
  if (!IsWord("msgid_plural")) {
    Expect("msgstr", "msgid");
    return TakeStrings(Entry.Text);
  }
  Entry.IsPlural = true;
  std::string Form;
  TakeStrings(Form);
  int Index = 0;
  for (; IsWord("msgstr", Index); ++Index) TakeStrings(Form);
  if (Index == 0) Expect("msgstr[0]", "msgid_plural");
}

bool TPoReader::IsWord(std::string_view Word, std::optional<int> Index) const {
  return FKind == TKind::Word && FToken == Word && FIndex == Index.value_or(-1);
}

void TPoReader::Expect(std::string_view Word, std::string_view Behind) {
  if (!IsWord(Word))
    Refuse(FLineNumber, Format("%s is expected behind %s, and there is %s", Word, Behind, TokenText()));
}

std::string TPoReader::TokenText() const {
  if (FKind == TKind::End) return "the end of the file";
  if (FKind == TKind::Comment) return "a comment";
  if (FKind == TKind::String) return "one more text";
  return "'" + Shortened(FToken) + (FIndex < 0 ? "" : Format("[%d]", FIndex)) + "'";
}

/// Those behind a keyword.
void TPoReader::TakeStrings(std::string& Raw) {
  const std::string Keyword = FToken;
  Raw.clear();
  Advance();
  if (FKind != TKind::String)
    Refuse(FLineNumber, Format("a text between \" is expected behind %s, and there is %s", Keyword, TokenText()));
  for (; FKind == TKind::String; Advance()) Raw += FToken;
}

void TPoReader::TakeComment() {
  const std::string_view Text = FToken;
  if (Text.starts_with('~')) {
    // What stands in front belongs to it.
    FFuzzy = false;
    FSection.clear();
    const std::string_view Line = Trim(Text.substr(1));
    constexpr std::string_view Word = "msgid";
    if (Line.starts_with(Word) && (Line.size() == Word.size() || !IsWordPart(Line[Word.size()]))) ++FObsolete;
  } else if (Text.starts_with(',')) {
    for (std::size_t At = 0; At < Text.size();) {
      const std::size_t End = std::min(Text.find(',', At + 1), Text.size());
      if (Trim(Text.substr(At + 1, End - At - 1)) == "fuzzy") FFuzzy = true;
      At = End;
    }
  } else if (Text.starts_with(PoSectionMark)) {
    // No writer puts control characters there.
    const std::string_view Section = Trim(Text.substr(PoSectionMark.size()));
    if (std::none_of(Section.begin(), Section.end(), IsPoControl)) FSection = Section;
  }
}

bool TPoReader::ReadLine() {
  FLine.clear();
  FAt = 0;
  FLinePosition = FStream.Position();
  bool Ended = false;
  std::string_view Ready = FStream.Peek();
  if (Ready.empty()) return false;
  for (; !Ended && !Ready.empty(); Ready = Ended ? Ready : FStream.Peek()) {
    const std::size_t End = Ready.find('\n');
    Ended = End != std::string_view::npos;
    FLine += Ready.substr(0, End);
    FStream.Seek(static_cast<std::int64_t>(Ended ? End + 1 : Ready.size()), TSeekOrigin::Current);
  }
  if (FLine.ends_with('\r')) FLine.pop_back();
  if (++FLineNumber == 1 && FLine.starts_with(ByteOrderMark)) FAt = ByteOrderMark.size();
  return true;
}

void TPoReader::Advance() {
  FToken.clear();
  FIndex = -1;
  while ((FAt = FLine.find_first_not_of(Blanks, FAt)) == std::string::npos)
    if (!ReadLine()) {
      FKind = TKind::End;
      FAt = FLine.size();
      return;
    }
  FTokenAt = FAt;
  if (FLine[FAt] == '"') return TakeString();
  if (FLine[FAt] != '#') return TakeWord();
  FKind = TKind::Comment;
  FToken.assign(FLine, FAt + 1);
  FAt = FLine.size();
}

void TPoReader::TakeWord() {
  FKind = TKind::Word;
  while (FAt < FLine.size() && IsWordPart(FLine[FAt])) FToken += FLine[FAt++];
  if (FToken.empty()) {
    const std::string Found(Shortened(Trim(std::string_view(FLine).substr(FAt)), 20));
    Refuse(FLineNumber, Format("a keyword such as msgid, a text between \" or a comment is expected, and there is '%s'",
                               IsStrictUtf8(Found) ? Found : "something else"));
  }
  const std::size_t Open = FLine.find_first_not_of(Blanks, FAt);
  if (Open == std::string::npos || FLine[Open] != '[') return;
  const std::size_t Close = FLine.find(']', Open);
  const auto Index = StrToInt32(Trim(std::string_view(FLine).substr(Open + 1, Close - Open - 1)));
  if (Close == std::string::npos || !Index || *Index < 0)
    Refuse(FLineNumber, Format("%s[ is not followed by a number and ]", FToken));
  FIndex = *Index;
  FAt = Close + 1;
}

void TPoReader::TakeString() {
  FKind = TKind::String;
  for (++FAt;;) {
    const std::size_t Stop = FLine.find_first_of("\"\\", FAt);
    if (Stop == std::string::npos) Refuse(FLineNumber, "a text does not end on its line: \" is missing");
    FToken.append(FLine, FAt, Stop - FAt);
    FAt = Stop + 1;
    if (FLine[Stop] == '"') return;
    TakeEscape();
  }
}

/// Behind the backslash.
void TPoReader::TakeEscape() {
  constexpr std::string_view Letters = "abfnrtv\"\\", Meanings = "\a\b\f\n\r\t\v\"\\";
  const char Letter = FAt < FLine.size() ? FLine[FAt] : '\0';
  const std::size_t Index = Letter ? Letters.find(Letter) : std::string_view::npos;
  if (Index != std::string_view::npos) {
    FToken += Meanings[Index];
    ++FAt;
  } else if (Letter == 'x') {
    ++FAt;
    TakeNumber(16, FLine.size());
  } else if (DigitOf(Letter) < 8) {
    TakeNumber(8, 3);
  } else {
    Refuse(FLineNumber, "a backslash is followed by what is no escape: \\\\ stands for one");
  }
}

void TPoReader::TakeNumber(unsigned Base, std::size_t MaxDigits) {
  unsigned Value = 0;
  std::size_t Digits = 0;
  for (; Digits < MaxDigits && FAt < FLine.size() && DigitOf(FLine[FAt]) < Base && Value <= 0xFF; ++Digits)
    Value = Value * Base + DigitOf(FLine[FAt++]);
  if (Digits == 0 || Value > 0xFF)
    Refuse(FLineNumber, "an escape is no byte: it stands for \\0 to \\377, \\x0 to \\xff");
  FToken += static_cast<char>(Value);
}

}  // namespace velkrund
