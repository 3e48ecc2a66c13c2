#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "velkrund/operations/ListRun.h"
#include "velkrund/resources/LResource.h"

namespace velkrund {

/// What became of one section, or string, of a list.
struct TLItemResult {
  std::string Name;
  TLResourceReport Report = {};  // of a deletion: the strings that were there and are gone
  bool LeftAlone = false;        // as a whole, by an answer
  std::exception_ptr Error = nullptr;
};

/// Works through lists of sections, or strings, as RunList does, and keeps what became of each. A part of operations.
class TLItemResults {
 public:
  /// Of the last run, those that it has come to.
  const std::vector<TLItemResult>& Results() const { return FResults; }
  /// The texts of all of them.
  std::int64_t Texts() const;
  std::int64_t TextsLeftAlone() const;
  std::int64_t Strings() const;
  /// The names of those with an error.
  std::vector<std::string> Failed() const;

 protected:
  ~TLItemResults() = default;

  /// Item: false ends the list. 1; 0: cancelled, or ended by an item or EAbort.
  int RunItems(const TUtilOperation& Operation, const TStringList& Names, TListWords Words,
               const std::function<bool(TLItemResult& Result, int Index)>& Item);

  std::vector<TLItemResult> FResults;

 private:
  std::int64_t Sum(std::int64_t TLResourceReport::*Count) const;
};

}  // namespace velkrund
