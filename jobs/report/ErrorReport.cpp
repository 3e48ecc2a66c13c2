#include "jobs/report/ErrorReport.h"

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

bool Says(const std::string& Message, const std::string& Text) { return Message.find(Text) != std::string::npos; }

bool Names(const std::string& Message, const std::string& Name) { return Says(Message, "'" + Name + "'"); }

/// A message may have several lines.
std::string Unbroken(const std::string& Text) {
  std::string Result;
  for (const char C : Text) {
    const bool IsBreak = C == '\r' || C == '\n';
    if (!IsBreak) Result += C;
    if (IsBreak && !Result.ends_with(' ')) Result += ' ';
  }
  return Result;
}

/// The value as it stands in the message, which has all of it.
std::size_t LongValueAt(const TErrorFacts& Facts) {
  constexpr std::string_view Rest = "...";
  const std::string_view Value = Facts.Info.Value;
  if (!Value.ends_with(Rest)) return std::string::npos;
  const std::string Lead = "Value: ";
  const std::size_t At = Facts.Message.find(Lead + std::string(Value.substr(0, Value.size() - Rest.size())));
  return At == std::string::npos ? At : At + Lead.size();
}

/// What the message does not say itself.
TLText PlaceText(const TErrorFacts& Facts) {
  const TErrorInfo& Info = Facts.Info;
  std::vector<TLText> Parts;
  const auto Add = [&](const char* Key, const std::string& Text) {
    if (!Text.empty() && !Names(Facts.Message, Text)) Parts.push_back(LText(Key, Text));
  };
  if (Info.Code == TErrorCode::DatabaseReadOnly && !Says(Facts.Message, Info.Database))
    Parts.push_back(LText("M_Velkrund_Jobs_AtDatabase", Info.Database));
  Add("M_Velkrund_Jobs_AtTable", Info.Table);
  if (Info.Line == 0 && !Says(Facts.Message, Info.Section)) Add("M_Velkrund_Jobs_AtSection", Info.Section);
  Add("M_Velkrund_Jobs_AtField", Info.Column);
  if (!Says(Facts.Message, Info.Structure)) Add("M_Velkrund_Jobs_AtStructure", Info.Structure);
  Add("M_Velkrund_Jobs_AtNode", Info.Node);
  const std::string Record = std::to_string(Info.Record);
  const bool SaysRecord = Says(Facts.Message, "record " + Record) || Says(Facts.Message, "Record:" + Record);
  if (Info.Record > 0 && !SaysRecord) Parts.push_back(LText("M_Velkrund_Jobs_AtRecord", Info.Record));
  if (!Info.Value.empty() && !Says(Facts.Message, Info.Value) && LongValueAt(Facts) == std::string::npos)
    Parts.push_back(LText("M_Velkrund_Jobs_AtValue", Info.Value));
  return LJoined(Parts);
}

}  // namespace

TLText LErrorLine(const TErrorFacts& Facts) {
  const TErrorInfo& Info = Facts.Info;
  std::string Result;
  if (!Info.File.empty() && (Info.Line > 0 || !Names(Facts.Message, Info.File))) {
    Result = Info.File + ":";
    if (Info.Line > 0) Result += std::to_string(Info.Line) + ":";
    Result += " ";
  }
  if (Facts.Message.starts_with(Result)) Result.clear();  // it says so itself
  const std::size_t LongValue = LongValueAt(Facts);
  Result += LongValue == std::string::npos ? Facts.Message : Facts.Message.substr(0, LongValue) + Info.Value;
  const TLText Place = PlaceText(Facts);
  if (Place.Empty()) return Unbroken(Result);
  return {Unbroken(Format("%s (%s)", Result, Place.Local())), Unbroken(Format("%s (%s)", Result, Place.English()))};
}

std::string ErrorLine(const TErrorFacts& Facts) { return LErrorLine(Facts).English(); }

std::string ErrorDetails(const TErrorFacts& Facts) {
  std::string Result = Format("  class %s, code %s", Facts.ClassName, ErrorCodeText(Facts.Info.Code));
  if (!Facts.Info.EngineCode.empty()) Result += ", the engine's code " + Facts.Info.EngineCode;
  Result += "\n";
  if (const std::string& Statement = Facts.Info.Statement; !Statement.empty() && !Says(Facts.Message, Statement))
    Result += Format("  statement %s\n", Unbroken(Statement));
  for (const std::string& Text : Facts.Chain) Result += Format("  within %s\n", Unbroken(Text));
  return Result;
}

TDocument ErrorDocument(const TErrorFacts& Facts) {
  const TErrorInfo& Info = Facts.Info;
  TDocument Result;
  Result.Set("code", ErrorCodeText(Info.Code)).Set("class", Facts.ClassName).Set("message", Facts.Message);
  const auto Set = [&](const char* Name, const auto& Value) {
    if (Value != std::decay_t<decltype(Value)>()) Result.Set(Name, Value);
  };
  Set("file", Info.File);
  Set("line", Info.Line);
  Set("section", Info.Section);
  Set("database", Info.Database);
  Set("table", Info.Table);
  Set("field", Info.Column);
  Set("record", Info.Record);
  Set("value", Info.Value);
  Set("structure", Info.Structure);
  Set("node", Info.Node);
  Set("engineCode", Info.EngineCode);
  Set("statement", Info.Statement);
  if (!Facts.Chain.empty()) Result.Set("within", Facts.Chain);
  return Result;
}

TDocument ErrorDocument(const TErrorFacts& Facts, const std::string& Command, TEnd End) {
  TDocument Result = TDocument::Headed("error", Command, static_cast<int>(End));
  Result.Set("error", ErrorDocument(Facts));
  return Result;
}

}  // namespace velkrund
