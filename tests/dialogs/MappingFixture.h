#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/dialogs/DialogFixture.h"
#include "velkrund/dialogs/QueryTableMappingSelectForm.h"

namespace velkrund::tests {

/// A platform with tables of SQLite.
class TMappingPlatform final : public TDialogPlatform {
 public:
  TMappingPlatform() {
    const std::string Form = "C_CATALOX_QUERYTABLEMAPPINGSELECTFORM_", Terminal = "M_Velkrund_Terminal_";
    Texts.insert({{Form + "TARGETTABLELABEL_L", "&Target table:"},
                  {Form + "CLEARTARGET_L", "&Empty it first"},
                  {Form + "QUERYLABEL_L", "Rows of %s"},
                  {Form + "FIELDSLABEL_L", "Fields:"},
                  {Form + "UNUSEDLABEL_L", "Nowhere: %s"},
                  {Form + "NOTABLES_L", "No tables"},
                  {Form + "NOTARGET_L", "No target"},
                  {Form + "NOFIELD_L", "No field"},
                  {Form + "TABLEGONE_L", "%s is gone"},
                  {Terminal + "HowToChoose", "(N=V)"},
                  {Terminal + "NoSuchEntry", "No %s"},
                  {Terminal + "NoSuchValue", "%s without %s"},
                  {Terminal + "Several", "%s: several"},
                  {Terminal + "DidYouMean", "%s?"},
                  {Terminal + "NoValues", "%s: empty"}});
  }

  std::unique_ptr<TTable> GetUserTable(const std::string& Name, const std::string&, bool ReadWrite) override {
    const std::optional<TTableInfo> Found = Connection->Schema().FindTable(Name);
    if (!Found) return nullptr;
    return std::make_unique<TDriverTable>(*Connection, *Found, ReadWrite);
  }
  std::vector<std::string> UserTableNames(const std::string&) override {
    std::vector<std::string> Result = Gone;
    for (const TTableInfo& Table : Connection->Schema().Tables()) Result.push_back(Table.Name);
    return Result;
  }

  std::unique_ptr<TConnection> Connection = TSQLiteDriver().Connect({"sqlite", ":memory:"}, {.CreateMissing = true});
  std::vector<std::string> Gone;  // tables that somebody drops while they are being chosen
};

/// The question about a query with these fields, and what comes of it: "1 T: A<-X B<-Y emptied".
inline std::string AskMapping(const std::vector<std::string>& FileFields, TQueryTableMapping Mapping,
                              const std::string& Query = "SELECT 1") {
  std::string Result = std::to_string(SelectQueryTableMapping(Query, FileFields, "", Mapping)) + " ";
  Result += Mapping.TableName + ":";
  for (const auto& [FileField, TableField] : Mapping.FieldMapping) Result += " " + TableField + "<-" + FileField;
  return Result + (Mapping.ClearTarget ? " emptied" : "");
}

}  // namespace velkrund::tests
