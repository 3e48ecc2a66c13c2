#include "standalone/dictionary/ItemRules.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>

#include "standalone/dictionary/DescriptionWords.h"
#include "standalone/drivers/KeysWithNulls.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

template <typename T>
using TSame = std::function<bool(const T& Stored, const T& Now)>;

/// Surer ways to find the same come first.
template <typename T>
TMatches MatchBy(const std::vector<T>& Stored, const std::vector<T>& Now, std::initializer_list<TSame<T>> Ways) {
  TMatches Matches(Stored.size());
  std::vector<bool> Taken(Now.size(), false);
  for (const TSame<T>& Same : Ways) {
    for (std::size_t I = 0; I < Stored.size(); ++I) {
      for (std::size_t J = 0; J < Now.size() && !Matches[I]; ++J) {
        if (Taken[J] || !Same(Stored[I], Now[J])) continue;
        Matches[I] = J;
        Taken[J] = true;
      }
    }
  }
  return Matches;
}

template <typename T>
TMatches MatchByName(const std::vector<T>& Stored, const std::vector<T>& Now) {
  return MatchBy<T>(Stored, Now,
                    {[](const T& A, const T& B) { return A.Name == B.Name; },
                     [](const T& A, const T& B) { return SameText(A.Name, B.Name); }});
}

std::vector<std::string> Names(const std::vector<TDicColumn>& Columns) {
  std::vector<std::string> Result;
  for (const TDicColumn& Column : Columns) Result.push_back(Column.Name);
  return Result;
}

std::vector<std::string> Names(const std::vector<TDicForeignKey::TPair>& Columns) {
  std::vector<std::string> Result;
  for (const TDicForeignKey::TPair& Pair : Columns) Result.push_back(Pair.Column);
  return Result;
}

bool SameReference(const TDicForeignKey& A, const TDicForeignKey& B) {
  return A.FullTable() == B.FullTable() && Names(A.Columns) == Names(B.Columns);
}

// Everything but the words; as an engine says it that lacks a place for some of it.

TDicKey Neutral(TDicKey Key, const TEngineView& View) {
  if (!View.DeferrableKeys) Key.Deferrable = TDicDeferrable::No;
  for (TDicColumn& Column : Key.Columns) Column.Descending &= View.DescendingKeys;
  Key.Words.clear();
  return Key;
}

TDicForeignKey Neutral(TDicForeignKey Key, const TEngineView& View) {
  if (!View.Schemas) Key.Table = Key.FullTable(), Key.Schema.clear();
  if (!View.UncheckedKeys) Key.NotChecked = false;
  Key.Words.clear();
  return Key;
}

void Append(std::string& Text, std::string_view Word, const std::optional<std::string>& Value) {
  if (Value) Text += Format(" %s %s", Word, *Value);
}

template <typename T>
std::string TypeText(const T& Item) {
  std::string Text(FieldTypeWords[static_cast<std::size_t>(Item.Type)]);
  if (Item.Size) Text += Format(" SIZE %d", *Item.Size);
  if (Item.Scale) Text += Format(" SCALE %d", *Item.Scale);
  return Text;
}

std::string ParametersText(const std::vector<TDicParameter>& Parameters) {
  std::string Text;
  for (const TDicParameter& P : Parameters) {
    Text += Format("%s'%s' %s %s", Text.empty() ? "" : ", ", P.Name,
                   ParameterModeWords[static_cast<std::size_t>(P.Mode)], TypeText(P));
    Append(Text, "DEFAULT", P.Default);
  }
  return Text;
}

std::string Titled(std::string_view What, const std::string& Name, const std::string& Otherwise) {
  return Name.empty() ? Otherwise : Format("%s '%s'", What, Name);
}

}  // namespace

TEngineView::TEngineView(std::string_view Name)
    : Engine(Name),
      Comments(Name != "sqlite"),
      Schemas(Comments),
      DescendingKeys(Name != "postgresql"),
      DeferrableKeys(Comments),
      UncheckedKeys(Comments),
      TriggerStates(Comments) {}

