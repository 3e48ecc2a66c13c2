#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "jobs/report/Document.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// Writes the nodes below Root for people, sorted as exports are: a line a node, what is below it indented, values
/// whole. Texts of several lines follow their node, a "|" before each line. Sorts the tree.
void WriteTreeText(TDSPNode& Root, const std::function<void(std::string_view Lines)>& Write);

/// The nodes below Root for programs: a list of objects with name, type, value and nodes, without type and
/// value where there are none; integers, finite floating numbers and truth values are such, bytes hexadecimal digits,
/// all else texts; a variant's value is an object with kind and value. Sorts the tree. Raises EDSPError for a tree that
/// is too deep to be nested so.
TDocument TreeDocument(TDSPNode& Root);

}  // namespace velkrund
