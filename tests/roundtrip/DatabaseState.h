#pragma once

#include <map>
#include <string>

#include "tests/roundtrip/TestDatabase.h"

namespace velkrund::tests {

/// All that a database holds, past the code under test.
struct TDatabaseState {
  struct TCounter {
    long long Step, Value;
    bool operator==(const TCounter&) const = default;
  };

  std::map<std::string, std::string> Rows;  // of every table that holds rows itself, sorted
  std::string Objects;                      // keys, checks, indexes and triggers, each with its state
  std::map<std::string, TCounter> Counters;

  bool operator==(const TDatabaseState&) const = default;
};

TDatabaseState StateOf(const TTestDatabase& Database);

/// The counters of both, each at the further of its two places.
std::map<std::string, TDatabaseState::TCounter> Furthest(const TDatabaseState& One, const TDatabaseState& Other);

/// A failure says line by line what is missing, and what is there too much.
void ExpectState(const TDatabaseState& Now, const TDatabaseState& Expected);

}  // namespace velkrund::tests
