#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <random>

#include "tests/dictionary/TableFixture.h"
#include "tests/support/Sanitizer.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

constexpr int Rounds = ChecksAddresses ? 10'000 : 1'000'000;
constexpr std::uint64_t Seed = 20240229;

using TRandom = std::mt19937_64;

class TValueField final : public TField {
 public:
  explicit TValueField(TKvKind Kind) : TField("F", Kind) {}
  const TKvVariant& Value() override { return BufferedValue(); }
};

std::int64_t AnySize(TRandom& Random) { return static_cast<std::int64_t>(Random()) >> Random() % 64; }

std::int64_t AnyMoment(TRandom& Random) {
  using TMoments = std::uniform_int_distribution<std::int64_t>;
  const std::int64_t Moment = TMoments(MinDateTime.Microseconds, MaxDateTime.Microseconds)(Random);
  // Now and then the last microsecond of a day, where rounding shows.
  const std::int64_t Midnight = Moment - (Moment - MinDateTime.Microseconds) % MicrosecondsPerDay;
  return Random() % 4 ? Moment : Midnight + MicrosecondsPerDay - 1;
}

std::string AnyText(TRandom& Random) {
  static constexpr std::string_view Awkward[] = {"#", "|", "'", "@", "<", ">", "\r\n", " ", "0041", "#007C", "NULL"};
  // Printable characters, control characters, Cyrillic, halves of pairs, the rest of the plane, those beyond it.
  static constexpr struct {
    unsigned First, Count;
  } Ranges[] = {{0x20, 0x5F}, {0, 0xA1}, {0x400, 0x60}, {0xD800, 0x800}, {0xE000, 0x2000}, {0x10000, 0x100000}};
  std::string Text;
  for (auto Count = Random() % 12; Count > 0; --Count) {
    const auto [First, Size] = Ranges[Random() % std::size(Ranges)];
    const auto Code = static_cast<char32_t>(First + Random() % Size);
    if (Random() % 4 == 0)
      Text += Awkward[Code % std::size(Awkward)];
    else if (Code < 0x10000)
      AppendUtf16Unit(Text, static_cast<char16_t>(Code));
    else
      AppendUtf8(Text, Code);
  }
  return Text;
}

std::string AnyBytes(TRandom& Random) {
  std::string Bytes(Random() % 12, '\0');
  for (char& Byte : Bytes) Byte = static_cast<char>(Random());
  return Bytes;
}

/// What version 200 gives back for a value of any kind.
TKvVariant Current(const TKvVariant& Value, const TCodePage& Page) {
  if (IsIntegerKind(Value.Kind())) return Integer(Value.AsInteger());
  if (Value.Kind() == TKvKind::UInt64 && Value.AsInteger() >= 0) return Integer(Value.AsInteger());
  if (Value.Kind() == TKvKind::Double && std::isnan(Value.AsReal()))
    return Real(std::numeric_limits<double>::quiet_NaN());
  if (Value.Kind() != TKvKind::AnsiString) return Value;
  std::string Characters;
  for (const char Byte : Value.AsText()) AppendUtf8(Characters, Page.ToUnicode(static_cast<unsigned char>(Byte)));
  return Text(Characters);
}

/// What version 100 gives back, but for moments; nothing where it refuses the value.
std::optional<TKvVariant> Old(const TKvVariant& Value, const TCodePage& Page) {
  if (IsIntegerKind(Value.Kind()) || Value.Kind() == TKvKind::UInt64) {
    if (Value.AsInteger() != static_cast<std::int32_t>(Value.AsInteger())) return std::nullopt;
    if (Value.Kind() == TKvKind::UInt64 && Value.AsInteger() < 0) return std::nullopt;
    return Integer(Value.AsInteger(), TKvKind::Integer);
  }
  if (!HasBytes(Value.Kind())) return Current(Value, Page);
  std::string Bytes(Value.AsText());
  if (Value.Kind() == TKvKind::String) {
    Bytes.clear();
    for (std::size_t At = 0; At < Value.AsText().size();)
      Bytes += static_cast<char>(Page.FromUnicode(NextCodePoint(Value.AsText(), At)).value_or('?'));
  }
  return Text(Bytes, TKvKind::AnsiString);
}

