#pragma once

#include <string>

#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// "-", or a path that leads to a pipe or a device: nothing that can be read or written at a position.
bool IsPipe(const std::string& Name);

/// Opens the file. That it cannot be opened at all is told by the plain error, without the story of its content.
void OpenPlainly(TEIFile& File);
/// The same for those who want its sections. A faulty header behind which lines end with a line feed alone is EEIError
/// of the code LineFeeds.
void OpenForSections(TEIFile& File);

}  // namespace velkrund
