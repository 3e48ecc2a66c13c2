#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

// Values as bytes: the parts that stored trees and BLOB tables are made of. What is equal has the same bytes, and other
// bytes are refused. Fixed, since they are in databases and files:
//
//     number     unsigned, seven bits a byte from the lowest on, the eighth bit set in all but the last byte
//     text       its length in bytes, a number, and its bytes
//     value      of a floating kind 8 bytes, the lowest first; a truth value one byte, 0 or 1; a text or bytes a text;
//                null nothing; every other kind a signed number: 0, -1, 1, -2 ... are the numbers 0, 1, 2, 3 ...

/// Why bytes are no such parts: "it is cut off".
VELKRUND_EXCEPTION(EStoredValue, Exception);

void AppendStoredNumber(std::string& Out, std::uint64_t Number);
void AppendStoredText(std::string& Out, std::string_view Text);
/// The lowest Size bytes of Number, the lowest first. Size: 1 .. 8.
void AppendStoredFixed(std::string& Out, std::uint64_t Number, std::size_t Size);
/// Whether the value is one of those that its kind has: a moment between the years 1 and 9999, a byte up to 255.
bool IsStorable(const TKvVariant& Value);
/// Without its kind. Value: one that is storable.
void AppendStoredValue(std::string& Out, const TKvVariant& Value);

/// Takes stored parts off the front of bytes that it borrows. Raises EStoredValue.
class TStoredBytes {
 public:
  explicit TStoredBytes(std::string_view Bytes, std::size_t Position = 0) : FBytes(Bytes), FPosition(Position) {}

  std::size_t Position() const { return FPosition; }
  std::size_t Left() const { return FBytes.size() - FPosition; }
  unsigned char Byte() { return static_cast<unsigned char>(Take(1).front()); }
  std::uint64_t Number();
  /// Borrowed.
  std::string_view Text();
  /// Size: 1 .. 8.
  std::uint64_t Fixed(std::size_t Size);

 private:
  std::string_view Take(std::uint64_t Size);

  std::string_view FBytes;
  std::size_t FPosition;
};

/// Texts borrow the bytes. Raises EStoredValue, also for a kind that does not exist and for a number that the kind does
/// not have.
void ReadStoredValue(TStoredBytes& Bytes, TKvKind Kind, TKvVariant& Value);

}  // namespace velkrund
