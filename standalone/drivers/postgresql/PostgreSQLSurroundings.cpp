#include "standalone/drivers/postgresql/PostgreSQLSurroundings.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/postgresql/PostgreSQLLocalSetting.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Of a table or view: the statement that gives it to the owner that it has, which locks it against everybody and
/// leaves the tables that a view shows alone.
constexpr const char* LockStatement =
    "SELECT format('ALTER TABLE %I.%I OWNER TO %I', n.nspname, c.relname, pg_get_userbyid(c.relowner)) "
    "FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace WHERE c.oid = $1::oid";

constexpr const char* HasColumnStatement =
    "SELECT EXISTS (SELECT FROM pg_attribute a WHERE a.attrelid = $1::regclass AND a.attname = $2::name "
    "AND NOT a.attisdropped)";

/// Columns that it has from its parents alone; parts of a partitioned table keep that.
constexpr const char* InheritedStatement =
    "SELECT count(*) FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid WHERE a.attrelid = $1::oid "
    "AND NOT a.attislocal AND NOT a.attisdropped AND NOT c.relispartition";

std::string KindOf(const TTableInfo& Object) { return Object.Kind == TTableKind::View ? "view" : "table"; }

std::vector<std::string> NumbersOf(const std::vector<TPostgreSQLView>& Views) {
  std::vector<std::string> Result;
  for (const TPostgreSQLView& View : Views) Result.push_back(View.Oid);
  return Result;
}

}  // namespace

TPostgreSQLSurroundings::TPostgreSQLSurroundings(TPostgreSQLSession& Session, TTableInfo Object, TRenamedFields Renamed)
    : FSession(Session),
      FObject(std::move(Object)),
      FRenamed(std::move(Renamed)),
      FName(Session.Dialect().QualifiedName(FObject)),
      FWhat(Format("Cannot make the %s '%s' anew", KindOf(FObject), velkrund::FullName(FObject))) {}

std::string TPostgreSQLSurroundings::Number() const {
  const TPostgreSQLResult Found = FSession.Query(FWhat, "SELECT to_regclass($1::text)::oid", {FName.c_str()});
  if (Found.Text(0, 0).empty())
    throw EDatabaseError(Format("%s: it is not there", FWhat), {.Code = TErrorCode::TableMissing});
  return Found.Copy(0, 0);
}

/// The first statement takes no moment, so that in a transaction that sees one all others have done is seen.
void TPostgreSQLSurroundings::Lock() {
  if (FObject.Kind == TTableKind::Table)
    FSession.Query(FWhat, Format("LOCK TABLE ONLY %s IN ACCESS EXCLUSIVE MODE", FName));
}

void TPostgreSQLSurroundings::SetAside() {
  Lock();
  const TPostgreSQLLocalSetting Path(FSession, "search_path", EnginesOwnPath);
  const std::string Oid = Number();
  FInherits = FSession.Query(FWhat, InheritedStatement, {Oid.c_str()}).Integer(0, 0) > 0;
  // Before the locks on views, which only their owners get: all that is in the way is named at once.
  Refuse(Oid);
  LockWith(Oid);
  Refuse(Oid);
  FSession.Query(FWhat, "SAVEPOINT velkrund_surroundings");
  RenameFields();
  Read(Oid);
  FSession.Query(FWhat, "ROLLBACK TO SAVEPOINT velkrund_surroundings");
  FSession.Query(FWhat, "RELEASE SAVEPOINT velkrund_surroundings");

  const TPostgreSQLLocalSetting Bodies(FSession, "check_function_bodies", "off");
  for (const std::string& Statement : ReadPostgreSQLSetAside(FSession, FWhat, Oid)) FSession.Query(FWhat, Statement);
  for (auto View = FViews.rbegin(); View != FViews.rend(); ++View)
    FSession.Query(FWhat, Format("DROP %sVIEW %s", View->IsMaterialized ? "MATERIALIZED " : "", View->Name));
  FSequences->SetAside(FWhat);
}

void TPostgreSQLSurroundings::Refuse(const std::string& Oid) const {
  std::string All;
  for (const std::string& Obstacle : ReadPostgreSQLObstacles(FSession, FWhat, Oid))
    All += (All.empty() ? "" : "; ") + Obstacle;
  if (!All.empty()) throw EDatabaseError(Format("%s: %s", FWhat, All), {.Table = velkrund::FullName(FObject)});
}

/// Until nobody can add a view any more.
void TPostgreSQLSurroundings::LockWith(const std::string& Oid) {
  const auto LockOne = [this](const std::string& Number) {
    const TPostgreSQLResult Found = FSession.Query(FWhat, LockStatement, {Number.c_str()});
    if (Found.RowCount() > 0) FSession.Query(FWhat, Found.Copy(0, 0));
  };
  LockOne(Oid);
  std::vector<std::string> Locked;
  for (;;) {
    FViews = ReadPostgreSQLViews(FSession, FWhat, Oid);
    const std::vector<std::string> Found = NumbersOf(FViews);
    if (Found == Locked) return;
    for (const std::string& Number : Found) LockOne(Number);
    Locked = Found;
  }
}

