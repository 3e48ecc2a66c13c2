#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// A configuration file that cannot be read or says something wrong; the message names file, line and key.
VELKRUND_EXCEPTION(EConfigurationError, Exception);

struct TDatabaseEntry {
  std::string Url;                // variables already replaced, where they are set
  std::string Problem = {};       // why the entry cannot be used: a variable that is not set. Other entries may be used
  std::int64_t Line = 0;          // of the address
  std::string TablePattern = {};  // the structure by which tables are made that are linked to none
};

enum class TTraceLevelSetting { Off, Error, Info, Detail };

/// What velkrund.toml says:
///
///     default_database = "shop"     # the database that is meant when none is named
///     code_page = 1251              # of ANSI sections and 8-bit values: 1250 .. 1258
///     strict_values = true          # a value that cannot be parsed is an error, otherwise NULL
///     strict_text = false           # so are characters that the code page cannot hold; otherwise "?"
///     work_as_17_version = false    # ANSI section headers without their "Encoding" line
///     language = "en"               # of messages; the environment's when not given
///     busy_seconds = 10             # how long to wait for a database that another program keeps busy
///
///     [trace]
///     level = "off"                 # off, error, info or detail
///     file = "velkrund.log"         # standard error when not given
///
///     [database.shop]
///     url = "sqlite:shop.db"        # ${NAME} stands for an environment variable, so that secrets stay out of the file
///                                   # (behind "//" a user, a password and a parameter's value may be any text)
///     table_pattern = "OURS"        # the structure (type 75) by which tables are made that are linked to none
///
/// Relative file names are relative to the file's folder. Everything may be left out.
struct TConfiguration {
  std::string FileName;  // empty: the defaults
  std::string Folder;    // of FileName
  std::string DefaultDatabase;
  int CodePage = 1251;
  bool StrictValues = true;
  bool StrictText = false;
  bool WorkAs17Version = false;
  std::string Language;
  std::chrono::milliseconds BusyTime{10'000};
  TTraceLevelSetting TraceLevel = TTraceLevelSetting::Off;
  std::string TraceFile;
  std::map<std::string, TDatabaseEntry> Databases;
};

/// The file to use: Given unless it is empty, else $VELKRUND_CONFIG, else velkrund.toml in the current folder, else
/// velkrund/velkrund.toml in the user's configuration folder. Nothing when there is none of the last two.
std::optional<std::string> FindConfiguration(const std::string& Given = {});

/// Raises EConfigurationError.
TConfiguration LoadConfiguration(const std::string& FileName);

/// LoadConfiguration of what FindConfiguration finds; the defaults when that is nothing.
TConfiguration FindAndLoadConfiguration(const std::string& Given = {});

}  // namespace velkrund
