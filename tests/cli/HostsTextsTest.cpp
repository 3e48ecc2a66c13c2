#include "tests/cli/HostsTest.h"

namespace velkrund::tests {
namespace {

class THostsTextsTest : public THostsTest {
 protected:
  THostsTextsTest() {
    Write("texts.eif",
          "[SECTION]\r\nName = K\r\nType = LocalizedResource\r\nVersion = 200\r\nSectionID = K\r\n[DATA]\r\n"
          " [LANGUAGES]\r\n  A\r\n [STRINGS]\r\n  X:\r\n   A = 'x'\r\n[END]\r\n");
    Write("po.eif", "msgctxt \"K_A\"\nmsgid \"a\"\nmsgstr \"b\"\n");
    Write("fuzzy.eif", "#, fuzzy\nmsgctxt \"K_A\"\nmsgid \"a\"\nmsgstr \"b\"\n");
  }
};

TEST_F(THostsTextsTest, DoAndRefuseTheSame) {
  const std::string D = "DatabaseName=sqlite:w.db";
  Check({
      // Catalogues.
      {{"resources", "import-po", "-d", "sqlite:w.db", "-i", "w.eif", "--language", "B", "--source-language", "A",
        "--add-languages"},
       {"TJobImportPoInterface", D, "FileName=w.eif", "Language=B", "SourceLanguage=A", "AddLanguages=true"},
       "empty.db",
       "po.eif"},
      {{"resources", "import-po", "-d", "sqlite:w.db", "-i", "w.eif", "--language", "B"},
       {"TJobImportPoInterface", D, "FileName=w.eif", "Language=B"},
       "empty.db",
       "po.eif",
       1,
       "no language 'B'"},
      {{"resources", "import-po", "-d", "sqlite:w.db", "-i", "w.eif", "--language", "B", "--add-languages"},
       {"TJobImportPoInterface", D, "FileName=w.eif", "Language=B", "AddLanguages=true"},
       "empty.db",
       "fuzzy.eif",
       1,
       "the entry of the string 'K_A' is fuzzy"},
      {{"resources", "export-po", "-d", "sqlite:w.db", "--all", "-o", "w.eif", "--language", "B", "--source-language",
        "A"},
       {"TJobExportPoInterface", D, "FileName=w.eif", "Language=B", "SourceLanguage=A"},
       "empty.db",
       "",
       1,
       "no language 'A'"},
      // Localized strings.
      {{"languages", "add", "-d", "sqlite:w.db", "A"}, {"TJobAddLanguageInterface", D, "LanguageName=A"}, "rows.db"},
      {{"languages", "remove", "-d", "sqlite:w.db", "A"},
       {"TJobRemoveLanguageInterface", D, "LanguageName=A"},
       "rows.db",
       "",
       1,
       "There is no language 'A'"},
      {{"resources", "set", "-d", "sqlite:w.db", "K_ X", "A", "x"},
       {"TJobSetStringInterface", D, "StringID=K_ X", "Language=A", "Text=x"},
       "rows.db",
       "",
       1,
       "There is no language 'A'"},
      {{"import", "resource", "-d", "sqlite:w.db", "-i", "w.eif"},
       {"TJobImportResourcesInterface", D, "FileName=w.eif"},
       "rows.db",
       "texts.eif",
       1,
       "that the database sqlite:w.db lacks: 'A'"},
      {{"import", "resource", "-d", "sqlite:w.db", "-i", "w.eif", "--add-languages"},
       {"TJobImportResourcesInterface", D, "FileName=w.eif", "AddLanguages=true"},
       "rows.db",
       "texts.eif"},
      {{"export", "resource", "-d", "sqlite:w.db", "--section-id", "K", "-o", "w.eif"},
       {"TJobExportResourcesInterface", D, "SectionIDs=K", "FileName=w.eif"},
       "rows.db",
       "",
       1,
       "There is no resource 'K'"},
      {{"delete", "string", "-d", "sqlite:w.db", "K_X"},
       {"TJobDeleteStringsInterface", D, "StringIDs=K_X"},
       "rows.db",
       "",
       1,
       "There is no string 'K_X'"},
  });
}

}  // namespace
}  // namespace velkrund::tests
