#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jobs/report/StructureId.h"
#include "jobs/run/JobInterface.h"
#include "standalone/dictionary/Describer.h"

namespace velkrund {

/// Describes objects of a database as structures and stores these in it: all or none of them.
class TJobAdoptObjects final : public TPolicyJob {
 public:
  enum class TState { Added, Replaced, Unchanged, LeftOut };
  struct TAdoption {
    TStructureId Structure;
    TState State = TState::Added;
    std::vector<std::string> Gone = {};  // words of other engines that went with what has changed
  };

  std::vector<std::string> Names;  // of tables, views, generators, procedures, in any case; none: all

  /// By type, then by name.
  const std::vector<TAdoption>& Adoptions() const { return FAdoptions; }
  /// What the structures do not say of what they describe: owners, rights.
  const std::vector<std::string>& LeftBehind() const { return FLeftBehind; }
  int Count(TState State) const;
  static std::string_view StateText(TState State);
  std::string CommandName() const override { return "dictionary adopt"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  std::string_view Schema() const override { return "adoption"; }
  void Describe(TDocument& Document) const override;

 private:
  std::vector<TDescribedObject> DescribeAll();
  void Settle(const std::vector<TDescribedObject>& Described);
  void Store(std::vector<TDescribedObject> Described);

  std::vector<TAdoption> FAdoptions;
  std::vector<std::string> FLeftBehind;
};

using TJobAdoptObjectsInterface = TJobInterface<TJobAdoptObjects>;

}  // namespace velkrund
