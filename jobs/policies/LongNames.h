#pragma once

#include <string>
#include <vector>

#include "jobs/policies/Policies.h"

namespace velkrund {

struct TDicTableDescription;

/// Answers whether tables and views may be made whose names some databases do not take, by the policy given, else by
/// asking; remembers those that were.
class TLongNames {
 public:
  explicit TLongNames(TLongNamePolicy Policy) : FPolicy(Policy) {}

  // To be asked once for each name. Raise EPolicyUnanswered when nobody can answer.
  bool MayMakeTable(const TDicTableDescription& Table);
  bool MayMakeView(const std::string& ViewName);

  /// The long names of what may be made, in order.
  const std::vector<std::string>& Kept() const { return FKept; }
  /// Says how many those are, for people; nothing when there are none.
  void AddNote(std::vector<TLText>& Notes) const;

 private:
  template <typename TAskCancel>
  bool Decide(const std::string& Name, TAskCancel AskCancel);

  const TLongNamePolicy FPolicy;
  std::vector<std::string> FKept;
};

}  // namespace velkrund
