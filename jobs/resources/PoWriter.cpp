#include "jobs/resources/PoWriter.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// Control characters without a letter of their own take three octal digits, so that digits may follow.
void AppendEscaped(std::string& Out, char Char) {
  constexpr std::string_view Letters = "abfnrtv\"\\", Meanings = "\a\b\f\n\r\t\v\"\\";
  const std::size_t Index = Meanings.find(Char);
  if (Index != std::string_view::npos) {
    (Out += '\\') += Letters[Index];
  } else if (IsPoControl(Char)) {
    (((Out += "\\") += static_cast<char>('0' + Char / 64)) += static_cast<char>('0' + Char / 8 % 8)) +=
        static_cast<char>('0' + Char % 8);
  } else {
    Out += Char;
  }
}

}  // namespace

void TPoWriter::WriteHeader(std::string_view Language, std::string_view SourceLanguage) {
  AppendText("msgid", {});
  AppendText("msgstr", Format("MIME-Version: 1.0\n"
                              "Content-Type: text/plain; charset=UTF-8\n"
                              "Content-Transfer-Encoding: 8bit\n"
                              "Language: %s\n"
                              "%s: %s\n",
                              Language, PoSourceLanguage, SourceLanguage));
  Flush();
}

void TPoWriter::WriteEntry(std::string_view Section, std::string_view StringID, std::string_view Source,
                           std::string_view Target) {
  FBuffer += '\n';
  if (std::none_of(Section.begin(), Section.end(), IsPoControl))
    ((((FBuffer += '#') += PoSectionMark) += ' ') += Section) += '\n';
  AppendText("msgctxt", StringID);
  AppendText("msgid", Source);
  AppendText("msgstr", Target);
  Flush();
}

/// Each line of a text that has several stands on its own, below the keyword.
void TPoWriter::AppendText(std::string_view Keyword, std::string_view Text) {
  (FBuffer += Keyword) += ' ';
  if (Text.find('\n') < Text.size() - 1) FBuffer += "\"\"\n";
  do {
    const std::size_t End = std::min(Text.find('\n'), Text.size() - 1) + 1;
    FBuffer += '"';
    for (const char Char : Text.substr(0, End)) AppendEscaped(FBuffer, Char);
    FBuffer += "\"\n";
    Text.remove_prefix(Text.empty() ? 0 : End);
  } while (!Text.empty());
}

void TPoWriter::Flush() {
  FStream.Write(FBuffer);
  FBuffer.clear();
}

}  // namespace velkrund