/// A moment in version 100 is a double: to the microsecond within 65535 days of 1899-12-30, beyond them to 40, and
/// always on its day.
bool IsNear(const TKvVariant& Read, TDateTime Expected) {
  const auto DayOf = [](TDateTime At) { return (At.Microseconds - MinDateTime.Microseconds) / MicrosecondsPerDay; };
  const std::int64_t Allowed = std::abs(DayOf(Expected) - 693'593) < 65'535 ? 0 : 40;
  return Read.Kind() == TKvKind::DateTime && DayOf(Read.AsDateTime()) == DayOf(Expected) &&
         std::abs(Read.AsDateTime().Microseconds - Expected.Microseconds) <= Allowed;
}

constexpr struct {
  const char* Name;
  TKvKind Column;
  int Share;  // one in so many rounds
  void (*Make)(TRandom&, TKvVariant&);
} Generators[] = {
    {"reals", TKvKind::Double, 1, [](TRandom& R, TKvVariant& V) { V.SetReal(std::bit_cast<double>(R())); }},
    {"subnormals", TKvKind::Null, 10,
     [](TRandom& R, TKvVariant& V) { V.SetReal(std::bit_cast<double>(R() & 0x800F'FFFF'FFFF'FFFF)); }},
    {"nearly whole", TKvKind::Double, 10,
     [](TRandom& R, TKvVariant& V) { V.SetReal(std::nextafter(static_cast<double>(AnySize(R)), 0.5)); }},
    {"integers", TKvKind::Int64, 1, [](TRandom& R, TKvVariant& V) { V.SetInteger(AnySize(R)); }},
    {"unsigned", TKvKind::UInt64, 10, [](TRandom& R, TKvVariant& V) { V.SetUnsigned(R() >> R() % 64); }},
    {"amounts", TKvKind::Currency, 1, [](TRandom& R, TKvVariant& V) { V.SetCurrency({AnySize(R)}); }},
    {"moments", TKvKind::DateTime, 1, [](TRandom& R, TKvVariant& V) { V.SetDateTime({AnyMoment(R)}); }},
    {"days", TKvKind::SysDate, 10,
     [](TRandom& R, TKvVariant& V) {
       const std::int64_t Moment = AnyMoment(R);
       V.SetSysDate({Moment - (Moment - MinDateTime.Microseconds) % MicrosecondsPerDay});
     }},
    {"times", TKvKind::SysTime, 10,
     [](TRandom& R, TKvVariant& V) { V.SetSysTime(static_cast<std::int64_t>(R() % MicrosecondsPerDay)); }},
    {"texts", TKvKind::String, 1, [](TRandom& R, TKvVariant& V) { V.SetText(AnyText(R)); }},
    {"malformed texts", TKvKind::String, 10, [](TRandom& R, TKvVariant& V) { V.SetText(AnyBytes(R)); }},
    {"8-bit texts", TKvKind::AnsiString, 10,
     [](TRandom& R, TKvVariant& V) { V.SetText(AnyBytes(R), TKvKind::AnsiString); }},
    {"bytes", TKvKind::Bytes, 10, [](TRandom& R, TKvVariant& V) { V.SetBytes(AnyBytes(R)); }},
};

// Written and read again by both versions, every value comes back bit for bit, or as what the version can hold of it.
TEST(RandomValues, ComeBackFromBothVersions) {
  TTestPlatform Platform;
  TEITableData CurrentSection;
  TEIOldTableData OldSection;
  const TCodePage& Page = TCodePage::Default();
  std::string Written;
  const auto ReadBack = [&Written](TEICommonTableData& Section, TField& Field, TField& Back) -> const TKvVariant& {
    Written.clear();
    Section.FieldToString(Field, Written);
    Section.StringToField(Written, Back);
    return Back.Value();
  };
  for (const auto& Generator : Generators) {
    TRandom Random(Seed);
    TValueField Field(Generator.Column), Back(Generator.Column);
    for (int Round = 0; Round < Rounds / Generator.Share; ++Round) {
      Generator.Make(Random, Field.Buffer());
      const TKvVariant& Value = Field.Value();
      bool Same = ReadBack(CurrentSection, Field, Back) == Current(Value, Page);
      if (const auto Expected = Old(Value, Page); !Expected)
        EXPECT_THROW(ReadBack(OldSection, Field, Back), EDicUtilError);
      else if (Value.Kind() == TKvKind::DateTime)
        Same &= IsNear(ReadBack(OldSection, Field, Back), Value.AsDateTime());
      else
        Same &= ReadBack(OldSection, Field, Back) == *Expected;
      Written.clear();
      ASSERT_TRUE(Same && !HasFailure()) << (Value.AppendAsText(Written), Written) << ", one of the " << Generator.Name
                                         << ", seed " << Seed << ", round " << Round;
    }
  }
}

}  // namespace
}  // namespace velkrund::tests
