#include "standalone/drivers/sqlite/SQLiteDeclarations.h"

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

using TKind = TSQLiteToken::TKind;

/// A name in a statement, which another may take the place of.
struct TPlace {
  std::size_t Start, Behind;
  std::string Name;
};

TPlace TakePlace(TSQLiteTokenReader& Tokens) {
  const TSQLiteToken& Token = Tokens.Peek();
  return {Token.Start, Token.Behind(), Tokens.TakeName()};
}

/// A name behind which others may be as parts of it; the place is that of all.
TPlace TakeQualified(TSQLiteTokenReader& Tokens) {
  TPlace Result = TakePlace(Tokens);
  while (Tokens.TakeIf('.')) {
    const TPlace Last = TakePlace(Tokens);
    Result = {Result.Start, Last.Behind, Last.Name};
  }
  return Result;
}

void PassIfNotExists(TSQLiteTokenReader& Tokens) {
  if (!Tokens.Peek().Is("IF") || !Tokens.Peek(1).Is("NOT")) return;
  Tokens.Take(), Tokens.Take();
  Tokens.Expect("EXISTS");
}

struct TPlaces {
  TPlace Name, Table;
};

/// Up to the table's name.
TPlaces PassIndexHead(TSQLiteTokenReader& Tokens, bool& Unique) {
  Tokens.Expect("CREATE");
  Unique = Tokens.TakeIf("UNIQUE");
  Tokens.Expect("INDEX");
  PassIfNotExists(Tokens);
  TPlace Name = TakeQualified(Tokens);
  Tokens.Expect("ON");
  return {std::move(Name), TakeQualified(Tokens)};
}

TPlaces PassTriggerHead(TSQLiteTokenReader& Tokens) {
  Tokens.Expect("CREATE");
  if (!Tokens.TakeIf("TEMP")) Tokens.TakeIf("TEMPORARY");
  Tokens.Expect("TRIGGER");
  PassIfNotExists(Tokens);
  TPlace Name = TakeQualified(Tokens);
  // Columns of UPDATE OF may have any name that stands between quotes.
  while (!Tokens.TakeIf("ON")) Tokens.Take();
  return {std::move(Name), TakeQualified(Tokens)};
}

std::string Replaced(std::string_view Statement, const TPlaces& Places, std::string_view Name, std::string_view Table) {
  std::string Result(Statement);
  const auto Replace = [&](const TPlace& Place, std::string_view New) {
    // What is the same in another case stays as people wrote it.
    if (!SameSQLiteName(Place.Name, New))
      Result.replace(Place.Start, Place.Behind - Place.Start, QuoteStandardName(New));
  };
  Replace(Places.Table, Table);
  Replace(Places.Name, Name);
  return Result;
}

bool EndsColumn(const TSQLiteToken& Token) {
  return Token.IsSymbol(',') || Token.IsSymbol(')') || Token.Kind == TKind::End;
}

/// Whether words that follow an expression come next: COLLATE name, ASC, DESC, and then its end.
bool IsAtWords(const TSQLiteTokenReader& Tokens) {
  std::size_t Ahead = 0;
  if (Tokens.Peek().Is("COLLATE")) Ahead = 2;
  if (Tokens.Peek(Ahead).Is("ASC") || Tokens.Peek(Ahead).Is("DESC")) ++Ahead;
  return EndsColumn(Tokens.Peek(Ahead));
}

TSQLiteIndexedColumn ReadIndexedColumn(TSQLiteTokenReader& Tokens) {
  TSQLiteIndexedColumn Result;
  const TSQLiteToken First = Tokens.Peek();
  do {
    if (Tokens.Peek().IsSymbol('('))
      Tokens.TakeBracketed();
    else
      Tokens.Take();
  } while (!IsAtWords(Tokens));
  const std::string_view Text = Tokens.Since(First.Start);
  Result.IsName = First.IsName() && Text.size() == First.Text.size();
  Result.Text = Result.IsName ? First.Name() : std::string(Text);
  if (Tokens.TakeIf("COLLATE")) Result.Collate = Tokens.TakeName();
  Result.Descending = Tokens.TakeIf("DESC");
  if (!Result.Descending) Tokens.TakeIf("ASC");
  return Result;
}

}  // namespace

TSQLiteIndexDeclaration ReadIndexDeclaration(std::string_view Statement, std::string_view IndexName) {
  TSQLiteTokenReader Tokens(Statement, Format("index '%s'", IndexName));
  TSQLiteIndexDeclaration Result;
  PassIndexHead(Tokens, Result.Unique);
  Tokens.Expect('(');
  do Result.Columns.push_back(ReadIndexedColumn(Tokens));
  while (Tokens.TakeIf(','));
  Tokens.Expect(')');
  Result.Partial = Tokens.TakeIf("WHERE");
  if (Result.Partial == Tokens.IsAtEnd()) Tokens.Fail();
  return Result;
}

TSQLiteViewDeclaration ReadViewDeclaration(std::string_view Statement, std::string_view ViewName) {
  TSQLiteTokenReader Tokens(Statement, Format("view '%s'", ViewName));
  TSQLiteViewDeclaration Result;
  Tokens.Expect("CREATE");
  Tokens.Expect("VIEW");
  PassIfNotExists(Tokens);
  TakeQualified(Tokens);
  if (Tokens.TakeIf('(')) {
    do Result.Columns.push_back(Tokens.TakeName());
    while (Tokens.TakeIf(','));
    Tokens.Expect(')');
  }
  Tokens.Expect("AS");
  if (Tokens.IsAtEnd()) Tokens.Fail();
  Result.Query = std::string(Statement.substr(Tokens.Peek().Start));
  return Result;
}

std::string RenamedIndex(std::string_view Statement, std::string_view Name, std::string_view Table) {
  TSQLiteTokenReader Tokens(Statement, Format("index '%s'", Name));
  bool Unique = false;
  const TPlaces Places = PassIndexHead(Tokens, Unique);
  return Replaced(Statement, Places, Name, Table);
}

std::string RenamedTrigger(std::string_view Statement, std::string_view Name, std::string_view Table) {
  TSQLiteTokenReader Tokens(Statement, Format("trigger '%s'", Name));
  return Replaced(Statement, PassTriggerHead(Tokens), Name, Table);
}

}  // namespace velkrund
