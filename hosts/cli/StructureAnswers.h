#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "hosts/cli/Session.h"
#include "hosts/cli/Structures.h"
#include "velkrund/dsp/DSPOverwriteAsk.h"

namespace velkrund {

/// --overwrite, for commands that load structures.
TOption OverwriteStructuresOption(TOverwrite& Overwrite);

/// The operation's question about structures that exist, answered as far as the option does.
void AnswerByOption(TDSPOverwriteAsk& Ask, TOverwrite Overwrite);

/// Why a structure is left out.
inline constexpr const char* StructureKept = "the structure is already there";

/// The structures that a run is to load and would ask about.
class TStructureTargets {
 public:
  void Add(const TStructureId& Structure);
  /// Where nobody can be asked: raises EQuestionUnanswered, which names the structures that exist and those that the
  /// run loads more than once, and Options, which would answer.
  void RefuseUnanswered(const TSession& Session, const std::string& Options) const;

 private:
  struct TTarget {
    TStructureId Structure;
    int Count = 0;
  };
  std::vector<TTarget> FTargets;
  std::map<std::pair<int, std::string>, std::size_t> FPlaces;  // by type and name in lower case
};

}  // namespace velkrund
