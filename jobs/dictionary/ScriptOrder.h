#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

/// The statements that make one object.
struct TObjectScript {
  std::string Name;      // without its schema
  std::string FullName;  // with it
  TScript Script;
  bool IsTable = false;
};

/// Puts objects behind what they need, and leaves the order as it is otherwise: tables behind those that they are parts
/// of or inherit from, and behind the procedures that they call; views and procedures, of which nobody knows more than
/// their text, behind all whose names stand in it.
void OrderByNeeds(std::vector<TObjectScript>& Objects);

}  // namespace velkrund