/// In two steps, since names may change places. A field that another one takes the name of, and that has no other,
/// goes.
void TPostgreSQLSurroundings::RenameFields() {
  const auto Rename = [this](const std::string& Before, const std::string& After) {
    FSession.Query(FWhat, Format("ALTER TABLE %s RENAME COLUMN %s TO %s", FName, QuoteStandardName(Before),
                                 QuoteStandardName(After)));
  };
  for (std::size_t I = 0; I < FRenamed.size(); ++I) Rename(FRenamed[I].first, Format("velkrund_%d", I));
  for (std::size_t I = 0; I < FRenamed.size(); ++I) {
    const std::string& After = FRenamed[I].second;
    if (FSession.Query(FWhat, HasColumnStatement, {FName.c_str(), After.c_str()}).Boolean(0, 0))
      Rename(After, "old " + After);
    Rename(Format("velkrund_%d", I), After);
  }
}

void TPostgreSQLSurroundings::Read(const std::string& Oid) {
  FRemaking = ReadPostgreSQLRemaking(FSession, FWhat, Oid);
  FViewMakings.clear();
  for (const TPostgreSQLView& View : FViews) FViewMakings.push_back(ReadPostgreSQLViewMaking(FSession, FWhat, View));
  FGrants = std::make_unique<TPostgreSQLGrants>(FSession, FWhat, Oid);
  FSequences = std::make_unique<TPostgreSQLOwnedSequences>(FSession, FWhat, Oid);
}

void TPostgreSQLSurroundings::PutBack(TPutBack How) {
  {
    const TPostgreSQLLocalSetting Path(FSession, "search_path", EnginesOwnPath);
    PutBackStages(FRemaking.BeforeViews, How);
    FSequences->PutBack(Number(), FName, *FGrants);
    for (const TPostgreSQLRemade& View : FViewMakings) Run(View);
    PutBackStages(FRemaking.AfterViews, How);
    FGrants->PutBack(Number());
    PutBackStages(FRemaking.AfterRights, How);
  }
  if (How == TPutBack::Rehearsed) return;
  FillViews();
  if (FInherits)
    FRemarks.push_back(
        Format("the fields that table '%s' has from its parents are its own now, too: they stay when a "
               "parent drops them",
               velkrund::FullName(FObject)));
}

void TPostgreSQLSurroundings::PutBackStages(const std::vector<TPostgreSQLRemadeStage>& Stages, TPutBack How) {
  for (const TPostgreSQLRemadeStage& Stage : Stages) {
    if (Stage.Things.empty()) continue;
    const std::set<std::string> Facts = ReadPostgreSQLFacts(FSession, FWhat, Number());
    for (const TPostgreSQLRemade& Thing : Stage.Things)
      if (Stage.LooksAtRows && How == TPutBack::Rehearsed)
        RunWithoutRows(Thing);
      else
        PutBackOne(Thing, Facts, Stage.TellsWhatIsGone);
  }
}

void TPostgreSQLSurroundings::PutBackOne(const TPostgreSQLRemade& Thing, const std::set<std::string>& Facts,
                                         bool TellsWhatIsGone) {
  const auto IsThere = [&](const std::string& Fact) { return Facts.contains(Fact); };
  const auto Gone = std::find_if_not(Thing.Needs.begin(), Thing.Needs.end(), IsThere);
  if (Gone == Thing.Needs.end()) {
    if (!IsThere(Thing.Lack)) Run(Thing);
  } else if (TellsWhatIsGone) {
    FRemarks.push_back(Format("%s of the %s '%s' has gone with the %s", Thing.What, KindOf(FObject),
                              velkrund::FullName(FObject), *Gone));
  }
}

void TPostgreSQLSurroundings::Run(const TPostgreSQLRemade& Thing) const {
  const std::string What = Format("Cannot put back %s, as it was around the %s '%s'", Thing.What, KindOf(FObject),
                                  velkrund::FullName(FObject));
  try {
    for (const std::string* Statement : {&Thing.Statement, &Thing.Then})
      if (!Statement->empty()) FSession.Query(What, *Statement);
  } catch (EDatabaseError& Error) {
    Error.Add({.Table = velkrund::FullName(FObject)});
    throw;
  }
}

/// The key of another table, whose rows refer to some that a rehearsal has not got.
void TPostgreSQLSurroundings::RunWithoutRows(TPostgreSQLRemade Key) const {
  constexpr std::string_view NotChecked = " NOT VALID";
  constexpr std::string_view NotSupported = "0A000";
  if (!Key.Statement.ends_with(NotChecked)) Key.Statement += NotChecked;
  FSession.Query(FWhat, "SAVEPOINT velkrund_rehearsed");
  try {
    Run(Key);
  } catch (const EDatabaseError& Error) {
    // Partitioned tables know no such keys.
    if (Error.Info().EngineCode != NotSupported) throw;
    FSession.Query(FWhat, "ROLLBACK TO SAVEPOINT velkrund_rehearsed");
  }
  FSession.Query(FWhat, "RELEASE SAVEPOINT velkrund_rehearsed");
}

/// As their owners see the rows, with the names that the session knows: functions in them may look for some.
void TPostgreSQLSurroundings::FillViews() {
  const TPostgreSQLLocalSetting Security(FSession, "row_security", "on");
  for (const TPostgreSQLView& View : FViews) {
    if (!View.IsMaterialized || !View.IsFilled) continue;
    FSession.Query(Format("Cannot fill the materialized view %s", View.Name), "REFRESH MATERIALIZED VIEW " + View.Name);
    FRemarks.push_back(Format("the materialized view %s was filled anew", View.Name));
  }
}

}  // namespace velkrund
