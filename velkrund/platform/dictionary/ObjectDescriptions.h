#pragma once

#include <string>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

struct TDicViewDescription : TDicObjectDescription {
  std::vector<std::string> Columns = {};  // only where they are declared
  bool Materialized = false;
  std::vector<TDicIndex> Indexes = {};
  std::vector<TDicTrigger> Triggers = {};
  /// Lines: from SELECT on, without CREATE and name, so that a copy may have another one. Parts: Options; Check:
  /// "Local" or "Cascaded".
  TDicEngineWords Words = {};

  bool operator==(const TDicViewDescription&) const = default;
};

enum class TDicParameterMode { In, Out, InOut };

/// Of a procedure, or a column that it returns.
struct TDicParameter {
  std::string Name = {};
  TDicParameterMode Mode = TDicParameterMode::In;
  TDicFieldType Type = TDicFieldType::Any;
  std::optional<int> Size = {}, Scale = {};
  std::optional<std::string> Default = {};
  TDicEngineWords Words = {};  // as of a field

  bool operator==(const TDicParameter&) const = default;
};

struct TDicProcedureDescription : TDicObjectDescription {
  bool Selects = false;  // returns rows
  std::string Language = {};
  std::vector<TDicParameter> Parameters = {};
  std::vector<TDicParameter> Result = {};  // of one that selects
  TDicEngineWords Words = {};              // Lines: the body. Parts: Options, "STABLE SECURITY DEFINER"

  bool operator==(const TDicProcedureDescription&) const = default;
};

struct TDicGeneratorDescription : TDicObjectDescription {
  TDicCounter Counter = {};
  std::optional<std::string> Cache = {};  // numbers fetched at once
  TDicEngineWords Words = {};             // Text

  bool operator==(const TDicGeneratorDescription&) const = default;
};

}  // namespace velkrund
