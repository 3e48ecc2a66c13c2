#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

class TPostgreSQLSession;

/// A question about what hangs on the table or view whose number is the parameter $1, asked with the engine's own
/// schema alone on the search path. Body may name, beside the catalogue:
///   gone     what is dropped with it: its parts, and the views that show it with theirs, at any depth (class, object)
///   rels     the tables and views among that, with all columns of pg_class, and a name as SQL has it
///   hanging  what would keep it from being dropped (class, object), and as what it can be put back: key, policy, rule,
///            trigger, default, body, or NULL
///   options  how rels are stored (relation, name, shown, setting)
///   FACT(class, object, column)  kind and name of what these numbers stand for
///   PLACE(tablespace)            the name of it; of 0 that of the database's own
std::string PostgreSQLAround(std::string_view Body);

/// A view that is made anew, since it shows what is dropped.
struct TPostgreSQLView {
  std::string Oid, Name;  // as SQL has it
  bool IsMaterialized = false, IsFilled = false;
};

/// In an order in which they can be made. Raises EDatabaseError where there is none.
std::vector<TPostgreSQLView> ReadPostgreSQLViews(TPostgreSQLSession& Session, std::string_view What,
                                                 const std::string& Oid);

/// Why the table or view cannot be made anew, each in a few words for people: what hangs on it and could not be put
/// back, and rights that are missing.
std::vector<std::string> ReadPostgreSQLObstacles(TPostgreSQLSession& Session, std::string_view What,
                                                 const std::string& Oid);

}  // namespace velkrund
