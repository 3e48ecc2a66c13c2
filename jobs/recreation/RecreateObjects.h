#pragma once

#include <exception>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "jobs/recreation/RecreationJob.h"
#include "velkrund/dictionary/RecreateObjects.h"

namespace velkrund {

enum class TRecreatedKind : int { View = 0, Generator = 1, Procedure = 2 };

/// Makes views, generators or procedures anew as their structures describe them. What depends on each other may come in
/// any order: what fails is tried again as long as something else could be made. Views on a view, owner, rights and
/// comments stay; a generator goes on where it stands.
class TJobRecreateObjects final : public TRecreationJob {
 public:
  TRecreatedKind Kind = TRecreatedKind::View;
  std::string StartValue;  // of a generator, in decimal: the next number that it gives out; empty: it goes on

  void CheckSettings() const override;
  std::string CommandName() const override { return "recreate " + std::string(What()); }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<int> Types() const override;
  std::string_view What() const override;
  bool Exists(const TRecreation& Item) override;
  std::string_view OverwriteKey() const override;
  void Check(TRecreation& Item) override;
  void RecreateAll(TAllowedGaps& Gaps) override;
  void Plan(TAllowedGaps& Gaps) override;

 private:
  void RecreateOne(TRecreation& Item);
  bool LeaveMissing(TRecreation& Item, const std::exception_ptr& Error);
  /// Those that wait, once each; true: something was made, and something failed.
  bool Sweep();
  void RunList(int ObjectType, const std::vector<TRecreation*>& Meant);
  std::vector<TRecreation*> Waiting();

  std::map<TRecreation*, std::exception_ptr> FFailed;  // in the last sweep
  std::string FReport;                                 // what that said of them
};

using TJobRecreateObjectsInterface = TJobInterface<TJobRecreateObjects>;

}  // namespace velkrund
