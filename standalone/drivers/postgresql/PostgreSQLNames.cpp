#include "standalone/drivers/postgresql/PostgreSQLNames.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::size_t MaxNameBytes = 63;

/// The most bytes up to Length that end with a whole character.
std::string_view Clipped(std::string_view Name, std::size_t Length) {
  if (Length >= Name.size()) return Name;
  while (Length > 0 && (static_cast<unsigned char>(Name[Length]) & 0xC0U) == 0x80U) --Length;
  return Name.substr(0, Length);
}

/// Where the quoted piece that begins at From ends.
std::size_t EndOfQuoted(std::string_view Text, std::size_t From) {
  const char Quote = Text[From];
  for (std::size_t I = From + 1; I < Text.size(); ++I) {
    if (Text[I] != Quote) continue;
    if (I + 1 < Text.size() && Text[I + 1] == Quote) {
      ++I;
      continue;
    }
    return I + 1;
  }
  return Text.size();
}

}  // namespace

bool IsNameCharacter(char C) {
  return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') || (C >= '0' && C <= '9') || C == '_' || C == '$' ||
         (static_cast<unsigned char>(C) & 0x80U) != 0;
}

void CheckPostgreSQLName(std::string_view Name, std::string_view What) {
  std::string_view Fault;
  if (Name.empty()) Fault = "it is empty";
  if (Name.size() > MaxNameBytes) Fault = "PostgreSQL cuts names after 63 bytes";
  if (Name.find('\0') != std::string_view::npos) Fault = "PostgreSQL has no character U+0000";
  if (!Fault.empty()) throw EDatabaseError(Format("Cannot make %s by the name '%s': %s", What, Name, Fault));
}

std::string GivenPostgreSQLName(std::string_view First, std::string_view Second, std::string_view Label) {
  const std::size_t Rest = MaxNameBytes - Label.size() - (Second.empty() ? 1 : 2);
  std::size_t FirstLength = First.size();
  std::size_t SecondLength = Second.size();
  while (FirstLength + SecondLength > Rest) --(FirstLength > SecondLength ? FirstLength : SecondLength);
  std::string Result(Clipped(First, FirstLength));
  if (!Second.empty()) Result.append("_").append(Clipped(Second, SecondLength));
  return Result.append("_").append(Label);
}

std::string NamesInName(const std::vector<std::string>& Names) {
  std::string Result;
  for (const std::string& Name : Names) {
    if (!Result.empty()) Result += '_';
    Result += Name;
    if (Result.size() > MaxNameBytes) break;
  }
  return Result;
}

std::size_t EndOfPostgreSQLName(std::string_view Text, std::size_t From) {
  while (From < Text.size()) {
    if (Text[From] == '"')
      From = EndOfQuoted(Text, From);
    else
      while (From < Text.size() && IsNameCharacter(Text[From])) ++From;
    if (From >= Text.size() || Text[From] != '.') break;
    ++From;
  }
  return From;
}

std::vector<std::string> SplitPostgreSQLNames(std::string_view List) {
  std::vector<std::string> Result;
  for (std::size_t From = 0; From < List.size();) {
    const std::size_t End = EndOfPostgreSQLName(List, From);
    if (End == From) throw EDatabaseError(Format("'%s' is no list of names", List));
    Result.emplace_back(List.substr(From, End - From));
    From = List.find_first_not_of(", ", End);
  }
  return Result;
}

std::string PlainPostgreSQLName(std::string_view SQLName) {
  std::string Result;
  bool IsQuoted = false;
  for (std::size_t I = 0; I < SQLName.size(); ++I) {
    if (SQLName[I] != '"') {
      Result += SQLName[I];
    } else if (IsQuoted && I + 1 < SQLName.size() && SQLName[I + 1] == '"') {
      Result += SQLName[I++];
    } else {
      IsQuoted = !IsQuoted;
    }
  }
  return Result;
}

std::string OnPostgreSQLTable(const std::string& Statement, std::string_view SQLName) {
  constexpr std::string_view On = " ON ";
  constexpr std::string_view Only = "ONLY ";
  for (std::size_t I = 0; I < Statement.size();) {
    if (Statement[I] == '"' || Statement[I] == '\'') {
      I = EndOfQuoted(Statement, I);
    } else if (Statement.compare(I, On.size(), On) == 0) {
      std::size_t Name = I + On.size();
      if (Statement.compare(Name, Only.size(), Only) == 0) Name += Only.size();
      return Statement.substr(0, I + On.size()) + std::string(SQLName) +
             Statement.substr(EndOfPostgreSQLName(Statement, Name));
    } else {
      ++I;
    }
  }
  throw EDatabaseError(Format("The statement names no table: %s", Statement));
}

std::string NamedInPostgreSQL(std::string Statement, std::string_view Kind, std::string_view SQLName) {
  // No name comes before the kind.
  const std::string Word = " " + std::string(Kind) + " ";
  const std::size_t At = Statement.find(Word);
  if (At == std::string::npos) throw EDatabaseError(Format("The statement makes no %s: %s", Kind, Statement));
  const std::size_t Name = At + Word.size();
  return Statement.replace(Name, EndOfPostgreSQLName(Statement, Name) - Name, SQLName);
}

std::string PostgreSQLArray(const std::vector<std::string>& Texts) {
  std::string Result = "{";
  for (const std::string& Text : Texts) {
    Result += Result.size() > 1 ? ",\"" : "\"";
    for (const char C : Text) {
      if (C == '"' || C == '\\') Result += '\\';
      Result += C;
    }
    Result += '"';
  }
  return Result += '}';
}

std::string QuotePostgreSQLText(std::string_view Text) {
  const bool Escaped = Text.find('\\') != std::string_view::npos;
  std::string Result = Escaped ? "E'" : "'";
  for (const char C : Text) {
    if (C == '\'' || C == '\\') Result += C;
    Result += C;
  }
  return Result += '\'';
}

}  // namespace velkrund
