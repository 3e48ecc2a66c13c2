#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// What stands between "user:" and the last "@" behind "://"; no data where there is no such place. It may hold any
/// character, since people forget to encode some: rather more than the password than less.
std::string_view PasswordOf(std::string_view Text);

/// A database's address, or what somebody took for one, for messages: passwords, and values of parameters that are not
/// known to be harmless, are "***". Where it cannot be told what a text is, and it may hold a password, all behind its
/// scheme is.
std::string WithoutSecrets(std::string_view Text);

/// A message with the secrets of that address, and Known where it is not empty, as "***": what others say of a
/// connection may repeat what they got.
/// Two characters are no secret, and stand in every message.
std::string WithSecretsMasked(std::string Message, std::string_view Text, std::string_view Known = {});

/// Whether a message about that address, in which some of it stands between quotation marks, tells nothing that
/// WithoutSecrets hides.
bool TellsNoSecret(std::string_view Message, std::string_view Text);

}  // namespace velkrund
