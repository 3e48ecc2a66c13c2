#include "jobs/report/Document.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

using TJson = nlohmann::ordered_json;

std::string Printed(const TJson& Json, int Indent) {
  return Json.dump(Indent, ' ', false, TJson::error_handler_t::replace);
}

}  // namespace

struct TDocument::TValue {
  TJson Json = TJson::object();
  std::vector<std::pair<std::string, TElements>> Later = {};  // lists that stand in Json as null

  TJson& Member(std::string_view Name) { return Json[std::string(Name)]; }
  const TElements* ListOf(const std::string& Name) const {
    for (const auto& [Member, Elements] : Later)
      if (Member == Name) return &Elements;
    return nullptr;
  }
  /// With all its lists.
  TJson Whole() && {
    for (const auto& [Name, Elements] : Later) {
      TJson& List = Member(Name) = TJson::array();
      for (std::size_t Place = 0; Place < Elements.Count; ++Place)
        List.push_back(std::move(*Elements.At(Place).FValue).Whole());
    }
    return std::move(Json);
  }
};

/// Holds no more than an element and a block of text.
class TDocument::TWriter {
 public:
  explicit TWriter(const TSink& Sink) : FSink(Sink) {}

  void Put(std::string_view Text) {
    FText += Text;
    if (FText.size() >= BlockSize) Flush();
  }
  void Flush() {
    FSink(FText);
    FText.clear();
  }
  void Put(const TValue& Value, std::size_t Margin) {
    if (Value.Later.empty()) return PutJson(Value.Json, Margin);
    bool First = true;
    for (const auto& [Name, Member] : Value.Json.items()) {
      NewLine(First ? '{' : ',', Margin + Step);
      First = false;
      Put(Printed(Name, -1) + ": ");
      if (const TElements* const List = Value.ListOf(Name))
        PutList(*List, Margin + Step);
      else
        PutJson(Member, Margin + Step);
    }
    NewLine({}, Margin);
    Put("}");
  }

 private:
  static constexpr std::size_t BlockSize = 64 * 1024, Step = 2;

  void NewLine(std::optional<char> Before, std::size_t Margin) {
    std::string Text = Before ? std::string(1, *Before) : std::string();
    Put(Text.append(1, '\n').append(Margin, ' '));
  }
  void PutList(const TElements& Elements, std::size_t Margin) {
    if (Elements.Count == 0) return Put("[]");
    for (std::size_t Place = 0; Place < Elements.Count; ++Place) {
      NewLine(Place == 0 ? '[' : ',', Margin + Step);
      Put(*Elements.At(Place).FValue, Margin + Step);
    }
    NewLine({}, Margin);
    Put("]");
  }
  /// Within texts line feeds are escaped, so that those found begin lines.
  void PutJson(const TJson& Json, std::size_t Margin) {
    const std::string Text = Printed(Json, static_cast<int>(Step));
    for (std::size_t At = 0; At < Text.size();) {
      const std::size_t End = std::min(Text.find('\n', At), Text.size());
      Put(std::string_view(Text).substr(At, End - At));
      if (End < Text.size()) NewLine({}, Margin);
      At = End + 1;
    }
  }

  const TSink& FSink;
  std::string FText;
};

TDocument::TDocument() : FValue(std::make_unique<TValue>()) {}
TDocument::TDocument(TDocument&&) noexcept = default;
TDocument& TDocument::operator=(TDocument&&) noexcept = default;
TDocument::~TDocument() = default;

TDocument TDocument::Headed(std::string_view Schema, std::string_view Command, int ExitCode) {
  TDocument Result;
  Result.Set("schema", std::string("velkrund/").append(Schema).append("/1"));
  if (!Command.empty()) Result.Set("command", Command);
  return std::move(Result.Set("exitCode", ExitCode));
}

TDocument TDocument::List() {
  TDocument Result;
  Result.FValue->Json = TJson::array();
  return Result;
}

TDocument TDocument::Value(const TKvVariant& Value) {
  TDocument Result;
  TJson& Json = Result.FValue->Json;
  const TKvKind Kind = Value.Kind();
  std::string Text;
  if (Value.IsNull())
    Json = nullptr;
  else if (Kind == TKvKind::UInt64)
    Json = Value.AsUnsigned();
  else if (IsIntegerKind(Kind))
    Json = Value.AsInteger();
  else if (IsRealKind(Kind) && std::isfinite(Value.AsReal()))
    Json = Value.AsReal();
  else if (IsBooleanKind(Kind))
    Json = Value.AsBoolean();
  else if (Kind == TKvKind::Bytes)
    AppendHex(Text, Value.AsText()), Json = Text;
  else if (IsAnsiKind(Kind))
    WorkSettings().AnsiCodePage->Decode(Value.AsText(), Text), Json = Text;
  else
    Value.AppendAsText(Text), Json = Text;
  return Result;
}

TDocument& TDocument::Set(std::string_view Name, std::string_view Value) {
  FValue->Member(Name) = Value;
  return *this;
}

TDocument& TDocument::Set(std::string_view Name, double Value) {
  FValue->Member(Name) = Value;
  return *this;
}

TDocument& TDocument::Set(std::string_view Name, const std::vector<std::string>& Values) {
  FValue->Member(Name) = Values;
  return *this;
}

TDocument& TDocument::Set(std::string_view Name, TDocument Value) {
  FValue->Member(Name) = std::move(*Value.FValue).Whole();
  return *this;
}

TDocument& TDocument::Set(std::string_view Name, TElements Elements) {
  SetNull(Name);
  FValue->Later.emplace_back(Name, std::move(Elements));
  return *this;
}

TDocument& TDocument::Append(std::string_view Name, std::string_view Value) {
  FValue->Json.get_ref<TJson::object_t&>().emplace_back(std::string(Name), std::string(Value));
  return *this;
}

TDocument& TDocument::SetNull(std::string_view Name) {
  FValue->Member(Name) = nullptr;
  return *this;
}

TDocument& TDocument::SetBoolean(std::string_view Name, bool Value) {
  FValue->Member(Name) = Value;
  return *this;
}

TDocument& TDocument::SetSigned(std::string_view Name, std::int64_t Value) {
  FValue->Member(Name) = Value;
  return *this;
}

TDocument& TDocument::SetUnsigned(std::string_view Name, std::uint64_t Value) {
  FValue->Member(Name) = Value;
  return *this;
}

void TDocument::Add(TDocument Value) { FValue->Json.push_back(std::move(*Value.FValue).Whole()); }

void TDocument::Write(const TSink& Sink) const {
  TWriter Writer(Sink);
  Writer.Put(*FValue, 0);
  Writer.Put("\n");
  Writer.Flush();
}

std::string TDocument::Text() const {
  std::string Result;
  Write([&Result](std::string_view Part) { Result += Part; });
  return Result;
}

std::string TDocument::Line() const { return Printed(TValue(*FValue).Whole(), -1) + "\n"; }

}  // namespace velkrund
