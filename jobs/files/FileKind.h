#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// What a file is that is no export/import file, and what to do about it: "compressed (gzip)", "unpack it first".
struct TForeignKind {
  std::string What;
  std::string Advice;  // %s: the name of the file; may be empty
};

/// Looks at the beginning of a file without sections, and moves its stream. Nothing for a file that has sections, and
/// for one that could get them: with nothing but remarks ("; ...") in it. File: opened.
std::optional<TForeignKind> ForeignKind(TEIFile& File);

/// The same of how a file begins, damaged or not: nothing too for one that begins with a section.
std::optional<TForeignKind> ForeignStart(std::string_view Start);

/// Raises EEIError for such a file, and for one whose sections no reader sees. Name: for the message.
void RefuseForeignFile(TEIFile& File, const std::string& Name);
/// The same, and for a file without any section.
void RefuseFileWithoutSections(TEIFile& File, const std::string& Name);
/// Raises EEIError, of the code Unfinished, for a file that ends with unfinished sections.
void RefuseUnfinished(const TEIFile& File, const std::string& Name);
/// What RefuseFileWithoutSections refuses, and a file with a section that no reader sees.
void RequireSections(TEIFile& File, const std::string& Name);

}  // namespace velkrund
