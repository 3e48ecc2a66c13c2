#include <gmock/gmock.h>

#include "standalone/structures/StoredTree.h"
#include "standalone/values/StoredValues.h"
#include "tests/standalone/Support.h"
#include "tests/support/StructureSamples.h"
#include "velkrund/platform/ormtools/Checksum.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

std::string Stored(const TDSPNode& Tree) {
  std::string Result;
  AppendStoredTree(Result, Tree);
  return Result;
}

/// The bytes with a checksum that is right again.
std::string Sealed(std::string Bytes) {
  AppendStoredFixed(Bytes, Crc32(Bytes), 4);
  return Bytes;
}

std::string ReadError(std::string_view Bytes) {
  TDSPNode Tree("kept");
  const std::string Error = ErrorOf([&] { ReadStoredTree(Bytes, Tree); });
  EXPECT_EQ(Tree.Name(), Error == "no error" ? "" : "kept");
  return Error;
}

TEST(StoredTree, EveryValueComesBack) {
  TDSPNode Tree;
  AddNodeSamples(Tree);
  AddNodeSamples(Tree.AddNode("below"));
  TDSPNode Read("other");
  ReadStoredTree(Stored(Tree), Read);
  EXPECT_TRUE(Read == Tree);
  EXPECT_EQ(Stored(Read), Stored(Tree));
}

TEST(StoredTree, IsAsDeepAsItIsWide) {
  TDSPNode Tree;
  TDSPNode* At = &Tree;
  for (int Level = 0; Level < 200'000; ++Level) At = &At->AddNode("n");
  for (int Child = 0; Child < 1000; ++Child) At->AddNode("n");
  TDSPNode Read;
  ReadStoredTree(Stored(Tree), Read);
  EXPECT_TRUE(Read == Tree);
}

// Stores last longer than programs: these bytes have to be read for ever.
TEST(StoredTree, TheBytesAreFixed) {
  TDSPNode Tree;
  TDSPNode& Form = Tree.AddNode("Form");
  Form.SetValueType(TDSPValueType::Integer);
  Form.SetValue([] {
    TKvVariant Value;
    Value.SetInteger(-300, TKvKind::Integer);
    return Value;
  }());
  EXPECT_EQ(Stored(Tree), Sealed(std::string("VKTR\1\0\0\1\4Form\2\xD7\4\0", 17)));
  EXPECT_EQ(Crc32("123456789"), 0xCBF43926U);
}

TEST(StoredTree, EveryChangedByteAndEveryCutIsFound) {
  TDSPNode Tree;
  AddNodeSamples(Tree);
  AddNodeSamples(Tree.AddNode("below"));
  const std::string Good = Stored(Tree);
  for (std::size_t Place = 0; Place < Good.size(); ++Place) {
    std::string Bad = Good;
    Bad[Place] = static_cast<char>(Bad[Place] ^ (1 << (Place % 8)));
    EXPECT_NE(ReadError(Bad), "no error") << Place;
    EXPECT_NE(ReadError(std::string_view(Good).substr(0, Place)), "no error") << Place;
  }
}

// What a checksum does not find, since whoever wrote it has counted it in.
TEST(StoredTree, WrongPartsAreRefusedWhateverTheChecksumSays) {
  const auto Of = [](std::string_view Body) { return Sealed("VKTR\1" + std::string(Body)); };
  using namespace std::string_view_literals;
  const struct {
    std::string Bytes;
    const char* Says;
  } Cases[] = {
      {"", "it does not begin as a tree does"},
      {"XKTR\1\0\0\0....", "it does not begin as a tree does"},
      {"VKTR\1", "it is cut off"},
      {Sealed(std::string("VKTR\2\0\0\0", 8)), "its format has the version 2, only 1 is known"},
      {Of("\0\x17\0"sv), "unknown value type 23"},
      {Of("\0\0\x05"sv), "cannot have so many children"},
      {Of("\0\0\0\0"sv), "something stands behind its last node"},
      {Of("\x09\0\0"sv), "it is cut off"},
      {Of("\0\5\1\0\0"sv), "unknown value kind 1"},
      {Of("\0\5\x63\0\0"sv), "unknown value kind 99"},
      {Of("\0\x08\x80\x04\0"sv), "a value of kind 2 is out of range"},  // 256 as a byte
      {Of("\0\x10\1\0"sv), "a value of kind 15 is out of range"},       // a time before midnight
      {Of("\0\x02\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\1\0"sv), "a number in it is too large"},
      {Of("\0\x0D\2ab\0"sv), "cannot hold a value of kind 9"},  // two characters in the place of one
  };
  for (const auto& Case : Cases) EXPECT_THAT(ReadError(Case.Bytes), HasSubstr(Case.Says));
  EXPECT_EQ(ReadError(Of("\0\0\0"sv)), "no error");
}

}  // namespace
}  // namespace velkrund::tests
