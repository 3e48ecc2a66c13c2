#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

// The parts that a stored tree is made of; StoredTree.h says how they look.

void AppendStoredNumber(std::string& Out, std::uint64_t Number);
void AppendStoredText(std::string& Out, std::string_view Text);
/// The lowest Size bytes of Number, the lowest first. Size: 1 .. 8.
void AppendStoredFixed(std::string& Out, std::uint64_t Number, std::size_t Size);
/// Without its kind.
void AppendStoredValue(std::string& Out, const TKvVariant& Value);

/// Takes stored parts off the front of bytes that it borrows. Raises EDSPError where they end too early.
class TStoredBytes {
 public:
  explicit TStoredBytes(std::string_view Bytes) : FRest(Bytes) {}

  std::size_t Left() const { return FRest.size(); }
  unsigned char Byte() { return static_cast<unsigned char>(Take(1).front()); }
  std::uint64_t Number();
  /// Borrowed.
  std::string_view Text();
  /// Size: 1 .. 8.
  std::uint64_t Fixed(std::size_t Size);

 private:
  std::string_view Take(std::uint64_t Size);

  std::string_view FRest;
};

/// Raises EDSPError for a kind that does not exist, and for a number that the kind cannot hold.
void ReadStoredValue(TStoredBytes& Bytes, TKvKind Kind, TKvVariant& Value);

}  // namespace velkrund
