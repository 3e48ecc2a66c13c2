#include "standalone/databases/Configuration.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include "standalone/drivers/AddressSecrets.h"
#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {
namespace {

constexpr std::string_view FileNameInFolder = "velkrund.toml";

std::string Environment(const std::string& Name) {
  const char* Value = std::getenv(Name.c_str());
  return Value ? Value : "";
}

/// Whether what stands at [Start, End) of Url is a user, a password or the value of a parameter, in which other
/// characters than letters and digits may end it. A whole address, or a host with its port, is no such part.
bool IsPartOfAddress(std::string_view Url, std::size_t Start, std::size_t End) {
  if (Url.substr(0, Start).find("://") == std::string_view::npos) return false;
  return Url[Start - 1] == '=' || Url.find('@', End) != std::string_view::npos;
}

/// Walks the file's tables; every key has to be known.
class TConfigurationReader {
 public:
  TConfigurationReader(const std::string& FileName, TConfiguration& Result) : FFileName(FileName), FResult(Result) {}

  void Read(const toml::table& Root) {
    ReadTable(Root, "",
              {{"default_database", [&](const TEntry& E) { FResult.DefaultDatabase = Text(E); }},
               {"code_page", [&](const TEntry& E) { FResult.CodePage = CodePage(E); }},
               {"strict_values", [&](const TEntry& E) { FResult.StrictValues = Boolean(E); }},
               {"strict_text", [&](const TEntry& E) { FResult.StrictText = Boolean(E); }},
               {"work_as_17_version", [&](const TEntry& E) { FResult.WorkAs17Version = Boolean(E); }},
               {"language", [&](const TEntry& E) { FResult.Language = Text(E); }},
               {"busy_seconds", [&](const TEntry& E) { FResult.BusyTime = Seconds(E); }},
               {"trace", [&](const TEntry& E) { ReadTrace(E); }},
               {"database", [&](const TEntry& E) { ReadDatabases(E); }}});
  }

 private:
  struct TEntry {
    std::string Key;  // with the tables that it stands in
    const toml::node& Node;
  };
  struct TKnownKey {
    std::string_view Name;
    std::function<void(const TEntry&)> Read;
  };

  std::string Problem(const TEntry& Entry, const std::string& Why) const {
    return Format("%s:%d: key '%s': %s", FFileName, LineOf(Entry), Entry.Key, Why);
  }

  [[noreturn]] void Raise(const TEntry& Entry, const std::string& Why) const {
    throw EConfigurationError(Problem(Entry, Why), {.File = FFileName, .Line = LineOf(Entry)});
  }

  static std::int64_t LineOf(const TEntry& Entry) { return Entry.Node.source().begin.line; }

  void ReadTable(const toml::table& Table, const std::string& Prefix, const std::vector<TKnownKey>& Known) const {
    for (const auto& [Key, Node] : Table) {
      const std::string_view Name = Key.str();
      const TEntry Entry{Prefix + std::string(Name), Node};
      const auto Same = [Name](const TKnownKey& Candidate) { return Candidate.Name == Name; };
      const auto Found = std::find_if(Known.begin(), Known.end(), Same);
      if (Found == Known.end()) Raise(Entry, "the key is unknown" + KeyHint(Name, Known));
      Found->Read(Entry);
    }
  }

  static std::string KeyHint(std::string_view Name, const std::vector<TKnownKey>& Known) {
    std::vector<std::string> Names;
    for (const TKnownKey& Key : Known) Names.emplace_back(Key.Name);
    return ContentHint(Name, Names, "; known are ");
  }

  const toml::table& Table(const TEntry& Entry) const {
    const toml::table* Result = Entry.Node.as_table();
    if (!Result) Raise(Entry, "a table is needed");
    return *Result;
  }

  std::string Text(const TEntry& Entry) const {
    const auto* Value = Entry.Node.as_string();
    if (!Value) Raise(Entry, "a text is needed");
    return Value->get();
  }

  bool Boolean(const TEntry& Entry) const {
    const auto* Value = Entry.Node.as_boolean();
    if (!Value) Raise(Entry, "true or false is needed");
    return Value->get();
  }

  int CodePage(const TEntry& Entry) const {
    const auto* Value = Entry.Node.as_integer();
    const std::int64_t Number = Value && Value->get() > 0 && Value->get() < 100'000 ? Value->get() : 0;
    if (!TCodePage::Find(static_cast<int>(Number))) Raise(Entry, "a code page of 1250 .. 1258 is needed");
    return static_cast<int>(Number);
  }

  std::chrono::milliseconds Seconds(const TEntry& Entry) const {
    constexpr double Most = 86'400;
    const std::optional<double> Value = Entry.Node.is_number() ? Entry.Node.value<double>() : std::nullopt;
    if (!Value || !(*Value >= 0 && *Value <= Most)) Raise(Entry, "a number of seconds of 0 .. 86400 is needed");
    return std::chrono::milliseconds(static_cast<std::int64_t>(*Value * 1000));
  }

