#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

// Which stored item is which of an engine's, and whether it is still as it is stored.

/// Of an engine's words: what of the neutral part it reads otherwise than is stored, since it was made of that: a
/// number of 16 bits as one of 64. A text for comparisons alone.
inline constexpr std::string_view MadePart = "Made";

/// An engine, and what it has no place for, so that it cannot have changed it.
struct TEngineView {
  explicit TEngineView(std::string_view Engine);

  std::string_view Engine;
  bool Comments, Schemas, DescendingKeys, DeferrableKeys, UncheckedKeys, TriggerStates;
};

/// The neutral part but names and comments, as text.
std::string Signature(const TDicField& Field);
std::string Signature(const TDicViewDescription& View);
std::string Signature(const TDicProcedureDescription& Procedure);

/// For each stored one, the place of the same among the others.
using TMatches = std::vector<std::optional<std::size_t>>;
TMatches Match(const std::vector<TDicField>& Stored, const std::vector<TDicField>& Now, std::string_view Engine);
TMatches Match(const std::vector<TDicKey>& Stored, const std::vector<TDicKey>& Now, std::string_view Engine);
TMatches Match(const std::vector<TDicIndex>& Stored, const std::vector<TDicIndex>& Now, std::string_view Engine);
TMatches Match(const std::vector<TDicForeignKey>& Stored, const std::vector<TDicForeignKey>& Now,
               std::string_view Engine);
TMatches Match(const std::vector<TDicCheck>& Stored, const std::vector<TDicCheck>& Now, std::string_view Engine);
TMatches Match(const std::vector<TDicTrigger>& Stored, const std::vector<TDicTrigger>& Now, std::string_view Engine);

/// Whether the engine has it as it is stored. Of two that match.
bool IsAsStored(const TDicField& Stored, const TDicField& Now, const TEngineView& View);
bool IsAsStored(const TDicKey& Stored, const TDicKey& Now, const TEngineView& View);
bool IsAsStored(const TDicIndex& Stored, const TDicIndex& Now, const TEngineView& View);
bool IsAsStored(const TDicForeignKey& Stored, const TDicForeignKey& Now, const TEngineView& View);
bool IsAsStored(const TDicCheck& Stored, const TDicCheck& Now, const TEngineView& View);
bool IsAsStored(const TDicTrigger& Stored, const TDicTrigger& Now, const TEngineView& View);

/// For people: "field 'ID'".
std::string Title(const TDicField& Field);
std::string Title(const TDicKey& Key);
std::string Title(const TDicIndex& Index);
std::string Title(const TDicForeignKey& Key);
std::string Title(const TDicCheck& Check);
std::string Title(const TDicTrigger& Trigger);

/// Whether the engine's own words are the same; also when there are none.
bool HasSameWords(const TDicEngineWords& Stored, const TDicEngineWords& Now, std::string_view Engine);
/// The same of an item that has a signature: what was made of it reads the same as now.
bool ReadsAsMade(const TDicEngineWords& StoredWords, const std::string& Stored, const TDicEngineWords& NowWords,
                 const std::string& Now, std::string_view Engine);

}  // namespace velkrund
