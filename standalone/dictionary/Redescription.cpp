#include "standalone/dictionary/Redescription.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "standalone/dictionary/ForeignText.h"
#include "standalone/dictionary/ItemRules.h"
#include "standalone/drivers/KeysWithNulls.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// The same words as the source has of the engine, or none.
void TakeWords(TDicEngineWords& Words, const TDicEngineWords& Source, std::string_view Engine) {
  if (const TDicWords* const Own = WordsOf(Source, Engine))
    Words[std::string(Engine)] = *Own;
  else if (const auto Found = Words.find(Engine); Found != Words.end())
    Words.erase(Found);
}

/// The same, noting what is read otherwise than it is stored.
void TakeWords(TDicEngineWords& Words, const std::string& Stored, const TDicEngineWords& Source,
               const std::string& Made, std::string_view Engine) {
  TakeWords(Words, Source, Engine);
  if (const auto Own = Words.find(Engine); Own != Words.end() && Stored != Made)
    Own->second.Parts[std::string(MadePart)] = Made;
}

bool HasForeign(const TDicEngineWords& Words, std::string_view Engine) {
  return std::ranges::any_of(Words, [&](const auto& Entry) { return Entry.first != Engine; });
}

/// That the engine never had: only others have words for it.
template <typename T>
bool IsForeign(const T& Item, std::string_view Engine) {
  return HasForeign(Item.Words, Engine) && !WordsOf(Item.Words, Engine);
}

bool IsForeign(const TDicCheck& Check, std::string_view Engine) {
  return !Check.Text && HasForeign(Check.Words, Engine) && !WordsOf(Check.Words, Engine);
}

/// Puts together what is stored and what an engine describes now.
class TRedescription {
 public:
  /// Object: for people, "table 'ORDERS'".
  TRedescription(std::string_view Engine, std::string Object, std::vector<std::string>& Gone)
      : FView(Engine), FObject(std::move(Object)), FGone(Gone) {}

  const TEngineView& View() const { return FView; }

  void Lose(const TDicEngineWords& Words, const std::string& Item) {
    for (const auto& [Engine, Own] : Words) {
      if (Engine == FView.Engine) continue;
      FGone.push_back(
          Format("the words of %s for %s%s", EngineTitle(Engine), Item.empty() ? "" : Item + " of ", FObject));
    }
  }

  void Object(const TDicObjectDescription& Stored, TDicObjectDescription& Now) const {
    if (!FView.Comments) Now.Comment = Stored.Comment;
    if (FView.Schemas || Stored.FullName() != Now.FullName()) return;
    Now.Name = Stored.Name;
    Now.Schema = Stored.Schema;
  }

  /// In the engine's order; a field that it lacks is gone.
  void Fields(const std::vector<TDicField>& Stored, std::vector<TDicField>& Now) {
    const TMatches Matches = Match(Stored, Now, FView.Engine);
    for (std::size_t I = 0; I < Stored.size(); ++I) {
      if (!Matches[I]) {
        Lose(Stored[I].Words, Title(Stored[I]));
        continue;
      }
      TDicField& Field = Now[*Matches[I]];
      if (!FView.Comments) Field.Comment = Stored[I].Comment;
      std::string Comment = Field.Comment;
      Field = Merged(Stored[I], std::move(Field));
      Field.Comment = std::move(Comment);
    }
  }

  /// In the stored order, what is new behind it.
  template <typename T>
  void Items(const std::vector<T>& Stored, std::vector<T>& Now) {
    const TMatches Matches = Match(Stored, Now, FView.Engine);
    std::vector<bool> Taken(Now.size(), false);
    std::vector<T> Result;
    for (std::size_t I = 0; I < Stored.size(); ++I) {
      if (Matches[I]) {
        Taken[*Matches[I]] = true;
        Result.push_back(Merged(Stored[I], std::move(Now[*Matches[I]])));
      } else if (IsForeign(Stored[I], FView.Engine)) {
        Result.push_back(Stored[I]);
      } else {
        Lose(Stored[I].Words, Title(Stored[I]));
      }
    }
    for (std::size_t I = 0; I < Now.size(); ++I)
      if (!Taken[I]) Result.push_back(std::move(Now[I]));
    Now = std::move(Result);
  }

  /// Words that belong to the whole object.
  void Words(const TDicEngineWords& Stored, TDicEngineWords& Now, bool Same) {
    if (!Same) return Lose(Stored, "");
    TDicEngineWords Kept = Stored;
    if (!WordsOf(Kept, FView.Engine)) TakeWords(Kept, Now, FView.Engine);
    Now = std::move(Kept);
  }

 private:
  template <typename T>
  T Merged(const T& Stored, T Now) {
    if (!IsAsStored(Stored, Now, FView)) {
      Lose(Stored.Words, Title(Stored));
      return Now;
    }
    T Kept = Stored;
    if (!WordsOf(Kept.Words, FView.Engine)) TakeWords(Kept.Words, Now.Words, FView.Engine);
    return Kept;
  }

  TEngineView FView;
  std::string FObject;
  std::vector<std::string>& FGone;
};

template <typename T>
void AddWords(std::vector<T>& Stored, const std::vector<T>& Made, std::string_view Engine) {
  const TMatches Matches = Match(Stored, Made, Engine);
  for (std::size_t I = 0; I < Stored.size(); ++I) {
    if (!Matches[I]) continue;
    const T& Source = Made[*Matches[I]];
    if constexpr (std::is_same_v<T, TDicField>)
      TakeWords(Stored[I].Words, Signature(Stored[I]), Source.Words, Signature(Source), Engine);
    else if constexpr (std::is_same_v<T, TDicKey>)
      TakeWords(Stored[I].Words,
                Source.Primary && !Stored[I].Primary ? KeyWithNulls(Source, Engine).Words : Source.Words, Engine);
    else
      TakeWords(Stored[I].Words, Source.Words, Engine);
  }
}

