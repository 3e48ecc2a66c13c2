#pragma once

#include <string>

namespace velkrund {

/// Gives an open file the rights of the one at From: owner and group, mode, POSIX access list, attributes of users
/// ("user."). An owner that may not be given away is not kept, as long as nobody gets rights by that. Raises
/// EWriteError with what cannot be kept; From: for the message too.
void KeepRights(const std::string& From, int To);

}  // namespace velkrund
