#include "jobs/resources/PoReader.h"

#include <gtest/gtest.h>

#include "jobs/resources/PoWriter.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

const std::string Utf8 = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";

std::string WithCharset(const std::string& Charset, const std::string& Entries) {
  return "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=" + Charset + "\\n\"\n" + Entries;
}

/// Every entry as LINE:CONTEXT|ID|TEXT, with marks in front, or the error as f:LINE: and its beginning.
std::string Dump(const std::string& Catalogue) {
  TMemoryStream Stream;
  Stream.Write(Catalogue);
  Stream.SetPosition(0);
  std::string Result;
  try {
    TPoReader Reader(Stream, "f");
    for (TPoEntry Entry; Reader.Next(Entry);)
      Result += Format("%s%s%d:%s%s|%s|%s\n", Entry.IsFuzzy ? "fuzzy " : "", Entry.IsPlural ? "plural " : "",
                       Entry.Line, Entry.Section.empty() ? "" : "(" + Entry.Section + ")", Entry.Context.value_or("-"),
                       Entry.Id, Entry.Text);
    if (Reader.ObsoleteEntries() > 0) Result += Format("%d obsolete\n", Reader.ObsoleteEntries());
  } catch (const EPoError& Error) {
    Result += Format("%s:%d: %s\n", Error.Info().File, Error.Info().Line, Error.what());
  }
  return Result;
}

TEST(PoReader, ReadsEntries) {
  const struct {
    std::string Catalogue, Dump;
  } Cases[] = {
      {"", ""},
      {Utf8, ""},
      {"\n# only comments\n#, fuzzy", ""},
      {"msgctxt \"A\"\nmsgid \"a\"\nmsgstr \"b\"\n", "1:A|a|b\n"},
      {"\xEF\xBB\xBF" + Utf8 + "msgid \"a\"\nmsgstr \"b\"", "3:-|a|b\n"},
      {"msgctxt \"A\"\r\nmsgid \"\"\r\n\"x\\r\\n\"\r\n\"y\"\r\nmsgstr \"\"\r\n", "1:A|x\r\ny|\n"},
      {"  msgid\"a\" \"b\"\t msgstr\n\n\n\"c\"msgid \"d\" msgstr \"e\"", "1:-|ab|c\n4:-|d|e\n"},
      {R"(msgid "\a\b\f\n\r\t\v\"\\\1\12\1234\x9\X")",
       "f:1: a backslash is followed by what is no escape: \\\\ "
       "stands for one\n"},
      {R"(msgid "\a\b\f\n\r\t\v\"\\\1\12\1234\x9" "\x41" msgstr "")", "1:-|\a\b\f\n\r\t\v\"\\\1\nS4\tA|\n"},
      {"# t\n#. e\n#: r:1\n#, c-format, fuzzy\n#| msgid \"old\"\nmsgid \"a\"\nmsgstr \"b\"\n"
       "msgid \"c\"\nmsgstr \"d\"\n",
       "fuzzy 6:-|a|b\n8:-|c|d\n"},
      {"#, no-fuzzy\nmsgid \"a\"\nmsgstr \"b\" # behind\n", "2:-|a|b\n"},
      {"msgid \"a\"\nmsgid_plural \"as\"\nmsgstr[0] \"b\"\nmsgstr [1] \"c\"\nmsgid \"d\"\nmsgstr \"e\"\n",
       "plural 1:-|a|\n5:-|d|e\n"},
      {"#, fuzzy\n#. velkrund-section: S\n#~ msgctxt \"x\"\n#~ msgid \"a\"\n#~ msgstr \"b\"\n#~| msgid \"p\"\n"
       "#~msgid \"b\"\n#~msgid_plural \"c\"\nmsgid \"d\"\nmsgstr \"e\"\n",
       "9:-|d|e\n2 obsolete\n"},
      {"#. velkrund-section:  K_A \nmsgctxt \"K_A_B\"\nmsgid \"\"\nmsgstr \"x\"\n", "2:(K_A)K_A_B||x\n"},
      {WithCharset("CP1251", "msgid \"\xC4\xE0\\304\"\nmsgstr \"\xFF\"\n"), "3:-|ДаД|я\n"},
      {WithCharset("windows-1252", "msgid \"\xE9\"\nmsgstr \"\"\n"), "3:-|é|\n"},
      {WithCharset("us-ascii", "# \xFF\nmsgid \"e\"\nmsgstr \"\"\n"), "4:-|e|\n"},
      {Utf8 + "msgid \"\\320\\224\\xd0\\xb0\"\nmsgstr \"\xF0\x9F\x98\x80\"\n", "3:-|Да|😀\n"},
  };
  for (const auto& [Catalogue, Expected] : Cases) EXPECT_EQ(Dump(Catalogue), Expected) << Catalogue;
}

