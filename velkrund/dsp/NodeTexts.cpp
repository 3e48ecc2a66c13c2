#include "velkrund/dsp/NodeTexts.h"

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

void ReportLosses(TEIStream& Stream, const TTextLosses& Lost, const TDSPNode& Node) {
  Stream.Losses().Malformed += Lost.Malformed;
  Stream.Losses().Unrepresentable += Lost.Unrepresentable;
  if (!Lost.Any() || !Stream.StrictText()) return;
  const std::string Place = Format("(Node:'%s')", Node.Parent() ? Node.GetFullName() : Node.Name());
  if (Lost.Malformed)
    throw EDSPUtilError(
        Format("A text is not valid UTF-8 %s. Allow losses to keep it with replacement characters", Place));
  throw EDSPUtilError(
      Format("A text has characters that code page %d lacks %s. Use version 200 in UTF-8, or allow losses",
             WorkSettings().AnsiCodePage->Number(), Place));
}

}  // namespace velkrund
