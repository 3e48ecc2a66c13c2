#include "standalone/drivers/sqlite/SQLiteTriggerText.h"

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteTokens.h"

namespace velkrund {
namespace {

using TKind = TSQLiteToken::TKind;
using TTokens = std::vector<TSQLiteToken>;

/// Goes on by Count tokens, not beyond the last one.
void Pass(const TTokens& Tokens, TTokens::const_iterator& At, std::ptrdiff_t Count) {
  At += std::min(Count, Tokens.end() - At - 1);
}

/// The word of the event: CREATE [TEMP] TRIGGER [IF NOT EXISTS] [SCHEMA.]NAME [BEFORE|AFTER|INSTEAD OF] EVENT ...
TTokens::const_iterator EventOf(const TTokens& Tokens) {
  auto At = Tokens.begin();
  while (At->Kind != TKind::End && !At->Is("TRIGGER")) ++At;
  Pass(Tokens, At, 1);
  if (At->Is("IF")) Pass(Tokens, At, 3);
  Pass(Tokens, At, 1);
  while (At->IsSymbol('.')) Pass(Tokens, At, 2);
  if (At->Is("INSTEAD")) Pass(Tokens, At, 1);
  if (At->Is("BEFORE") || At->Is("AFTER") || At->Is("OF")) Pass(Tokens, At, 1);
  return At;
}

}  // namespace

std::string SQLiteTriggerEvent(std::string_view Text) {
  const TTokens Tokens = SQLiteTokens(Text);
  for (const char* Event : {"INSERT", "DELETE", "UPDATE"})
    if (EventOf(Tokens)->Is(Event)) return Event;
  return {};
}

std::vector<std::string> SQLiteTriggerFields(std::string_view Text) {
  const TTokens Tokens = SQLiteTokens(Text);
  auto At = EventOf(Tokens);
  std::vector<std::string> Result;
  if (!At->Is("UPDATE")) return Result;
  for (Pass(Tokens, At, 1); At->Is("OF") || At->IsSymbol(','); Pass(Tokens, At, 1)) {
    Pass(Tokens, At, 1);
    if (At->IsName()) Result.push_back(At->Name());
  }
  return Result;
}

}  // namespace velkrund