TEST(PoReader, SaysWhatIsWrongOnWhichLine) {
  const std::string Good = "msgid \"a\"\nmsgstr \"b\"\n";
  const struct {
    std::string Catalogue;
    int Line;
    std::string Says;
  } Cases[] = {
      {Good + "msgid \"x\nmsgstr \"\"\n", 3, "does not end on its line"},
      {Good + "msgid x\n", 3, "a text between \" is expected behind msgid, and there is 'x'"},
      {Good + "msgid \"x\"\n", 3, "msgstr is expected behind msgid, and there is the end of the file"},
      {Good + "msgid \"x\"\n# c\nmsgstr \"\"\n", 4, "and there is a comment"},
      {Good + "msgctxt \"x\"\nmsgstr \"\"\n", 4, "msgid is expected behind msgctxt, and there is 'msgstr'"},
      {Good + "msgstr \"\"\n", 3, "msgid is expected behind the entry before"},
      {Good + "\"x\" 5\n", 3, "expected, and there is '5'"},
      {Good + "\xFF\n", 3, "there is 'something else'"},
      {Good + "domain \"x\"\n", 3, "several domains"},
      {Good + "msgid \"x\"\nmsgid_plural \"y\"\nmsgstr \"z\"\n", 5, "msgstr[0] is expected behind msgid_plural"},
      {Good + "msgid \"x\"\nmsgid_plural \"y\"\nmsgstr[0] \"z\"\nmsgstr[2] \"z\"\n", 6, "there is 'msgstr[2]'"},
      {Good + "msgid \"x\"\nmsgstr[x] \"z\"\n", 4, "is not followed by a number"},
      {Good + "msgid \"x\\\"\n", 3, "does not end on its line"},
      {Good + "msgid \"x\\", 3, "no escape"},
      {Good + "msgid \"\\400\"\n", 3, "an escape is no byte"},
      {Good + "msgid \"\\xg\"\n", 3, "an escape is no byte"},
      {Good + "msgid \"\\x123\"\n", 3, "an escape is no byte"},
      {Good + "msgid \"\\0\"\nmsgstr \"\"\n", 3, "U+0000"},
      {Good + Utf8, 3, "the header, which has to stand in front"},
      {Utf8 + Utf8, 3, "the header, which has to stand in front"},
      {Utf8 + "msgid \"\xC4\"\nmsgstr \"\"\n", 3, "not UTF-8"},
      {"msgid \"\xED\xA0\x80\"\nmsgstr \"\"\n", 1, "not UTF-8"},
      {WithCharset("CHARSET", "msgid \"\xC4\"\nmsgstr \"\"\n"), 3, "the charset of the header is CHARSET"},
      {WithCharset("GB2312", Good), 1, "the charset GB2312 is not read; msgconv -t UTF-8 -o NEW.po 'f' converts"},
      {WithCharset("CP1249", Good), 1, "the charset CP1249 is not read"},
  };
  for (const auto& [Catalogue, Line, Says] : Cases) {
    const std::string Found = Dump(Catalogue);
    EXPECT_NE(Found.find(Format("f:%d: ", Line)), std::string::npos) << Catalogue << Found;
    EXPECT_NE(Found.find(Says), std::string::npos) << Catalogue << Found;
  }
}

TEST(PoWriter, WritesWhatIsReadAgain) {
  TMemoryStream Stream;
  TPoWriter Writer(Stream);
  Writer.WriteHeader("Russian", "English");
  Writer.WriteEntry("K_A", "K_A_Open", "Open\n\t\"file\"\n", "");
  Writer.WriteEntry("K A", "K A", "",
                    "\\\1"
                    "2\x7F\r\n");
  const std::string Expected =
      R"(msgid ""
msgstr ""
"MIME-Version: 1.0\n"
"Content-Type: text/plain; charset=UTF-8\n"
"Content-Transfer-Encoding: 8bit\n"
"Language: Russian\n"
"X-Source-Language: English\n"

#. velkrund-section: K_A
msgctxt "K_A_Open"
msgid ""
"Open\n"
"\t\"file\"\n"
msgstr ""

#. velkrund-section: K A
msgctxt "K A"
msgid ""
msgstr "\\\0012\177\r\n"
)";
  EXPECT_EQ(Stream.Memory(), Expected);
  EXPECT_EQ(Dump(Expected),
            "10:(K_A)K_A_Open|Open\n\t\"file\"\n|\n17:(K A)K A||\\\1"
            "2\x7F\r\n\n");
  Stream.SetPosition(0);
  const TPoReader Reader(Stream, "f");
  EXPECT_EQ(Reader.Field("language"), "Russian");
  EXPECT_EQ(Reader.Field(PoSourceLanguage), "English");
}

}  // namespace
}  // namespace velkrund::tests
