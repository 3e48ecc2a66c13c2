#include "velkrund/dialogs/QueryTableMappingSelectForm.h"

#include <algorithm>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

constexpr std::string_view RowNumbers = "#";
constexpr std::int64_t LongestQuery = 300;  // in UTF-16 units; whoever wrote it knows it by its beginning

template <typename... T>
std::string Text(const std::string& Key, const T&... Arguments) {
  return Format(BaseMng().LString(Key), Arguments...);
}

/// The text in one line, of a long one the beginning.
std::string InShort(std::string_view QueryText) {
  std::string Result;
  bool Blank = false;
  for (const char C : Trim(QueryText)) {
    Blank = static_cast<unsigned char>(C) <= ' ';
    if (!Blank || !Result.ends_with(' ')) Result += Blank ? ' ' : C;
  }
  return Shortened(Result, LongestQuery);
}

/// The position of the name: that written alike, else one that differs in case only; -1 when there is none.
int Find(const std::vector<std::string>& Names, std::string_view Name) {
  auto Found = std::find(Names.begin(), Names.end(), Name);
  if (Found == Names.end())
    Found = std::find_if(Names.begin(), Names.end(), [&](const std::string& Other) { return SameText(Other, Name); });
  return Found == Names.end() ? -1 : static_cast<int>(Found - Names.begin());
}

std::shared_ptr<const TLComboBox::TItems> Shared(TLComboBox::TItems Items) {
  return std::make_shared<const TLComboBox::TItems>(std::move(Items));
}

}  // namespace

TQueryTableFieldMappingFrame::TQueryTableFieldMappingFrame(TForm& Form, const std::string& TableField,
                                                           std::shared_ptr<const TLComboBox::TItems> FileFields)
    : FileFieldComboBox(Form, "FileFieldComboBox:" + TableField, TLPlainText{TableField}) {
  FileFieldComboBox.SetItems(std::move(FileFields));
}

TQueryTableMappingSelectForm::TQueryTableMappingSelectForm(std::string_view QueryText,
                                                           const std::vector<std::string>& FileFields,
                                                           const std::string& DatabaseName,
                                                           const TQueryTableMapping& Preset)
    : FDatabaseName(DatabaseName), FPreset(Preset.FieldMapping), FFileFields(Shared(FileFields)) {
  QueryLabel.Caption = Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_QUERYLABEL_L", InShort(QueryText));
  ClearTargetCheckBox.Checked = Preset.ClearTarget;
  TargetTableComboBox.SetItems(Shared(BaseMng().UserTableNames(DatabaseName)));
  TargetTableComboBox.OnChange = [this] { ShowTable(); };
  OkButton.OnClick = [this] { Confirm(); };
  FieldsLabel.Caption = Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_FIELDSLABEL_L");
  FieldsLabel.Visible = false;
  if (TargetTableComboBox.Items().empty()) ProblemLabel.Caption = Problem();
  TargetTableComboBox.Choose(Find(TargetTableComboBox.Items(), Preset.TableName));
}

std::string TQueryTableMappingSelectForm::Message() const {
  std::string Result = QueryLabel.Caption;
  for (const TLLabel* Label : {&UnusedLabel, &ProblemLabel})
    if (!Label->Caption.empty()) Result += '\n' + Label->Caption;
  return Result;
}

std::string TQueryTableMappingSelectForm::NamedInstead() const {
  return "the target table, and which fields of the file fill its fields";
}

/// What cannot be opened is no target: the person reads why, and may choose another one.
void TQueryTableMappingSelectForm::ShowTable() {
  FFrames.clear();
  ProblemLabel.Caption.clear();
  try {
    MakeFrames();
  } catch (const EDatabaseError& Error) {
    FFrames.clear();
    TargetTableComboBox.Choose(-1);
    ProblemLabel.Caption = Error.what();
  }
  FieldsLabel.Visible = !FFrames.empty();
  ShowUnused();
  const std::initializer_list<TLControl*> Below = {&UnusedLabel, &ProblemLabel, &OkButton, &CancelButton};
  for (TLControl* Control : Below) MoveToEnd(*Control);
}