std::string Signature(const TDicField& Field) {
  std::string Text = TypeText(Field);
  if (Field.NotNull) Text += " NOT NULL";
  Append(Text, "DEFAULT", Field.Default);
  if (Field.Auto != TDicAutoKey::None) Text += Format(" AUTO %s", AutoKeyWords[static_cast<std::size_t>(Field.Auto)]);
  Append(Text, "START", Field.Counter.Start);
  Append(Text, "STEP", Field.Counter.Step);
  Append(Text, "MIN", Field.Counter.Min);
  Append(Text, "MAX", Field.Counter.Max);
  if (Field.Counter.Cycle) Text += " CYCLE";
  if (!Field.Owned.empty()) Append(Text, "OWNED", Field.Owned);
  Append(Text, "COMPUTED", Field.Computed);
  if (Field.Stored) Text += " STORED";
  return Text;
}

std::string Signature(const TDicViewDescription& View) {
  std::string Text = View.Materialized ? "MATERIALIZED" : "VIEW";
  for (const std::string& Column : View.Columns) Text += Format(" '%s'", Column);
  return Text;
}

std::string Signature(const TDicProcedureDescription& Procedure) {
  return Format("%s (%s) (%s)", Procedure.Language, ParametersText(Procedure.Parameters),
                ParametersText(Procedure.Result));
}

TMatches Match(const std::vector<TDicField>& Stored, const std::vector<TDicField>& Now, std::string_view) {
  return MatchByName(Stored, Now);
}

TMatches Match(const std::vector<TDicKey>& Stored, const std::vector<TDicKey>& Now, std::string_view Engine) {
  const auto IsPrimary = [&](const TDicKey& Key) { return Key.Primary || IsPrimaryWithNulls(Key, Engine); };
  const auto Same = [&](const TDicKey& A, const TDicKey& B) {
    return IsPrimary(A) == IsPrimary(B) && Names(A.Columns) == Names(B.Columns);
  };
  return MatchBy<TDicKey>(Stored, Now,
                          {[&](const TDicKey& A, const TDicKey& B) { return Same(A, B) && A.Name == B.Name; }, Same});
}

TMatches Match(const std::vector<TDicIndex>& Stored, const std::vector<TDicIndex>& Now, std::string_view) {
  return MatchByName(Stored, Now);
}

TMatches Match(const std::vector<TDicForeignKey>& Stored, const std::vector<TDicForeignKey>& Now, std::string_view) {
  return MatchBy<TDicForeignKey>(
      Stored, Now,
      {[](const TDicForeignKey& A, const TDicForeignKey& B) { return SameReference(A, B) && A.Name == B.Name; },
       SameReference});
}

TMatches Match(const std::vector<TDicCheck>& Stored, const std::vector<TDicCheck>& Now, std::string_view Engine) {
  return MatchBy<TDicCheck>(
      Stored, Now,
      {[](const TDicCheck& A, const TDicCheck& B) { return !A.Name.empty() && A.Name == B.Name; },
       [&](const TDicCheck& A, const TDicCheck& B) {
         return A.Name == B.Name && WordsOf(A.Words, Engine) && HasSameWords(A.Words, B.Words, Engine);
       },
       [](const TDicCheck& A, const TDicCheck& B) { return A.Name == B.Name && A.Text && A.Text == B.Text; },
       // What is left has no name: engines keep the order.
       [&](const TDicCheck& A, const TDicCheck& B) {
         return A.Name == B.Name && A.Text && !WordsOf(A.Words, Engine) && !B.Text;
       }});
}

TMatches Match(const std::vector<TDicTrigger>& Stored, const std::vector<TDicTrigger>& Now, std::string_view) {
  return MatchByName(Stored, Now);
}

