#include "velkrund/dictionary/TableMaker.h"

#include <algorithm>
#include <set>

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/NameLengths.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

void TTableMaker::Make(const std::vector<std::string>& Names) {
  std::vector<TDicTableDescription> Tables = Missing(Names);
  if (Tables.empty()) return;
  if (MayMake(Tables)) return MakeAll(std::move(Tables));
  for (const TDicTableDescription& Table : Tables) Decline(Table);
}

/// Those that are described and not there, each once.
std::vector<TDicTableDescription> TTableMaker::Missing(const std::vector<std::string>& Names) {
  std::vector<TDicTableDescription> Result;
  std::set<std::string> Seen;
  for (const std::string& Name : Names) {
    if (!Seen.insert(LowerCase(Name)).second) continue;
    try {
      TDicTableDescription Table;
      if (BaseMng().GetUserTable(Name, FDatabaseName, false)) {
        TakeUnfinished(Name);
        continue;
      }
      if (Dictionary().GetDicTable(FDatabaseName).GetTableInfo(Name, Table)) Result.push_back(std::move(Table));
    } catch (const EAbort&) {
      throw;
    } catch (const std::exception&) {
      FFailed.emplace(LowerCase(Name), std::current_exception());
    }
  }
  return Result;
}

void TTableMaker::TakeUnfinished(const std::string& Name) {
  TMade Left;
  Left.WasThere = true;
  Left.Stage = Dictionary().StageOf(FDatabaseName, Name);
  if (Left.Stage == TTableStage::Complete) return;
  if (!Dictionary().GetDicTable(FDatabaseName).GetTableInfo(Name, Left.Description)) return;
  Left.Pattern = PatternOf(Left.Description);
  Prepare(Left.Description);
  WillComplete(Left.Description);
  FMade.push_back(std::move(Left));
}

std::string TTableMaker::PatternOf(const TDicTableDescription& Table) const {
  TDictionary& Dictionary = velkrund::Dictionary();
  return Dictionary.GetCreateTablePatternString(Dictionary.GetPatternName(Table.FullName(), FDatabaseName),
                                                FDatabaseName);
}

bool TTableMaker::MayMake(const std::vector<TDicTableDescription>& Tables) {
  std::vector<std::string> Names;
  for (const TDicTableDescription& Table : Tables) Names.push_back(Format("'%s'", Table.FullName()));
  const std::string Question =
      Format(BaseMng().LString("M_Velkrund_ComUtils_CreateTablesConfirm"), LJoinedInShort(Names).Local());
  return uoMessageBox(0, ToUtf16(Question), ToUtf16(BaseMng().LString("ST_CONFIRMATION")), MB_YESNO, IDYES, IDNO) ==
         IDYES;
}

bool TTableMaker::MayGoByName(const TDicTableDescription& Table) { return !AskCancelCreateLongNameTable(Table); }

void TTableMaker::Decline(const TDicTableDescription& Table) {
  FFailed[LowerCase(Table.FullName())] =
      std::make_exception_ptr(Exception(Format("Creation of table '%s' cancelled", Table.FullName())));
}

void TTableMaker::MakeAll(std::vector<TDicTableDescription> Tables) {
  std::erase_if(Tables, [this](const TDicTableDescription& Table) { return !CanMake(Table); });
  std::erase_if(Tables, [this](const TDicTableDescription& Table) {
    const bool Goes = MayGoByName(Table);
    if (!Goes) Decline(Table);
    return !Goes;
  });
  // What is a part of another table comes after it: again, as long as something could be made.
  for (std::size_t Before = 0; !Tables.empty() && Before != Tables.size();) {
    Before = Tables.size();
    std::erase_if(Tables, [this](const TDicTableDescription& Table) { return MakeOne(Table); });
  }
}

bool TTableMaker::MakeOne(const TDicTableDescription& Table) {
  if (FOperation.IsCanceled()) throw EAbort("cancelled");
  const std::string Key = LowerCase(Table.FullName());
  try {
    TTransaction Transaction(FDatabaseName);
    TMade Made{Table, PatternOf(Table)};
    Prepare(Made.Description);
    TDicTableDescription Bare = Made.Description;
    Bare.Indexes.clear();
    Dictionary().CreateTableByDef(FDatabaseName, Bare, Made.Pattern, TTableScriptPart::Table, false);
    if (CommitsSteps()) Dictionary().SetStage(FDatabaseName, Bare.FullName(), TTableStage::Made);
    Transaction.Commit();
    FFailed.erase(Key);
    FMade.push_back(std::move(Made));
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    FFailed[Key] = std::current_exception();
    return false;
  }
  HasMade(FMade.back().Description);
  return true;
}

void TTableMaker::Check(const std::string& Name) {
  if (const auto Failed = FFailed.find(LowerCase(Name)); Failed != FFailed.end())
    std::rethrow_exception(Failed->second);
}

