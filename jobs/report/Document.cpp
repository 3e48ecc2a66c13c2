#include "jobs/report/Document.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

using TJson = nlohmann::ordered_json;

}  // namespace

struct TDocument::TValue {
  TJson Json = TJson::object();

  TJson& Member(std::string_view Name) { return Json[std::string(Name)]; }
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
  FValue->Member(Name) = std::move(Value.FValue->Json);
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

void TDocument::Add(TDocument Value) { FValue->Json.push_back(std::move(Value.FValue->Json)); }

std::string TDocument::Text() const { return FValue->Json.dump(2, ' ', false, TJson::error_handler_t::replace) + "\n"; }

std::string TDocument::Line() const {
  return FValue->Json.dump(-1, ' ', false, TJson::error_handler_t::replace) + "\n";
}

}  // namespace velkrund
