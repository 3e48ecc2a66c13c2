#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/platform/structures/DSPImportOverwriteOptions.h"

namespace velkrund {

/// Loads structure sections of one file into the structures of a database.
class TJobImportStructures final : public TImportJob {
 public:
  TJobImportStructures() : TImportJob("structure") {}

  std::string FileName;               // "-": standard input
  std::vector<std::string> Sections;  // names, or indexes as decimal numbers; none: every structure section
  std::string ObjectName;             // for one section: the structure to load; empty: the one that the section names
  std::int32_t ObjectType = 0;        // for one section; 0: the one that the section names
  std::string RootNode;               // for one section: the node to load; empty: the one that the section names
  /// Given: structures that are there are not asked about, and what becomes of nodes that both have.
  std::optional<TDSPImportOverwriteOptions> Merge;
  bool ClearRoot = true;         // what is replaced is emptied first; the other ways of merging add to it
  bool ChangeProperties = true;  // table name, parent object and remarks are stored too

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return {FileName}; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
  bool NamesSections() const override { return !Sections.empty(); }
  bool MakesObjects() const override { return false; }

 private:
  TExisting Existing() const { return Merge ? TExisting::Replace : Policies.ExistingStructures; }
};

using TJobImportStructuresInterface = TJobInterface<TJobImportStructures>;

}  // namespace velkrund
