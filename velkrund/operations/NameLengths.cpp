#include "velkrund/operations/NameLengths.h"

#include <algorithm>

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

constexpr int UsualLimit = 30;
constexpr int AutoKeyLimit = 22;  // leaves room for what is put around the name

bool IsLonger(const std::string& Name, int Limit) { return Utf16Length(Name) > static_cast<std::size_t>(Limit); }

/// The text of the key, Default where the localization has none.
std::string TextOf(std::string_view Key, std::string_view Default) {
  const std::string Text = BaseMng().LString(Key);
  return std::string(Text == Key ? Default : Text);
}

bool HasAutoKey(const TDicTableDescription& Table) {
  return std::any_of(Table.Fields.begin(), Table.Fields.end(),
                     [](const TDicField& Field) { return Field.FieldType() == AutoKeyFieldType; });
}

int LimitOf(bool HasAutoKey) { return HasAutoKey ? AutoKeyLimit : UsualLimit; }

bool AskCancel(const std::string& Text, const std::string& Name, int Limit) {
  return uoMessageBox(0, ToUtf16(Format(Text, Name, Limit)), ToUtf16(BaseMng().LString("ST_CONFIRMATION")),
                      MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2, 0, 0) == IDYES;
}

bool AskCancelTable(const std::string& Name, int Limit) {
  return AskCancel(TextOf("M_Velkrund_DSPUtils_CreateLongNameTable_Cancel",
                          "Имя таблицы '%s' слишком длинное (> %d символов) и не поддерживается некоторыми базами "
                          "данных. Создание таблицы с таким именем приведёт к блокирующей ошибке в случае Оракл! "
                          "Отменить операцию?"),
                   Name, Limit);
}

}  // namespace

bool IsTableDescExists(const std::string& TableName, const std::string& DatabaseName) {
  return DSPContainer().Table(DatabaseName).DSPStructureExist(UpperCase(TableName), TableObjectType);
}

bool IsTableContainsAutoKey(const std::string& TableName, const std::string& DatabaseName) {
  if (!IsTableDescExists(TableName, DatabaseName)) return false;
  TDicTableDescription Table;
  return Dictionary().GetDicTable(DatabaseName).GetTableInfo(TableName, Table) && HasAutoKey(Table);
}

bool IsLongNameTable(const std::string& TableName, const std::string& DatabaseName, int& Limit) {
  Limit = LimitOf(IsTableContainsAutoKey(TableName, DatabaseName));
  return IsLonger(TableName, Limit);
}

bool IsLongNameTable(const std::string& TableName, const std::string& DatabaseName) {
  int Limit = 0;
  return IsLongNameTable(TableName, DatabaseName, Limit);
}

bool IsLongNameTable(const TDicTableDescription& Table, int& Limit) {
  Limit = LimitOf(HasAutoKey(Table));
  return IsLonger(Table.Name, Limit);
}

bool IsLongNameView(const std::string& ViewName) { return IsLonger(ViewName, UsualLimit); }

bool AskCancelCreateLongNameTable(const std::string& TableName, const std::string& DatabaseName) {
  int Limit = 0;
  return IsLongNameTable(TableName, DatabaseName, Limit) && AskCancelTable(TableName, Limit);
}

bool AskCancelCreateLongNameTable(const TDicTableDescription& Table) {
  int Limit = 0;
  return IsLongNameTable(Table, Limit) && AskCancelTable(Table.FullName(), Limit);
}

bool AskCancelCreateLongNameView(const std::string& ViewName) {
  if (!IsLongNameView(ViewName)) return false;
  return AskCancel(TextOf("M_Velkrund_DSPUtils_CreateLongNameView_Cancel",
                          "Имя отображения '%s' слишком длинное (> %d символов) и не поддерживается некоторыми базами "
                          "данных. Создание вьюхи с таким именем приведёт к блокирующей ошибке в случае Оракл! "
                          "Отменить операцию?"),
                   ViewName, UsualLimit);
}

}  // namespace velkrund
