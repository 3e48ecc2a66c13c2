#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace velkrund {

/// The driver's own statements with parameters that are asked again and again: the server plans a question about its
/// catalogue much longer than it looks for the answer, so it is told to keep those that come a second time ready.
/// Nothing of an answer is remembered. Names are never used twice.
class TPostgreSQLRepeated {
 public:
  /// The name by which a statement goes; null: it is asked as it stands.
  const std::string* NameOf(const std::string& Statement);
  /// Whether the server knows it.
  bool IsReady(const std::string& Name) const { return FReady.contains(Name); }
  void NoteReady(const std::string& Name) { FReady.insert(Name); }
  /// The server knows none any more.
  void Forget() { FNames.clear(), FReady.clear(); }

 private:
  std::unordered_set<std::size_t> FAsked;               // once, by the hashes of their texts
  std::unordered_map<std::string, std::string> FNames;  // of those that came again, by their texts
  std::unordered_set<std::string> FReady;               // names
  int FLastName = 0;
};

}  // namespace velkrund