void TQueryTableMappingSelectForm::MakeFrames() {
  const std::string& Name = TargetTableComboBox.Chosen();
  if (Name.empty()) return;
  const std::unique_ptr<TTable> Table = BaseMng().GetUserTable(Name, FDatabaseName, false);
  if (!Table) throw EDatabaseError(Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_TABLEGONE_L", OnOneLine(Name)));
  for (int I = 0; I < Table->Record().FieldCount(); ++I)
    FFrames.push_back(
        std::make_unique<TQueryTableFieldMappingFrame>(*this, Table->Record().Fields(I).Name(), FFileFields));
  Preselect();
  for (const auto& Frame : FFrames)
    Frame->FileFieldComboBox.OnChange = [this] {
      ProblemLabel.Caption.clear();
      ShowUnused();
    };
}

void TQueryTableMappingSelectForm::Preselect() {
  std::vector<std::string> TableFields, Decided;
  for (const auto& Frame : FFrames) TableFields.push_back(Frame->TableField());
  for (const auto& [FileField, TableField] : FPreset) {
    Decided.push_back(FileField);
    const int At = Find(TableFields, TableField);
    if (At >= 0) FFrames[static_cast<std::size_t>(At)]->FileFieldComboBox.Choose(Find(*FFileFields, FileField));
  }
  // Names that are written alike first: of two that differ in case only, each gets its own.
  for (const bool Exactly : {true, false})
    for (const auto& Frame : FFrames) {
      const int Same = Find(*FFileFields, Frame->TableField());
      if (Same < 0 || !Frame->FileField().empty()) continue;
      const std::string& FileField = (*FFileFields)[static_cast<std::size_t>(Same)];
      if (Exactly && FileField != Frame->TableField()) continue;
      if (Find(Decided, FileField) < 0 && !IsUsed(FileField)) Frame->FileFieldComboBox.Choose(Same);
    }
}

bool TQueryTableMappingSelectForm::IsUsed(const std::string& FileField) const {
  return std::any_of(FFrames.begin(), FFrames.end(),
                     [&](const auto& Frame) { return Frame->FileField() == FileField; });
}

bool TQueryTableMappingSelectForm::HasTableField(const std::string& Name) const {
  return std::any_of(FFrames.begin(), FFrames.end(),
                     [&](const auto& Frame) { return SameText(Frame->TableField(), Name); });
}

void TQueryTableMappingSelectForm::ShowUnused() {
  std::vector<std::string> Unused;
  if (!FFrames.empty())
    for (const std::string& FileField : *FFileFields)
      if (FileField != RowNumbers && !IsUsed(FileField)) Unused.push_back(OnOneLine(FileField));
  UnusedLabel.Caption =
      Unused.empty() ? std::string() : Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_UNUSEDLABEL_L", Joined(Unused));
}

std::string TQueryTableMappingSelectForm::Problem() const {
  if (TargetTableComboBox.Items().empty()) return Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_NOTABLES_L");
  if (TargetTableComboBox.Chosen().empty()) return Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_NOTARGET_L");
  const bool Fills =
      std::any_of(FFrames.begin(), FFrames.end(), [](const auto& Frame) { return !Frame->FileField().empty(); });
  return Fills ? std::string() : Text("C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_NOFIELD_L");
}

void TQueryTableMappingSelectForm::Confirm() {
  ProblemLabel.Caption = Problem();
  if (ProblemLabel.Caption.empty()) CloseWith(mrOk);
}

TQueryTableMapping TQueryTableMappingSelectForm::Mapping() const {
  TQueryTableMapping Result{TargetTableComboBox.Chosen(), {}, ClearTargetCheckBox.Checked};
  for (const auto& Frame : FFrames)
    if (!Frame->FileField().empty()) Result.FieldMapping.emplace_back(Frame->FileField(), Frame->TableField());
  for (const std::string& FileField : *FFileFields)
    if (!IsUsed(FileField) && HasTableField(FileField)) Result.FieldMapping.emplace_back(FileField, std::string());
  return Result;
}

int SelectQueryTableMapping(const std::string& QueryText, const std::vector<std::string>& FileFields,
                            const std::string& DatabaseName, TQueryTableMapping& Mapping) {
  TQueryTableMappingSelectForm Form(QueryText, FileFields, DatabaseName, Mapping);
  const int Result = Form.ShowModal();
  if (Result == mrOk) Mapping = Form.Mapping();
  return Result;
}

}  // namespace velkrund
