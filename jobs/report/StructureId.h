#pragma once

#include <string>
#include <string_view>

#include "jobs/report/Document.h"

namespace velkrund {

/// What identifies a stored structure.
struct TStructureId {
  int Type = 0;
  std::string Name;
};

/// "CLIENTS (12)": for people, and the usual name of its section.
std::string StructureText(const TStructureId& Structure);
/// The same for programs.
TDocument StructureDocument(const TStructureId& Structure);
/// What a type is, where that is known: "visual form". Empty otherwise.
std::string_view KindOfStructure(int Type);
/// "12 visual form".
std::string TypeText(int Type);

}  // namespace velkrund
