#include "standalone/drivers/postgresql/PostgreSQLScript.h"

#include <algorithm>

#include "standalone/drivers/ComputedElsewhere.h"
#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// The first of the other engines of which Take finds something.
template <typename T>
auto Others(const TDicEngineWords& Words, T Take) -> decltype(Take(Words.begin()->second)) {
  for (const auto& [Engine, Of] : Words)
    if (Engine != PostgreSQLWords)
      if (auto Found = Take(Of)) return Found;
  return nullptr;
}

}  // namespace

void TPostgreSQLScript::Add(std::string Text, std::string What, std::string Unless) {
  Statements.push_back({std::move(Text), std::move(What), std::move(Unless)});
}

void TPostgreSQLScript::Lack(std::string_view Kind, std::string What, std::string Why, bool Harmless) {
  Gaps.push_back({std::string(Kind), std::move(What), std::move(Why), Harmless});
}

std::size_t EndOfPostgreSQLSchema(std::string_view SQLName) {
  // The first part alone is a name when a quoted one is cut behind it.
  std::size_t End = 0;
  if (SQLName.starts_with('"')) {
    for (End = 1; End < SQLName.size(); ++End) {
      if (SQLName[End] != '"') continue;
      if (End + 1 >= SQLName.size() || SQLName[End + 1] != '"') break;
      ++End;
    }
    ++End;
  } else {
    End = SQLName.find('.');
  }
  return End < SQLName.size() && SQLName[End] == '.' ? End + 1 : 0;
}

void TPostgreSQLScript::AddSchemaOf(std::string_view SQLName) {
  const std::size_t End = EndOfPostgreSQLSchema(SQLName);
  if (End == 0) return;
  const std::string Schema(SQLName.substr(0, End - 1));
  const std::string Unless =
      "SELECT 1 WHERE pg_catalog.to_regnamespace(" + QuotePostgreSQLText(Schema) + ") IS NOT NULL";
  const auto IsThere = [&](const TScriptStatement& Statement) { return Statement.Unless == Unless; };
  if (std::none_of(Statements.begin(), Statements.end(), IsThere))
    Add("CREATE SCHEMA IF NOT EXISTS " + Schema, "schema " + Schema, Unless);
}

std::string PostgreSQLNameOf(const TDicObjectDescription& Object) {
  return (Object.Schema.empty() ? "" : QuoteStandardName(Object.Schema) + ".") + QuoteStandardName(Object.Name);
}

std::string PostgreSQLColumns(const std::vector<TDicColumn>& Columns) {
  std::string Result;
  for (const TDicColumn& Column : Columns) Result += (Result.empty() ? "" : ", ") + QuoteStandardName(Column.Name);
  return Result;
}

const std::string* OthersPart(const TDicEngineWords& Words, std::string_view Part) {
  return Others(Words, [&](const TDicWords& Of) { return Of.Part(Part); });
}

const std::string* OthersText(const TDicEngineWords& Words) {
  return Others(Words, [](const TDicWords& Of) { return Of.Text ? &*Of.Text : nullptr; });
}

const std::vector<std::string>* OthersLines(const TDicEngineWords& Words) {
  return Others(Words, [](const TDicWords& Of) { return Of.Lines.empty() ? nullptr : &Of.Lines; });
}

std::string OthersValue(const std::string& Neutral, const std::vector<TDicField>& Fields, const TDicField* Computed) {
  // What others keep as a text they make a real number of to calculate with it.
  const auto HasOtherDigits = [](const TDicField& Field) {
    const std::string* const Type = OwnWords(Field.Words) ? nullptr : OthersText(Field.Words);
    const bool IsExact = Field.Type == TDicFieldType::UInt64 || Field.Type == TDicFieldType::Decimal ||
                         Field.Type == TDicFieldType::Money;
    return Type && IsExact && UpperCase(*Type).find("TEXT") != std::string::npos;
  };
  const auto HasOtherOrder = [](const TDicField& Field) {
    return !OwnWords(Field.Words) && OthersPart(Field.Words, "Collate");
  };
  return OtherValueOf(Neutral, Fields, Computed, {HasOtherDigits, HasOtherOrder});
}

std::string CounterWords(const TDicCounter& Counter, const std::string& What) {
  std::string Result;
  const auto Put = [&](const char* Words, const std::optional<std::string>& Number) {
    if (!Number) return;
    if (!StrToInt64(*Number))
      throw EDatabaseError(Format("Cannot make %s: '%s' is no whole number of 64 bits", What, *Number));
    Result += Words + *Number;
  };
  Put(" INCREMENT BY ", Counter.Step);
  Put(" MINVALUE ", Counter.Min);
  Put(" MAXVALUE ", Counter.Max);
  Put(" START WITH ", Counter.Start);
  if (Counter.Cycle) Result += " CYCLE";
  return Result;
}

}  // namespace velkrund
