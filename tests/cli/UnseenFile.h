#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <filesystem>
#include <string>

namespace velkrund::tests {

/// Whether the process has written into a file of the folder that has no name yet.
inline bool WritesUnseen(pid_t Process, const std::string& Folder) {
  namespace fs = std::filesystem;
  std::error_code Error;
  for (const auto& Entry : fs::directory_iterator("/proc/" + std::to_string(Process) + "/fd", Error)) {
    const std::string File = fs::read_symlink(Entry, Error);
    struct stat Status = {};
    if (File.starts_with(fs::canonical(Folder).string()) && File.ends_with(" (deleted)") &&
        stat(Entry.path().c_str(), &Status) == 0 && Status.st_size > 0)
      return true;
  }
  return false;
}

}  // namespace velkrund::tests
