#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jobs/run/JobInterface.h"
#include "jobs/structures/StructureSearch.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// Which stored structures a job is about: of AnyType, of any name where it is empty. Names are found ignoring case.
struct TStructureChoice {
  std::string ObjectName;
  std::int32_t ObjectType = AnyType;
};

/// Lists the stored structures of a database, by type, then by name.
class TJobListStructures final : public TJob {
 public:
  TStructureChoice Choice;
  const std::vector<TDSPListItem>& Found() const { return FFound; }
  std::string CommandName() const override { return "dictionary list"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override { FFound.clear(); }
  std::string_view Schema() const override { return "structures"; }
  void Describe(TDocument& Document) const override;

 private:
  std::vector<TDSPListItem> FFound;
};

/// Shows one stored structure with its tree. The name has to be that of one structure.
class TJobShowStructure final : public TJob {
 public:
  TStructureChoice Choice;
  const TDSPListItem& Found() const { return FFound; }

  void CheckSettings() const override { Require(Choice.ObjectName, "ObjectName"); }
  /// The tree of the last run, in lines for people.
  void WriteTree(const std::function<void(std::string_view Lines)>& Write);
  std::string CommandName() const override { return "dictionary show"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  std::string_view Schema() const override { return "structure"; }
  void Describe(TDocument& Document) const override;

 private:
  TDSPListItem FFound;
  std::unique_ptr<TDSPFormManager> FForm;
};

/// Removes one stored structure, properties and tree, in one transaction. The policy Yes, or a person, has to agree.
class TJobDropStructure final : public TPolicyJob {
 public:
  TStructureChoice Choice;
  void CheckSettings() const override { Require(Choice.ObjectName, "ObjectName"); }

  /// "the structure 'CLIENTS' of type 12".
  TLText WhatWasDropped() const;
  std::string CommandName() const override { return "dictionary drop"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override {
    FFound = {};
    ForgetPlan();
  }
  std::string_view Schema() const override { return "drop"; }
  void Describe(TDocument& Document) const override;

 private:
  TDSPListItem FFound;
};

using TJobListStructuresInterface = TJobInterface<TJobListStructures>;
using TJobShowStructureInterface = TJobInterface<TJobShowStructure>;
using TJobDropStructureInterface = TJobInterface<TJobDropStructure>;

}  // namespace velkrund
