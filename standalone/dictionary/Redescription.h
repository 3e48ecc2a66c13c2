#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

/// What an engine describes of an object that has a structure already. Of every item that the engine still has as it is
/// stored - its own words are the same; where it has none, the neutral part - the stored one stays, with the words of
/// the other engines; the rest is as the engine now describes it. Gone: gets what words of other engines go with that,
/// in words for people: "the words of PostgreSQL for field 'ID' of table 'ORDERS'".
TDicTableDescription Redescribed(const TDicTableDescription& Stored, TDicTableDescription Now, std::string_view Engine,
                                 std::vector<std::string>& Gone);
TDicViewDescription Redescribed(const TDicViewDescription& Stored, TDicViewDescription Now, std::string_view Engine,
                                std::vector<std::string>& Gone);
TDicProcedureDescription Redescribed(const TDicProcedureDescription& Stored, TDicProcedureDescription Now,
                                     std::string_view Engine, std::vector<std::string>& Gone);
TDicGeneratorDescription Redescribed(const TDicGeneratorDescription& Stored, TDicGeneratorDescription Now,
                                     std::string_view Engine, std::vector<std::string>& Gone);

/// The stored description with the words that the engine has for what was made of it; nothing else of it changes.
TDicTableDescription WithWords(TDicTableDescription Stored, const TDicTableDescription& Made, std::string_view Engine);
TDicViewDescription WithWords(TDicViewDescription Stored, const TDicViewDescription& Made, std::string_view Engine);
TDicProcedureDescription WithWords(TDicProcedureDescription Stored, const TDicProcedureDescription& Made,
                                   std::string_view Engine);
TDicGeneratorDescription WithWords(TDicGeneratorDescription Stored, const TDicGeneratorDescription& Made,
                                   std::string_view Engine);

}  // namespace velkrund
