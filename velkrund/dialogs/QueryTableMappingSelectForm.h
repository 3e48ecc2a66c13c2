#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/Form.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// Where the rows of a query's result go.
struct TQueryTableMapping {
  std::string TableName;      // the target, a table of the database
  TStringPairs FieldMapping;  // fields of the file, and the fields of the table that they fill; "": goes nowhere
  bool ClearTarget = false;   // the rows that are there go first
};

/// One field of the target table, and the field of the file that fills it.
class TQueryTableFieldMappingFrame {
 public:
  TQueryTableFieldMappingFrame(TForm& Form, const std::string& TableField,
                               std::shared_ptr<const TLComboBox::TItems> FileFields);
  std::string TableField() const { return FileFieldComboBox.Caption(); }
  /// Empty when none fills it.
  const std::string& FileField() const { return FileFieldComboBox.Chosen(); }

  TLComboBox FileFieldComboBox;
};

/// The target table of a query's rows, what fills its fields, and whether its own rows go first. Fields of one name,
/// whatever its case, are beside from the beginning.
class TQueryTableMappingSelectForm final : public TForm {
 public:
  /// Preset: what is chosen beforehand, as far as it is there. Raises EDatabaseError.
  TQueryTableMappingSelectForm(std::string_view QueryText, const std::vector<std::string>& FileFields,
                               const std::string& DatabaseName, const TQueryTableMapping& Preset);
  const char* ClassName() const override { return "TQueryTableMappingSelectForm"; }
  /// A table may lose its rows, and which one nobody can say who does not know the question.
  bool YesUndoes() const override { return true; }
  std::string NamedInstead() const override;
  /// Without the heading of the fields.
  std::string Message() const override;

  /// What is chosen at the moment. A field of the file that goes nowhere though the table has one of its name stands
  /// beside an empty name: it is not to go there.
  TQueryTableMapping Mapping() const;

  TLLabel QueryLabel{*this, "QueryLabel"};
  TLComboBox TargetTableComboBox{*this, "TargetTableComboBox",
                                 "C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_TARGETTABLELABEL_L"};
  TLCheckBox ClearTargetCheckBox{*this, "ClearTargetCheckBox", "C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_CLEARTARGET_L"};
  TLLabel FieldsLabel{*this, "FieldsLabel"};
  // The frames stand here.
  TLLabel UnusedLabel{*this, "UnusedLabel"};    // the fields of the file that go nowhere
  TLLabel ProblemLabel{*this, "ProblemLabel"};  // why it stays open
  TLButton OkButton{*this, "OkButton", "ST_OK"};
  TLButton CancelButton{*this, "CancelButton", "ST_CANCEL", mrCancel};

 private:
  void ShowTable();
  void MakeFrames();
  void Preselect();
  void ShowUnused();
  void Confirm();
  /// Why it cannot be confirmed; empty when it can.
  std::string Problem() const;
  bool IsUsed(const std::string& FileField) const;
  bool HasTableField(const std::string& Name) const;

  const std::string FDatabaseName;
  const TStringPairs FPreset;
  std::shared_ptr<const TLComboBox::TItems> FFileFields;
  std::vector<std::unique_ptr<TQueryTableFieldMappingFrame>> FFrames;
};

/// Asks a person where they go. Mapping: what is chosen beforehand, as far as it is there; fields of one name are
/// beside. FileFields: in the order of the file. Returns mrOk when it was confirmed, and Mapping then is what was
/// chosen; otherwise it stays. To be called on the main thread. Errors are those of the database, and of
/// TForm::ShowModal.
int SelectQueryTableMapping(const std::string& QueryText, const std::vector<std::string>& FileFields,
                            const std::string& DatabaseName, TQueryTableMapping& Mapping);

}  // namespace velkrund
