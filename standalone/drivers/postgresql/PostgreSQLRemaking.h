#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

class TPostgreSQLSession;
struct TPostgreSQLView;

/// One thing that is put back around a table or view.
struct TPostgreSQLRemade {
  std::string What;                // "the trigger t on public.c"
  std::vector<std::string> Needs;  // facts without which it has gone with what it belonged to
  std::string Lack;                // the fact with which it is there already; empty where that cannot be
  std::string Statement;
  std::string Then;  // a second one, for its state or owner; may be empty
};

/// All of one kind, in order. Those of one stage ask nothing of each other.
struct TPostgreSQLRemadeStage {
  std::vector<TPostgreSQLRemade> Things;
  bool TellsWhatIsGone = false;  // else it is plain that they go with what they belong to
  bool LooksAtRows = false;      // foreign keys of others, which are checked
};

/// Before and after views are made again, which come in between.
struct TPostgreSQLRemaking {
  std::vector<TPostgreSQLRemadeStage> BeforeViews, AfterViews, AfterRights;
};

// Of the table or view with the number Oid; with the engine's own schema alone on the search path. What begins
// messages.

/// Statements that take away what keeps it from being dropped, except for the views that show it.
std::vector<std::string> ReadPostgreSQLSetAside(TPostgreSQLSession& Session, std::string_view What,
                                                const std::string& Oid);
TPostgreSQLRemaking ReadPostgreSQLRemaking(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid);
/// The statements that make a view anew, without its rows, and give it to its owner.
TPostgreSQLRemade ReadPostgreSQLViewMaking(TPostgreSQLSession& Session, std::string_view What,
                                           const TPostgreSQLView& View);
/// What it has, and what of that has a comment, in the words of Needs and Lack.
std::set<std::string> ReadPostgreSQLFacts(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid);

}  // namespace velkrund
