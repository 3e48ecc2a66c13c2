#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/StringLists.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// The tree of one structure of a database, loaded, changed and saved as a whole. Made for one structure, for one run;
/// freed before its database is closed. Errors of the database are EDatabaseError, a stored tree that is damaged is
/// EDSPError naming the structure.
class TDSPFormManager {
 public:
  TDSPFormManager() = default;
  TDSPFormManager(const TDSPFormManager&) = delete;
  TDSPFormManager& operator=(const TDSPFormManager&) = delete;
  virtual ~TDSPFormManager() = default;

  /// Reads the stored tree. A structure that is not stored yet has an empty tree, which is no failure; false when the
  /// tree cannot be had.
  virtual bool LoadPureStructure() = 0;
  /// Stores the tree; its properties stay as they are, empty ones for a structure that is new. False when it could not
  /// be stored.
  virtual bool SavePureStructure() = 0;
  /// The same, for stores that keep more than trees: they learn whether the tree was emptied before it was merged, and
  /// report into List, which may be null. Called in place of SavePureStructure while SpecialSaveMode is on.
  virtual bool SavePureStructureEx(bool ClearRoot, TStringList* List);
  virtual bool SpecialSaveMode() const { return false; }

  TDSPNode& Root() { return FRoot; }
  /// The node of a full name (TDSPNode::GetFullName), ignoring case; the root for an empty one; null when there is
  /// none.
  TDSPNode* FindSection(std::string_view FullName);
  /// The same; nodes that are missing on the way are made.
  TDSPNode& CreateSection(std::string_view FullName);

  int ObjectType = 0;
  std::string ObjectName;

 private:
  TDSPNode FRoot;
};

}  // namespace velkrund
