#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// Appends a tree as the bytes in which databases keep it:
///
///     "VKTR"      4 bytes
///     version     1 byte: 1
///     node        the root, and behind each node its children, one after the other, each followed by its own
///     checksum    CRC-32 of all before, 4 bytes, the lowest first
///
/// A node is its name, its type (1 byte), its value and the number of its children, as standalone/values/StoredValues.h
/// has them. A value of type Variant begins with its kind (1 byte). None and Deleted have no value.
void AppendStoredTree(std::string& Out, const TDSPNode& Root);

/// Reads such bytes into Root, in place of what it holds. Raises EDSPError that says why they are none; Root is then as
/// it was.
void ReadStoredTree(std::string_view Bytes, TDSPNode& Root);

}  // namespace velkrund
