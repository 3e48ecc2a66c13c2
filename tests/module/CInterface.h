#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>

#include <string>

#include "tests/support/TemporaryFolder.h"
#include "velkrund/module/Velkrund.h"

namespace velkrund::tests {

// A message box that answers HookAnswer and keeps what it was asked.

inline std::u16string Asked;
inline std::uint32_t AskedFlags = 0;
inline std::int32_t HookAnswer = 0;

inline std::int32_t Answer(std::uintptr_t, const VelkrundChar* Text, const VelkrundChar*, std::uint32_t Flags,
                           std::int32_t, std::int32_t) {
  Asked = Text;
  AskedFlags = Flags;
  return HookAnswer;
}

/// A database with a table of three rows, and a configuration that names it.
class CInterface : public testing::Test {
 protected:
  CInterface() {
    Folder.Write("velkrund.toml", "[database.shop]\nurl = \"sqlite:shop.db\"\n");
    SQL("shop.db", "CREATE TABLE T (ID INTEGER, NAME TEXT); INSERT INTO T VALUES (1, 'a'), (2, 'b'), (3, NULL);");
    SQL("copy.db", "CREATE TABLE C (ID INTEGER, NAME TEXT); INSERT INTO C VALUES (9, 'kept');");
  }

  /// The rows of a query's single column, one a line.
  std::string SQL(const std::string& File, const std::string& Statements) const {
    sqlite3* Database = nullptr;
    std::string Rows;
    EXPECT_EQ(sqlite3_open((Folder / File).c_str(), &Database), SQLITE_OK);
    const auto Take = [](void* Out, int, char** Values, char**) {
      *static_cast<std::string*>(Out) += std::string(Values[0] ? Values[0] : "NULL") + "\n";
      return 0;
    };
    EXPECT_EQ(sqlite3_exec(Database, Statements.c_str(), Take, &Rows, nullptr), SQLITE_OK) << sqlite3_errmsg(Database);
    sqlite3_close(Database);
    return Rows;
  }

  /// Runs the example in the folder; its messages are left in Messages.
  int Example(const std::string& Arguments) {
    const std::string Command = "cd '" + Folder / "" + "' && '" VELKRUND_EXAMPLE "' " + Arguments + " > out 2> err";
    const int Status = std::system(Command.c_str());
    Messages = Folder.Read("err");
    return WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
  }

  std::string Get(VelkrundOperation* Operation, const char* Name, std::size_t Size = 100) {
    std::string Text(Size, '#');
    const std::size_t Needed = VelkrundGetProperty(Operation, Name, Text.data(), Size);
    return std::to_string(Needed) + ":" + Text.c_str();
  }

  TTemporaryFolder Folder;
  std::string Messages;
};

/// The same process with a platform of its own.
class CPlatform : public CInterface {
 protected:
  CPlatform() { EXPECT_TRUE(VelkrundInstallPlatform((Folder / "velkrund.toml").c_str())) << VelkrundLastError(); }
  ~CPlatform() override {
    EXPECT_TRUE(VelkrundSetMessageBox(nullptr));
    EXPECT_TRUE(VelkrundRemovePlatform()) << VelkrundLastError();
  }
};

}  // namespace velkrund::tests