bool IsAsStored(const TDicField& Stored, const TDicField& Now, const TEngineView& View) {
  return Stored.Name == Now.Name &&
         ReadsAsMade(Stored.Words, Signature(Stored), Now.Words, Signature(Now), View.Engine);
}

bool IsAsStored(const TDicKey& Stored, const TDicKey& Now, const TEngineView& View) {
  // Nobody has looked for NULLs again.
  const TDicKey Old = Now.Primary ? KeyOfEngine(Stored, View.Engine) : Stored;
  return HasSameWords(Old.Words, Now.Words, View.Engine) && Neutral(Old, View) == Neutral(Now, View);
}

bool IsAsStored(const TDicIndex& Stored, const TDicIndex& Now, const TEngineView& View) {
  if (Stored.Name != Now.Name || !HasSameWords(Stored.Words, Now.Words, View.Engine)) return false;
  const TDicWords* const Own = WordsOf(Now.Words, View.Engine);
  if (Own && Own->Text) return true;  // it says all
  return Stored.Unique == Now.Unique && Stored.Columns == Now.Columns;
}

bool IsAsStored(const TDicForeignKey& Stored, const TDicForeignKey& Now, const TEngineView& View) {
  TDicForeignKey Told = Neutral(Now, View);
  // Some engines name the columns of the other table's primary key, others keep that none were named.
  for (std::size_t I = 0; I < Told.Columns.size(); ++I)
    if (Stored.Columns[I].To.empty()) Told.Columns[I].To.clear();
  return HasSameWords(Stored.Words, Now.Words, View.Engine) && Neutral(Stored, View) == Told;
}

bool IsAsStored(const TDicCheck& Stored, const TDicCheck& Now, const TEngineView& View) {
  if (Stored.Name != Now.Name || !HasSameWords(Stored.Words, Now.Words, View.Engine)) return false;
  return WordsOf(Now.Words, View.Engine) || Stored.Text == Now.Text;
}

bool IsAsStored(const TDicTrigger& Stored, const TDicTrigger& Now, const TEngineView& View) {
  return Stored.Name == Now.Name && HasSameWords(Stored.Words, Now.Words, View.Engine) &&
         (!View.TriggerStates || Stored.Enabled == Now.Enabled);
}

std::string Title(const TDicField& Field) { return Format("field '%s'", Field.Name); }

std::string Title(const TDicKey& Key) {
  return Key.Primary ? "the primary key" : Titled("key", Key.Name, "a unique key");
}

std::string Title(const TDicIndex& Index) { return Format("index '%s'", Index.Name); }

std::string Title(const TDicForeignKey& Key) {
  return Titled("foreign key", Key.Name, Format("the foreign key to '%s'", Key.FullTable()));
}

std::string Title(const TDicCheck& Check) { return Titled("check", Check.Name, "a check"); }

std::string Title(const TDicTrigger& Trigger) { return Format("trigger '%s'", Trigger.Name); }

bool HasSameWords(const TDicEngineWords& Stored, const TDicEngineWords& Now, std::string_view Engine) {
  const TDicWords* const Old = WordsOf(Stored, Engine);
  const TDicWords* const New = WordsOf(Now, Engine);
  if (!Old || !New) return Old == New;
  TDicWords Bare = *Old;
  if (const auto Made = Bare.Parts.find(MadePart); Made != Bare.Parts.end()) Bare.Parts.erase(Made);
  return Bare == *New;
}

bool ReadsAsMade(const TDicEngineWords& StoredWords, const std::string& Stored, const TDicEngineWords& NowWords,
                 const std::string& Now, std::string_view Engine) {
  const TDicWords* const Own = WordsOf(StoredWords, Engine);
  // It was never made by this description: all that can be compared is the same.
  if (!Own) return Stored == Now;
  const std::string* const Made = Own->Part(MadePart);
  return HasSameWords(StoredWords, NowWords, Engine) && (Made ? *Made : Stored) == Now;
}

}  // namespace velkrund
