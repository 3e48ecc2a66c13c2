#include "hosts/cli/TextInput.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t Most = 16 * 1024 * 1024;

std::string ReadAll(std::istream& Input) {
  std::string Result;
  char Block[65536];
  while (Result.size() <= Most && (Input.read(Block, sizeof Block) || Input.gcount() > 0))
    Result.append(Block, static_cast<std::size_t>(Input.gcount()));
  return Result;
}

}  // namespace

std::string ReadWholeText(const std::string& FileName, const std::string& What) {
  const bool IsStandard = FileName == "-";
  std::ifstream File;
  if (!IsStandard) File.open(FileName, std::ios::binary);
  std::istream& Input = IsStandard ? std::cin : File;
  const auto Refuse = [&](const std::string& Why) {
    throw EFOpenError(Format("Cannot read %s from %s: %s", What,
                             IsStandard ? std::string("standard input") : Format("'%s'", FileName), Why),
                      {.File = IsStandard ? std::string() : FileName});
  };
  if (!Input) Refuse(std::strerror(errno));
  errno = 0;
  std::string Text = ReadAll(Input);
  if (Input.bad() || (errno != 0 && Text.empty())) Refuse(std::strerror(errno));
  if (Text.size() > Most) Refuse("it is larger than 16 MiB");
  if (!IsStrictUtf8(Text)) Refuse("it is not UTF-8");
  return Text;
}

std::string ReadText(const std::string& FileName, const std::string& What) {
  std::string Text = ReadWholeText(FileName, What);
  if (Text.starts_with(ByteOrderMark)) Text.erase(0, ByteOrderMark.size());
  if (!Trim(Text).empty()) return Text;
  const std::string From = FileName == "-" ? "standard input" : Format("'%s'", FileName);
  throw EFOpenError(Format("Cannot read %s from %s: it is empty", What, From),
                    {.File = FileName == "-" ? std::string() : FileName});
}

}  // namespace velkrund
