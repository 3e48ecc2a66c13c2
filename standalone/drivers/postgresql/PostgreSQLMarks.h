#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velkrund {

/// The savepoints of a transaction, which the server is told of together with the next statement: most parts of a
/// transaction have none or one, parts that begin at the same statement need one mark, and marks cost a server much
/// that makes many tables. Numbers: from 1, as parts are nested.
class TPostgreSQLMarks {
 public:
  struct TMark {
    std::int64_t Cursors;  // the last number of one when the part began
    int Name = 0;          // by which the server knows the mark, the number of a part; 0: not yet
  };

  /// A part begins. Name: 0 when it waits.
  void Begin(int Number, TMark Mark);
  const TMark& Of(int Number) const { return FMarks.at(static_cast<std::size_t>(Number) - 1); }
  /// Whether the part around it began at the same mark.
  bool IsShared(int Number) const { return Number > 1 && Of(Number).Name == Of(Number - 1).Name; }
  /// A part ends; its mark is let go of.
  void End(int Number);
  /// The same where the server has let go of the marks behind it.
  void Drop(int Number);
  void Forget() { FMarks.clear(), FToRelease = 0; }

  /// What the server is to be told before the next statement; empty: nothing.
  std::string Due() const;
  void NoteDone();

 private:
  int FirstThatWaits() const;  // its number; 0: none

  std::vector<TMark> FMarks;
  int FToRelease = 0;  // the name of the first one that the server still has; 0: none
};

}  // namespace velkrund
