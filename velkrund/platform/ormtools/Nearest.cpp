#include "velkrund/platform/ormtools/Nearest.h"

#include <algorithm>
#include <numeric>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

constexpr std::size_t MostSlips = 4;          // more is another word
constexpr std::size_t ShortestBeginning = 3;  // fewer letters begin too much
constexpr std::size_t LongestText = 1000;     // nobody typed more
constexpr std::size_t MostShownBesideGuess = 10;

std::u32string Folded(std::string_view Text) {
  std::u32string Result;
  for (std::size_t At = 0; At < Text.size();) Result += LowerCase(NextCodePoint(Text, At));
  return Result;
}

/// How many letters have to be changed, added, dropped or swapped with their neighbour; Limit + 1 when it is more than
/// Limit. Only what is within Limit of the diagonal is looked at.
std::size_t Distance(std::u32string_view A, std::u32string_view B, std::size_t Limit) {
  const std::size_t TooFar = Limit + 1;
  if (std::max(A.size(), B.size()) - std::min(A.size(), B.size()) > Limit) return TooFar;
  std::vector<std::size_t> Before(B.size() + 1, TooFar), Last(B.size() + 1), Row(B.size() + 1, TooFar);
  std::iota(Last.begin(), Last.end(), 0U);
  for (std::size_t I = 1; I <= A.size(); ++I) {
    const std::size_t First = I > Limit ? I - Limit : 1, End = std::min(B.size(), I + Limit);
    Row[First - 1] = First == 1 ? I : TooFar;
    std::size_t Least = Row[First - 1];
    for (std::size_t J = First; J <= End; ++J) {
      const std::size_t Above = J < I + Limit ? Last[J] : TooFar;
      Row[J] = std::min({Above + 1, Row[J - 1] + 1, Last[J - 1] + (A[I - 1] != B[J - 1] ? 1U : 0U)});
      if (I > 1 && J > 1 && A[I - 1] == B[J - 2] && A[I - 2] == B[J - 1]) Row[J] = std::min(Row[J], Before[J - 2] + 1);
      Least = std::min(Least, Row[J]);
    }
    if (Least > Limit) return TooFar;
    std::swap(Before, Last);
    std::swap(Last, Row);
  }
  return std::min(Last[B.size()], TooFar);
}

}  // namespace

std::string Nearest(std::string_view Text, const std::vector<std::string>& Candidates) {
  if (Text.empty() || Text.size() > LongestText) return {};
  const std::u32string Wanted = Folded(Text);
  const std::size_t Limit = std::min((Wanted.size() + 1) / 3, MostSlips);
  const std::string* Result = nullptr;
  std::size_t Best = Limit + 1;
  for (const std::string& Candidate : Candidates) {
    const std::u32string Known = Folded(Candidate);
    std::size_t Found = Distance(Wanted, Known, Limit);
    if (Wanted.size() >= ShortestBeginning && Known.starts_with(Wanted)) Found = std::min(Found, Limit);
    if (Found >= Best) continue;
    Best = Found;
    Result = &Candidate;
  }
  return Result ? *Result : std::string();
}

std::string NearestHint(std::string_view Text, const std::vector<std::string>& Candidates) {
  const std::string Guess = Nearest(Text, Candidates);
  return Guess.empty() ? Guess : Format("; did you mean '%s'?", Guess);
}

std::string ContentHint(std::string_view Text, const std::vector<std::string>& Candidates, std::string_view Intro) {
  std::string Meant = NearestHint(Text, Candidates);
  if (Candidates.empty() || (Candidates.size() > MostShownBesideGuess && !Meant.empty())) return Meant;
  return std::string(Intro) + JoinedInShort(Candidates) + Meant;
}

}  // namespace velkrund
