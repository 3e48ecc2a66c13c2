#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "standalone/files/PosixFile.h"

namespace velkrund {

/// Where a file is to be, and the names in the same folder that it can have on its way there.
struct TFilePlace {
  static constexpr int MostNames = 8;  // of files in the making for one, left ones included

  std::string Path;  // behind links
  TDescriptor Folder;
  std::string Name;  // in it

  /// Of an entry of the folder; st_nlink is 0 where there is none.
  struct stat Status(const std::string& Entry) const;
  /// Number: 0 .. MostNames - 1.
  std::string NameInMaking(int Number) const;
  /// Hands each of those names to Take until one is taken; empty: none was, and errno says why.
  template <typename TTake>
  std::string TakeName(TTake Take) const {
    for (int Number = 0; Number < MostNames; ++Number) {
      std::string Entry = NameInMaking(Number);
      if (Take(Entry)) return Entry;
      if (errno != EEXIST) break;
    }
    return {};
  }
  /// Removes those that a killed process has left, and no others.
  void RemoveLeft() const;
};

/// The place that a path leads to. The folder's number is negative where it cannot be entered; errno says why.
TFilePlace PlaceOfFile(const std::string& Path);

}  // namespace velkrund