bool HaveSameWords(const std::vector<TDicParameter>& Stored, const std::vector<TDicParameter>& Now,
                   std::string_view Engine) {
  return std::ranges::equal(Stored, Now, [&](const TDicParameter& A, const TDicParameter& B) {
    return HasSameWords(A.Words, B.Words, Engine);
  });
}

void AddWords(std::vector<TDicParameter>& Stored, const std::vector<TDicParameter>& Made, std::string_view Engine) {
  for (std::size_t I = 0; I < std::min(Stored.size(), Made.size()); ++I)
    TakeWords(Stored[I].Words, Made[I].Words, Engine);
}

}  // namespace

TDicTableDescription Redescribed(const TDicTableDescription& Stored, TDicTableDescription Now, std::string_view Engine,
                                 std::vector<std::string>& Gone) {
  TRedescription Redescription(Engine, Format("table '%s'", Stored.FullName()), Gone);
  Redescription.Object(Stored, Now);
  Redescription.Fields(Stored.Fields, Now.Fields);
  Redescription.Items(Stored.Keys, Now.Keys);
  Redescription.Items(Stored.Indexes, Now.Indexes);
  Redescription.Items(Stored.ForeignKeys, Now.ForeignKeys);
  Redescription.Items(Stored.Checks, Now.Checks);
  Redescription.Items(Stored.Triggers, Now.Triggers);
  Redescription.Words(Stored.Words, Now.Words, HasSameWords(Stored.Words, Now.Words, Engine));
  return Now;
}

TDicViewDescription Redescribed(const TDicViewDescription& Stored, TDicViewDescription Now, std::string_view Engine,
                                std::vector<std::string>& Gone) {
  TRedescription Redescription(Engine, Format("view '%s'", Stored.FullName()), Gone);
  Redescription.Object(Stored, Now);
  Redescription.Items(Stored.Indexes, Now.Indexes);
  Redescription.Items(Stored.Triggers, Now.Triggers);
  const bool Same =
      ReadsAsMade(Stored.Words, Signature(Stored), Now.Words, Signature(Now), Engine) && WordsOf(Stored.Words, Engine);
  Redescription.Words(Stored.Words, Now.Words, Same);
  if (Same) Now.Columns = Stored.Columns, Now.Materialized = Stored.Materialized;
  return Now;
}

TDicProcedureDescription Redescribed(const TDicProcedureDescription& Stored, TDicProcedureDescription Now,
                                     std::string_view Engine, std::vector<std::string>& Gone) {
  TRedescription Redescription(Engine, Format("procedure '%s'", Stored.FullName()), Gone);
  Redescription.Object(Stored, Now);
  const bool Same = ReadsAsMade(Stored.Words, Signature(Stored), Now.Words, Signature(Now), Engine) &&
                    WordsOf(Stored.Words, Engine) && HaveSameWords(Stored.Parameters, Now.Parameters, Engine) &&
                    HaveSameWords(Stored.Result, Now.Result, Engine);
  Redescription.Words(Stored.Words, Now.Words, Same);
  if (Same) Now.Language = Stored.Language, Now.Parameters = Stored.Parameters, Now.Result = Stored.Result;
  return Now;
}

TDicGeneratorDescription Redescribed(const TDicGeneratorDescription& Stored, TDicGeneratorDescription Now,
                                     std::string_view Engine, std::vector<std::string>& Gone) {
  TRedescription Redescription(Engine, Format("generator '%s'", Stored.FullName()), Gone);
  Redescription.Object(Stored, Now);
  const bool Same =
      HasSameWords(Stored.Words, Now.Words, Engine) && Stored.Counter == Now.Counter && Stored.Cache == Now.Cache;
  Redescription.Words(Stored.Words, Now.Words, Same);
  return Now;
}

TDicTableDescription WithWords(TDicTableDescription Stored, const TDicTableDescription& Made, std::string_view Engine) {
  AddWords(Stored.Fields, Made.Fields, Engine);
  AddWords(Stored.Keys, Made.Keys, Engine);
  AddWords(Stored.Indexes, Made.Indexes, Engine);
  AddWords(Stored.ForeignKeys, Made.ForeignKeys, Engine);
  AddWords(Stored.Checks, Made.Checks, Engine);
  AddWords(Stored.Triggers, Made.Triggers, Engine);
  TakeWords(Stored.Words, Made.Words, Engine);
  return Stored;
}

TDicViewDescription WithWords(TDicViewDescription Stored, const TDicViewDescription& Made, std::string_view Engine) {
  AddWords(Stored.Indexes, Made.Indexes, Engine);
  AddWords(Stored.Triggers, Made.Triggers, Engine);
  TakeWords(Stored.Words, Signature(Stored), Made.Words, Signature(Made), Engine);
  return Stored;
}

TDicProcedureDescription WithWords(TDicProcedureDescription Stored, const TDicProcedureDescription& Made,
                                   std::string_view Engine) {
  AddWords(Stored.Parameters, Made.Parameters, Engine);
  AddWords(Stored.Result, Made.Result, Engine);
  TakeWords(Stored.Words, Signature(Stored), Made.Words, Signature(Made), Engine);
  return Stored;
}

TDicGeneratorDescription WithWords(TDicGeneratorDescription Stored, const TDicGeneratorDescription& Made,
                                   std::string_view Engine) {
  TakeWords(Stored.Words, Made.Words, Engine);
  return Stored;
}

}  // namespace velkrund
