#pragma once

#include <string>
#include <string_view>

namespace velkrund {

/// A statement of the driver's own with its operators (=, <>, >, ||) looked for in the engine's schema alone. On the
/// search path anybody who may create objects there could plant some of the same names, which would run with the rights
/// of whoever connects. They stand between blanks, and bind more weakly than all but NOT, AND and OR, from left to
/// right. Types and functions are to be named with the schema.
std::string CatalogueStatement(std::string_view Statement);

}  // namespace velkrund
