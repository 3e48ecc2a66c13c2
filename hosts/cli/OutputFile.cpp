#include "hosts/cli/OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "hosts/cli/InputFile.h"
#include "hosts/cli/SectionRemoval.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr char CommentMark = ';';

}  // namespace

TOutputFile::TOutputFile(const TSession& Session, const std::string& Name) : FSession(Session), FName(Name) {
  if (IsPipe(Name)) FSpool = std::make_unique<TSpool>(Session.Files());
  FFile = std::make_unique<TEIFile>(FSpool ? *FSpool : Session.Files());
  FFile->SetFileName(Name == "-" ? "standard output" : Name);
  if (FSpool)
    FFile->Open();
  else
    OpenFile();
}

void TOutputFile::OpenFile() {
  // Made under the condition that it does not exist: another program may be making it at the same time.
  if (!FSession.Files().Exists(FName)) {
    FSession.Files().Open(FName, TFileMode::CreateNew)->Sync();
    FCreated = true;
  }
  try {
    OpenPlainly(*FFile);
    RefuseForeignFile();
  } catch (...) {
    if (FCreated) FSession.Files().Remove(FName);
    throw;
  }
}

void TOutputFile::RefuseForeignFile() {
  if (FFile->Sections().Count() > 0) return;
  std::string Start(4096, '\0');
  FFile->Stream().SetPosition(0);
  Start.resize(FFile->Stream().Read(Start.data(), Start.size()));
  std::string_view Text = Start;
  if (Text.starts_with(ByteOrderMark)) Text.remove_prefix(ByteOrderMark.size());
  Text = Trim(Text);
  if (!Text.empty() && Text.front() != CommentMark)
    throw EFOpenError(Format("File '%s' is there already and is no export/import file: nothing is added to it", FName));
}

TOutputFile::~TOutputFile() {
  if (!FCreated || FFile->Sections().Count() > 0) return;
  try {
    FSession.Files().Remove(FName);
  } catch (const std::exception& Error) {
    FSession.Console.Message(Format("velkrund: an empty file is left: %s", Error.what()));
  }
}

void TOutputFile::Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled) {
  FFile->Sync();
  if (!Replaced.empty()) RemoveSections(FSession.Files(), *FFile, Replaced, Canceled);
  if (!FSpool || FFile->Sections().Count() == 0) return;
  if (FName == "-") {
    FSpool->DrainTo(STDOUT_FILENO, "standard output", Canceled);
    return;
  }
  const int Descriptor = open(FName.c_str(), O_WRONLY | O_CLOEXEC);
  if (Descriptor < 0)
    throw EFOpenError(Format("Can not open file '%s': %s", FName, std::generic_category().message(errno)));
  try {
    FSpool->DrainTo(Descriptor, FName, Canceled);
  } catch (...) {
    close(Descriptor);
    throw;
  }
  close(Descriptor);
}

}  // namespace velkrund
