#pragma once

#include <string>

namespace velkrund {

/// The content of a small text file, or of standard input for "-". What: for messages, "the query". Raises EFOpenError
/// for one that cannot be read, is empty, larger than 16 MiB or no UTF-8.
std::string ReadText(const std::string& FileName, const std::string& What);
/// The same, byte for byte; it may be empty.
std::string ReadWholeText(const std::string& FileName, const std::string& What);

}  // namespace velkrund
