#pragma once

#include <functional>
#include <string>
#include <vector>

#include "standalone/drivers/Connection.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// An object of a database as its structure has it, or would have it now.
struct TDescribedObject {
  TDSPListItem Item;
  TDSPNode Tree;
  bool IsStored = false;               // there is a structure of that name already
  bool IsChanged = true;               // from that
  std::vector<std::string> Gone = {};  // words of other engines that go with what has changed
};

/// Describes what is in a database, by the structures of the installed container where there are some. Writes nothing.
class TDescriber {
 public:
  /// Connection: of that database, borrowed.
  TDescriber(TConnection& Connection, std::string DatabaseName, TDescribeOptions Options)
      : FConnection(Connection), FDatabaseName(std::move(DatabaseName)), FOptions(Options) {}

  /// Called before each object is looked at; may raise EAbort.
  using TNext = std::function<void(const TDefinedObject& Object)>;
  /// In the order of Objects. Raises EDatabaseError, EDSPError.
  std::vector<TDescribedObject> Describe(const std::vector<TDefinedObject>& Objects, const TNext& Next);

 private:
  std::vector<TDicTableDescription> ReadTables(const std::vector<TDefinedObject>& Objects, const TNext& Next);
  TDescribedObject DescribeOther(const TDefinedObject& Object);
  template <typename TDescription>
  TDescribedObject Finish(TDescription Now, const std::optional<TDescription>& Stored, TDefinedKind Kind);

  TConnection& FConnection;
  const std::string FDatabaseName;
  const TDescribeOptions FOptions;
};

/// Stores it, with the properties of its item. In the caller's transaction, or one of its own.
void StoreDescribed(TDescribedObject Described, const std::string& DatabaseName);

/// Objects whose structures would have one name, or one that a section cannot hold: "the tables 'a' and 'A'", in words
/// for people; empty when there are none.
std::vector<std::string> MeetingNames(const std::vector<TDefinedObject>& Objects);

}  // namespace velkrund
