#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/TestPlatform.h"
#include "tests/support/Values.h"
#include "velkrund/dsp/Dsputils.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {

/// Structures in memory.
class TMemoryStructures final : public TDSPContainer, public TDSPTable {
 public:
  struct TStored {
    TDSPListItem Item;
    TDSPNode Tree;
  };
  using TKey = std::pair<int, std::string>;

  TStored& Get(const std::string& Name, int Type) {
    TStored& Found = Stored[Key(Name, Type)];
    if (Found.Item.ObjectName.empty()) Found.Item.ObjectName = Name, Found.Item.ObjectType = Type;
    return Found;
  }

  TDSPTable& Table(const std::string&) override { return *this; }
  std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string&) override {
    return std::make_unique<TManager>(*this);
  }
  bool DSPStructureExist(const std::string& Name, int Type) override { return Stored.contains(Key(Name, Type)); }
  std::optional<TDSPListItem> GetStructureProperties(const std::string& Name, int Type) override {
    const auto Found = Stored.find(Key(Name, Type));
    return Found == Stored.end() ? std::nullopt : std::optional(Found->second.Item);
  }
  void ChangeStructureProperties(const TDSPListItem& Item) override {
    Get(Item.ObjectName, Item.ObjectType).Item = Item;
  }
  TDSPList List() override {
    TDSPList All;
    for (const auto& [Key, Structure] : Stored) All.Add(Structure.Item);
    return All;
  }
  bool DeleteStructure(const std::string& Name, int Type) override { return Stored.erase(Key(Name, Type)) != 0; }

  std::map<TKey, TStored> Stored;
  bool FailLoad = false;
  bool FailSave = false;
  bool Special = false;     // the form manager's special save mode
  std::string SpecialSave;  // how it was saved in it

 private:
  class TManager final : public TDSPFormManager {
   public:
    explicit TManager(TMemoryStructures& Owner) : FOwner(Owner) {}
    bool LoadPureStructure() override {
      if (FOwner.DSPStructureExist(ObjectName, ObjectType)) Root().Assign(FOwner.Get(ObjectName, ObjectType).Tree);
      return !FOwner.FailLoad;
    }
    bool SavePureStructure() override {
      if (!FOwner.FailSave) FOwner.Get(ObjectName, ObjectType).Tree.Assign(Root());
      return !FOwner.FailSave;
    }
    bool SavePureStructureEx(bool ClearRoot, TStringList* List) override {
      FOwner.SpecialSave = Format("clear %d, list %d", ClearRoot, List != nullptr);
      return SavePureStructure();
    }
    bool SpecialSaveMode() const override { return FOwner.Special; }

   private:
    TMemoryStructures& FOwner;
  };

  static TKey Key(const std::string& Name, int Type) { return {Type, LowerCase(Name)}; }
};

/// A platform with structures.
class TDSPPlatform final : public TTestPlatform {
 public:
  TDSPPlatform() : FGuard(&Structures) {}
  TMemoryStructures Structures;

 private:
  TServiceGuard<TDSPContainer> FGuard;
};

inline TKvVariant Int(std::int64_t Number, TKvKind Kind = TKvKind::Integer) { return Integer(Number, Kind); }
inline TKvVariant AnsiText(std::string_view Bytes) { return Text(Bytes, TKvKind::AnsiString); }
inline TKvVariant Bytes(std::string_view Bytes) { return Text(Bytes, TKvKind::Bytes); }

inline TDSPNode& Add(TDSPNode& Parent, std::string_view Name, TDSPValueType Type = TDSPValueType::None,
                     TKvVariant Value = {}) {
  TDSPNode& Node = Parent.AddNode(Name);
  Node.SetValueType(Type);
  if (!Value.IsNull()) Node.SetValue(std::move(Value));
  return Node;
}

/// The body that a section writes.
inline std::string Export(TEIDSPStructureCommon& Section, TKvEncoding Encoding = TKvEncoding::Utf8) {
  TMemoryStream Memory;
  TEIStream Stream(Memory);
  Stream.SetEncoding(Encoding);
  Section.ExportData(Stream);
  return std::string(Memory.Memory());
}

/// What stands before a body in its source, so that positions in both differ.
inline constexpr std::string_view Before = "12345678\r\n";

/// CutOff: bytes that were behind Body when its size was taken.
inline void Import(TEIDSPStructureCommon& Section, std::string_view Body, TKvEncoding Encoding = TKvEncoding::Utf8,
                   std::size_t CutOff = 0) {
  TMemoryStream Memory;
  Memory.Write(Before);
  Memory.Write(Body);
  Memory.SetPosition(static_cast<std::int64_t>(Before.size()));
  TEIStream Stream(Memory, static_cast<std::int64_t>(Body.size() + CutOff));
  Stream.SetEncoding(Encoding);
  Stream.SetReadLnCnt(0);
  Section.ImportData(Stream);
}

/// A body around tree lines, whose ends are "\n" here.
inline std::string Body(std::string_view Lines) {
  std::string All = " [REMARKS]\r\n  \r\n [TREE]\r\n";
  for (const char Byte : Lines) All += Byte == '\n' ? std::string("\r\n") : std::string(1, Byte);
  return All;
}

/// A section of class T about the structure S of type 12.
template <typename T>
std::unique_ptr<T> Section(int Type = 12) {
  auto Made = std::make_unique<T>();
  Made->Item.ObjectName = "S";
  Made->Item.ObjectType = Type;
  Made->OverwriteAsk().FAlwaysAsk = false;
  return Made;
}

/// A section of either version.
inline std::unique_ptr<TEIDSPStructureCommon> EitherSection(bool Old) {
  if (Old) return Section<TEIDSPStructureOld>();
  return Section<TEIDSPStructure>();
}

}  // namespace velkrund::tests
