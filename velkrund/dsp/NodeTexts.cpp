#include "velkrund/dsp/NodeTexts.h"

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

std::string PlaceOf(const TDSPNode& Node) {
  return Format("(Node:'%s')", Node.Parent() ? Node.GetFullName() : Node.Name());
}

[[noreturn]] void Refuse(const std::string& Message) { throw EDSPUtilError(Message, {.Code = TErrorCode::Text}); }

}  // namespace

void ReportLosses(TEIStream& Stream, const TTextLosses& Lost, const TDSPNode& Node) {
  Stream.Losses() += Lost;
  if (!Lost.Any() || !Stream.StrictText()) return;
  if (Lost.Malformed)
    Refuse(Format("A text is not valid UTF-8 %s. Allow losses to keep it with replacement characters", PlaceOf(Node)));
  if (Lost.Unrepresentable)
    Refuse(Format("A text has characters that code page %d lacks %s. Use version 200 in UTF-8, or allow losses",
                  WorkSettings().AnsiCodePage->Number(), PlaceOf(Node)));
  Refuse(
      Format("Readers of the file would take the name of a node with a '#' or a control character, or an 8-bit text "
             "with a '#', for another one %s. Allow losses to write it all the same",
             PlaceOf(Node)));
}

void ReportAltered(TEIStream& Stream, std::string_view What, std::string_view Place) {
  ++Stream.Losses().Altered;
  if (Stream.StrictText()) Refuse(Format("%s %s. Allow losses to write it all the same", What, Place));
}

}  // namespace velkrund
