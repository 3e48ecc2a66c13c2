#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "standalone/drivers/Connection.h"
#include "tests/support/TemporaryFolder.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {

/// Class and message of the error that Call raises; "no error" when it does not.
template <typename TCall>
std::string ErrorOf(TCall Call) {
  try {
    Call();
  } catch (const std::exception& Error) {
    return ExceptionClassName(Error) + ": " + Error.what();
  }
  return "no error";
}

/// What the error that Call raises carries as data.
template <typename TCall>
TErrorInfo InfoOf(TCall Call) {
  try {
    Call();
  } catch (const std::exception& Error) {
    return FactsOf(Error).Info;
  }
  return {};
}

/// Kind and text of a value: "18 7".
inline std::string Shown(const TKvVariant& Value) {
  std::string Result = std::to_string(static_cast<int>(Value.Kind())) + " ";
  Value.AppendAsText(Result);
  return Result;
}

/// The rows of a table, as Shown, cells separated by "|".
inline std::vector<std::string> Rows(TConnection& Connection, const std::string& TableName) {
  const TTableDescription Table = Connection.Schema().Describe(Connection.Schema().FindTable(TableName).value());
  std::vector<int> Columns;
  for (std::size_t I = 0; I < Table.Columns.size(); ++I) Columns.push_back(static_cast<int>(I));
  const std::unique_ptr<TCursor> Cursor = Connection.Rows().OpenCursor(Table, Columns, {});
  std::vector<std::string> Result;
  TKvVariant Value;
  while (Cursor->Next()) {
    std::string& Row = Result.emplace_back();
    for (const int Column : Columns) {
      Cursor->Read(Column, Value);
      Row += (Column ? "|" : "") + Shown(Value);
    }
  }
  return Result;
}

}  // namespace velkrund::tests
