#pragma once

#include <memory>

#include "standalone/dictionary/Generators.h"

namespace velkrund {

/// Generators of an engine that has none, in the catalogue table velkrund_generators. Borrows the connection.
class TCatalogueGenerators final : public TGenerators {
 public:
  explicit TCatalogueGenerators(TConnection& Connection) : FConnection(Connection) {}

  std::vector<TDicGeneratorDescription> List() override;
  std::optional<TDicGeneratorDescription> Find(const std::string& Name) override;
  void Create(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) override;
  void Alter(const TDicGeneratorDescription& There, const TDicGeneratorDescription& Generator,
             std::optional<std::int64_t> Start) override;
  std::int64_t Value(const TDicGeneratorDescription& Generator) override;
  void SetValue(const TDicGeneratorDescription& Generator, std::int64_t Value) override;
  void Drop(const TDicGeneratorDescription& Generator) override;

  /// Gives the next number out, to the caller's transaction alone. Raises EDatabaseError when all have been given out.
  std::int64_t Next(const TDicGeneratorDescription& Generator);

 private:
  std::unique_ptr<TCursor> Select(const char* Columns, const std::string* Key);
  std::optional<std::int64_t> LastValue(const TDicGeneratorDescription& Generator);

  TConnection& FConnection;
};

}  // namespace velkrund
