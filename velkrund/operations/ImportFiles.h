#pragma once

#include <string>
#include <vector>

#include "velkrund/operations/ImportFile.h"

namespace velkrund {

/// Imports several files as one: the structures of all of them, then the table data of all of them, then the database
/// objects that the structures describe and what follows them. Progress counts the bytes of each file's structures,
/// then those of all tables, then those of all languages and strings.
/// A file that cannot be opened is asked about as a failed section is, and then left out.
class TUOImportFiles : public TUOImportFile {
 public:
  std::vector<std::string> FFiles;  // in the order of their import; an empty list is an error

  static const TUtilOperationDescriptor Descriptor;

 protected:
  int ImportAll() override;

 private:
  int ImportSeveral();
};

}  // namespace velkrund
