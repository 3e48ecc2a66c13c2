#include "standalone/drivers/sqlite/SQLiteTriggerText.h"

#include <algorithm>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteTokens.h"

namespace velkrund {

std::string SQLiteTriggerEvent(std::string_view Text) {
  // CREATE [TEMP] TRIGGER [IF NOT EXISTS] [SCHEMA.]NAME [BEFORE|AFTER|INSTEAD OF] DELETE|INSERT|UPDATE ...
  const std::vector<TSQLiteToken> Tokens = SQLiteTokens(Text);
  auto At = Tokens.begin();
  const auto Behind = [&](std::ptrdiff_t Count) { At += std::min(Count, Tokens.end() - At - 1); };
  while (At->Kind != TSQLiteToken::TKind::End && !At->Is("TRIGGER")) ++At;
  Behind(1);
  if (At->Is("IF")) Behind(3);
  Behind(1);
  while (At->IsSymbol('.')) Behind(2);
  if (At->Is("INSTEAD")) Behind(1);
  if (At->Is("BEFORE") || At->Is("AFTER") || At->Is("OF")) Behind(1);
  for (const char* Event : {"INSERT", "DELETE", "UPDATE"})
    if (At->Is(Event)) return Event;
  return {};
}

}  // namespace velkrund
