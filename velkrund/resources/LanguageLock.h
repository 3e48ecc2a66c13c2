#pragma once

#include <string>

#include "velkrund/platform/localization/LocalizatorTable.h"

namespace velkrund {

/// Nobody else writes texts of a section in a language meanwhile. All borrowed. An end of life without End is that of a
/// failure or a cancelled run: it raises nothing.
class TLanguageLock {
 public:
  TLanguageLock(TLocalizatorTable& Table, const std::string& SectionID, const std::string& Language);
  TLanguageLock(const TLanguageLock&) = delete;
  TLanguageLock& operator=(const TLanguageLock&) = delete;
  ~TLanguageLock();

  void End();

 private:
  TLocalizatorTable& FTable;
  const std::string &FSectionID, &FLanguage;
  bool FEnded = false;
};

}  // namespace velkrund
