#include <gtest/gtest.h>

#include "velkrund/eif/Eifiles.h"

namespace velkrund::tests {
namespace {

TEST(StreamView, BoundedViewsReadOnlyTheirBody) {
  TMemoryStream Base;
  Base.Write("headbody\rx\rtail");
  Base.SetPosition(4);
  TEIStream View(Base, 7);
  EXPECT_TRUE(View.GetReadOnly());
  EXPECT_EQ(View.Size(), 7);
  EXPECT_EQ(View.ReadLnCnt(), -1);
  View.SetReadLnCnt(0);
  EXPECT_EQ(View.Readln(), "body");
  EXPECT_EQ(View.Position(), 5);
  EXPECT_EQ(View.Readln(), "x");
  EXPECT_EQ(View.Readln(), "") << "the end of the view";
  EXPECT_EQ(View.ReadLnCnt(), 3);
  char Buffer[16];
  View.SetPosition(5);
  EXPECT_EQ(View.Read(Buffer, sizeof Buffer), 2u);
  for (const auto& Change :
       {std::function<void()>([&] { View.Write("x"); }), {[&] { View.SetSize(1); }}, {[&] { View.Writeln("x"); }}})
    try {
      Change();
      ADD_FAILURE() << "a read-only view was changed";
    } catch (const EEIError& Error) {
      EXPECT_STREQ(Error.what(), "Can not change EIStream data in readonly mode");
    }
}

TEST(StreamView, SeekKeepsItsAsymmetries) {
  const struct {
    std::int64_t Size;  // of the view over "0123456789" from 2
    TSeekOrigin Origin;
    std::int64_t Offset, Expected;
  } Cases[] = {
      {4, TSeekOrigin::Beginning, 3, 3},  {4, TSeekOrigin::Beginning, -1, 0}, {4, TSeekOrigin::Beginning, 5, 8},
      {4, TSeekOrigin::Current, 2, 3},    {4, TSeekOrigin::Current, -9, 0},   {4, TSeekOrigin::Current, 4, 8},
      {4, TSeekOrigin::End, 1, 3},        {4, TSeekOrigin::End, 9, 0},        {4, TSeekOrigin::End, -1, 8},
      {-1, TSeekOrigin::Beginning, 3, 3}, {-1, TSeekOrigin::End, 0, 8},       {-1, TSeekOrigin::End, -3, 5},
  };
  for (const auto& Case : Cases) {
    TMemoryStream Base;
    Base.Write("0123456789");
    Base.SetPosition(2);
    TEIStream View(Base, Case.Size);
    View.SetPosition(1);
    EXPECT_EQ(View.Seek(Case.Offset, Case.Origin), Case.Expected)
        << Case.Size << " " << static_cast<int>(Case.Origin) << " " << Case.Offset;
    EXPECT_EQ(Base.Position(), Case.Expected + 2);
  }
}

TEST(StreamView, UnboundedViewsSizeTheirBase) {
  TMemoryStream Base;
  Base.Write("0123456789");
  Base.SetPosition(2);
  TEIStream View(Base);
  EXPECT_EQ(View.Size(), 8);
  EXPECT_THROW(View.SetSize(-1), EEIError);
  View.SetSize(8);
  EXPECT_EQ(Base.Size(), 6) << "the origin is subtracted";
}

}  // namespace
}  // namespace velkrund::tests
