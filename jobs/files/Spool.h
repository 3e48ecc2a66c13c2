#pragma once

#include <functional>
#include <memory>

#include "jobs/files/LentFile.h"

namespace velkrund {

/// A temporary file without a name (in $TMPDIR, else /tmp) that stands in for a pipe, where positions have to be
/// sought. It is gone with the object, and with the process however that ends.
class TSpool final {
 public:
  /// Asked while waiting for the other end of a pipe; true raises EAbort.
  using TCanceled = std::function<bool()>;

  /// Files: borrowed; holds the temporary file.
  explicit TSpool(TFileSystem& Files);
  ~TSpool();

  /// The file, under every name.
  TFileSystem& Files() { return *FFiles; }

  /// Appends everything that a descriptor yields. Name: of its other end, for messages. Raises EReadError, EWriteError.
  void FillFrom(int Descriptor, const std::string& Name, const TCanceled& Canceled);
  /// Writes everything into a descriptor.
  void DrainTo(int Descriptor, const std::string& Name, const TCanceled& Canceled);

  /// The same into what a name means: "-" is standard output, anything else a pipe or device. EFOpenError.
  void DrainToName(const std::string& Name, const TCanceled& Canceled);

 private:
  std::unique_ptr<TFile> FFile;
  std::unique_ptr<TLentFile> FFiles;
};

/// Writes all of Data into a descriptor, a pipe with a slow reader included. Raises EWriteError, EAbort.
void WriteToDescriptor(int Descriptor, std::string_view Data, const std::string& Name,
                       const TSpool::TCanceled& Canceled);

}  // namespace velkrund