  void ReadTrace(const TEntry& Trace) {
    ReadTable(Table(Trace), "trace.",
              {{"level", [&](const TEntry& E) { FResult.TraceLevel = TraceLevel(E); }},
               {"file", [&](const TEntry& E) { FResult.TraceFile = InFolder(Text(E)); }}});
  }

  TTraceLevelSetting TraceLevel(const TEntry& Entry) const {
    static const std::vector<std::string> Names = {"off", "error", "info", "detail"};
    const std::string Level = Text(Entry);
    const auto Found = std::find(Names.begin(), Names.end(), Level);
    if (Found == Names.end())
      Raise(Entry, Format("off, error, info or detail is needed, not '%s'%s", Level, NearestHint(Level, Names)));
    return static_cast<TTraceLevelSetting>(Found - Names.begin());
  }

  void ReadDatabases(const TEntry& Databases) {
    for (const auto& [Key, Node] : Table(Databases)) {
      const TEntry Entry{"database." + std::string(Key.str()), Node};
      TDatabaseEntry& Database = FResult.Databases[std::string(Key.str())];
      ReadTable(Table(Entry), Entry.Key + ".",
                {{"url", [&](const TEntry& E) { ReadUrl(E, Database); }},
                 {"table_pattern", [&](const TEntry& E) { Database.TablePattern = Text(E); }}});
      if (Database.Url.empty()) Raise(Entry, "the key 'url' is missing");
    }
  }

  void ReadUrl(const TEntry& Entry, TDatabaseEntry& Database) const {
    Database.Url = Text(Entry);
    Database.Line = LineOf(Entry);
    ReplaceVariables(Entry, Database);
    if (Database.Problem.empty() && !ParseDatabaseUrl(Database.Url))
      Raise(Entry, Format("'%s' is not a database address (SCHEME:...)", WithoutSecrets(Database.Url)));
  }

  void ReplaceVariables(const TEntry& Entry, TDatabaseEntry& Database) const {
    std::string& Text = Database.Url;
    for (std::size_t At = 0; (At = Text.find("${", At)) != std::string::npos;) {
      const std::size_t End = Text.find('}', At);
      if (End == std::string::npos) Raise(Entry, "'${' without '}'");
      const std::string Name = Text.substr(At + 2, End - At - 2);
      if (!std::getenv(Name.c_str())) {
        Database.Problem = Problem(Entry, Format("the environment variable %s is not set", Name));
        return;
      }
      std::string Value = Environment(Name);
      if (IsPartOfAddress(Text, At, End + 1)) Value = PercentEncoded(Value);
      Text.replace(At, End + 1 - At, Value);
      At += Value.size();
    }
  }

  std::string InFolder(const std::string& Name) const {
    return (std::filesystem::path(FResult.Folder) / Name).string();
  }

  const std::string& FFileName;
  TConfiguration& FResult;
};

}  // namespace

std::optional<std::string> FindConfiguration(const std::string& Given) {
  if (!Given.empty()) return Given;
  if (std::string Named = Environment("VELKRUND_CONFIG"); !Named.empty()) return Named;
  std::vector<std::filesystem::path> Candidates = {FileNameInFolder};
  const std::string Home = Environment("HOME");
  if (const std::string Folder = Environment("XDG_CONFIG_HOME"); !Folder.empty())
    Candidates.push_back(std::filesystem::path(Folder) / "velkrund" / FileNameInFolder);
  else if (!Home.empty())
    Candidates.push_back(std::filesystem::path(Home) / ".config" / "velkrund" / FileNameInFolder);
  std::error_code Ignored;
  for (const auto& Candidate : Candidates)
    if (std::filesystem::exists(Candidate, Ignored)) return Candidate.string();
  return std::nullopt;
}

TConfiguration LoadConfiguration(const std::string& FileName) {
  TConfiguration Result;
  Result.FileName = FileName;
  std::error_code Error;
  if (!std::filesystem::is_regular_file(FileName, Error))
    throw EConfigurationError(
        Format("Cannot read the configuration '%s': %s", FileName,
               std::filesystem::exists(FileName, Error) ? "it is not a file" : "there is no such file"),
        {.File = FileName});
  Result.Folder = std::filesystem::absolute(FileName).parent_path().string();
  try {
    TConfigurationReader(FileName, Result).Read(toml::parse_file(FileName));
  } catch (const toml::parse_error& Failure) {
    const std::int64_t Line = Failure.source().begin.line;
    throw EConfigurationError(Format("%s:%d: %s", FileName, Line, Failure.description()),
                              {.File = FileName, .Line = Line});
  }
  return Result;
}

TConfiguration FindAndLoadConfiguration(const std::string& Given) {
  const std::optional<std::string> FileName = FindConfiguration(Given);
  return FileName ? LoadConfiguration(*FileName) : TConfiguration{};
}

}  // namespace velkrund
