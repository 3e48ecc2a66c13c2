#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/NameIndex.h"

namespace velkrund {

/// The texts of one language by name, found ignoring case, in the order in which the names came first. Names and texts
/// lie one behind the other, so that a section takes little more memory than its file.
class TStringHash {
 public:
  struct TEntry {
    std::string_view Name, Text;  // valid as long as the hash
  };

  TStringHash() = default;
  TStringHash(const TStringHash& Other);
  TStringHash(TStringHash&&) noexcept = default;
  TStringHash& operator=(TStringHash Other) noexcept;
  ~TStringHash() = default;

  /// Sets the text of a name; true: the name is new. The form of the name stays the one that came first.
  bool Change(std::string_view Name, std::string_view Text);
  /// Nothing: there is none.
  std::optional<std::string_view> Find(std::string_view Name) const;
  const std::vector<TEntry>& Entries() const { return FEntries; }

 private:
  struct TBlock {
    std::unique_ptr<char[]> Bytes;
    std::size_t Size, Used;
  };
  struct TSlot {
    std::uint32_t Hash, Number;  // of the entry, from 1; 0: free
  };

  /// The slot of a name, or the free one for it.
  std::size_t SlotOf(std::string_view Name, std::uint32_t Hash) const;
  void MakeSlots();
  std::string_view Kept(std::string_view Text);

  std::vector<TEntry> FEntries;
  std::vector<TSlot> FSlots;  // a power of two, at least a quarter of them free
  std::vector<TBlock> FBlocks;
};

/// A section of localized strings in memory: languages in a given order, each with its texts.
class TLSection {
 public:
  /// A language that is there already, ignoring case, is not added again.
  void AddLanguage(const std::string& Language);
  int GetCount() const { return static_cast<int>(FLanguages.size()); }
  /// Index: 0 .. GetCount() - 1; EListError outside.
  const std::string& GetLanguages(int Index) const { return At(Index).Name; }
  TStringHash& GetResByIndex(int Index) { return const_cast<TLanguage&>(At(Index)).Resources; }
  const TStringHash& GetResByIndex(int Index) const { return At(Index).Resources; }
  /// Ignoring case; null: there is no such language.
  TStringHash* GetResources(std::string_view Language);
  const TStringHash* GetResources(std::string_view Language) const;
  void Assign(const TLSection& Other) { *this = Other; }

 private:
  struct TLanguage {
    std::string Name;
    TStringHash Resources;
  };

  const TLanguage& At(int Index) const;

  std::deque<TLanguage> FLanguages;  // references stay when others are added
  TNameIndex FNames;
};

}  // namespace velkrund