void TTableMaker::Complete(const TFailed& Failed, const TTakenBack& TakenBack) {
  for (TMade& Made : FMade)
    if (!CommitsSteps() && !Made.WasThere && IsUseless(Made.Description)) Drop(Made);
  CompleteEach(Failed, TakenBack, TTableStage::Made, &TTableMaker::MakeIndexes);
  CompleteEach(Failed, TakenBack, TTableStage::Indexed, &TTableMaker::FinishOne);
  if (!CommitsSteps()) StoreWords(Failed, TakenBack);
}

/// Those that have come to that stage.
void TTableMaker::CompleteEach(const TFailed& Failed, const TTakenBack& TakenBack, TTableStage Stage,
                               void (TTableMaker::*Step)(const TMade&)) {
  const auto Next = static_cast<TTableStage>(static_cast<int>(Stage) + 1);
  for (TMade& Made : FMade) {
    if (Made.IsGone || Made.Stage != Stage) continue;
    if (FOperation.IsCanceled()) throw EAbort("cancelled");
    try {
      TTransaction Transaction(FDatabaseName);
      (this->*Step)(Made);
      if (CommitsSteps()) Dictionary().SetStage(FDatabaseName, Made.Description.FullName(), Next);
      Transaction.Commit();
      Made.Stage = Next;
      continue;
    } catch (const std::exception& Error) {
      GiveUp(Made, Failed, Error);
    }
    if (!CommitsSteps()) DropWithThoseThatRefer(Made, TakenBack);
  }
}

void TTableMaker::GiveUp(TMade& Made, const TFailed& Failed, const std::exception& Error) {
  // Its rows cannot be told from those that this run has brought: all of them go back together.
  if (Made.WasThere && !CommitsSteps()) throw;
  Failed(Made.Description.FullName(), Error);
}

/// Of many at once, which an engine tells faster; where that fails, of each, to find the one.
void TTableMaker::StoreWords(const TFailed& Failed, const TTakenBack& TakenBack) {
  constexpr std::size_t AtOnce = 64;
  std::vector<TMade*> Complete;
  for (TMade& Made : FMade)
    if (!Made.IsGone && Made.Stage == TTableStage::Complete) Complete.push_back(&Made);
  for (std::size_t At = 0; At < Complete.size(); At += AtOnce) {
    if (FOperation.IsCanceled()) throw EAbort("cancelled");
    const std::span Some(Complete.begin() + static_cast<std::ptrdiff_t>(At), std::min(AtOnce, Complete.size() - At));
    if (StoreWordsOf(Some)) continue;
    for (TMade*& Made : Some)
      if (!Made->IsGone && !StoreWordsOf({&Made, 1}, Failed)) DropWithThoseThatRefer(*Made, TakenBack);
  }
}

bool TTableMaker::StoreWordsOf(std::span<TMade* const> Tables, const TFailed& Failed) {
  std::vector<std::string> Names;
  for (const TMade* const Made : Tables) Names.push_back(Made->Description.FullName());
  try {
    TTransaction Transaction(FDatabaseName);
    Dictionary().StoreWords(FDatabaseName, Names);
    Transaction.Commit();
    return true;
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception& Error) {
    if (Failed) GiveUp(*Tables.front(), Failed, Error);
    return false;
  }
}

void TTableMaker::FinishOne(const TMade& Made) {
  MakeRest(Made);
  if (CommitsSteps()) Dictionary().StoreWords(FDatabaseName, {Made.Description.FullName()});
}

void TTableMaker::MakeIndexes(const TMade& Made) { Dictionary().CreateIndexesByDef(FDatabaseName, Made.Description); }

void TTableMaker::MakeRest(const TMade& Made) {
  Dictionary().CreateTableByDef(FDatabaseName, Made.Description, Made.Pattern, TTableScriptPart::Rest, false);
}

/// What refers to the table goes first.
void TTableMaker::DropWithThoseThatRefer(TMade& Made, const TTakenBack& TakenBack) {
  Made.IsGone = true;
  for (TMade& Other : FMade) {
    const std::vector<TDicForeignKey>& Keys = Other.Description.ForeignKeys;
    const bool Refers = std::any_of(Keys.begin(), Keys.end(), [&](const TDicForeignKey& Key) {
      return SameText(Key.FullTable(), Made.Description.FullName());
    });
    if (!Refers || Other.IsGone) continue;
    if (Other.WasThere)
      throw EDatabaseError(
          Format("The table '%s', which was there before this run, refers to the table '%s', which "
                 "cannot be made",
                 Other.Description.FullName(), Made.Description.FullName()));
    DropWithThoseThatRefer(Other, TakenBack);
    TakenBack(Other.Description.FullName());
  }
  Drop(Made);
}

void TTableMaker::Drop(TMade& Made) {
  TTransaction Transaction(FDatabaseName);
  Dictionary().DropTable(FDatabaseName, Made.Description);
  Transaction.Commit();
  Made.IsGone = true;
  HasDropped(Made.Description);
}

}  // namespace velkrund
