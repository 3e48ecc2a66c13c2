#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// Structures that no database keeps: made to be exported, or read from files to be looked at. All databases are one.
class TMemoryStructures final : public TDSPContainer, private TDSPTable {
 public:
  /// Keeps a structure, in the place of one of that type and name.
  void Put(TDSPListItem Item, TDSPNode Tree);
  /// Null when there is none of that type and name, ignoring case.
  const TDSPNode* Find(const std::string& ObjectName, int ObjectType) const;

  TDSPTable& Table(const std::string&) override { return *this; }
  std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string&) override;

 private:
  struct TStored {
    TDSPListItem Item;
    TDSPNode Tree;
  };
  class TForm;

  TStored* Stored(const std::string& ObjectName, int ObjectType);
  TStored& Made(const std::string& ObjectName, int ObjectType);

  bool DSPStructureExist(const std::string& ObjectName, int ObjectType) override;
  std::optional<TDSPListItem> GetStructureProperties(const std::string& ObjectName, int ObjectType) override;
  void ChangeStructureProperties(const TDSPListItem& Item) override;
  TDSPList List() override;
  bool DeleteStructure(const std::string& ObjectName, int ObjectType) override;

  std::map<std::pair<int, std::string>, TStored> FStored;  // by type and name in lower case
};

}  // namespace velkrund
