// The forms of addresses: URLs, scheme "://" user ":" password "@" host "/" name "?" key "=" value "&" ..., whose keys
// and values may be percent-encoded; lines of key "=" value with blanks between them, a value between apostrophes or
// not, "\" before a character that means itself; lines of key "=" value with ";" between them, a value in braces or
// not; names.

#include "standalone/drivers/AddressSecrets.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::string_view Mask = "***";
constexpr std::string_view Blanks = " \t\r\n\v\f";

/// What people may see of an address. Any other parameter may be a password, or a misspelt word for one.
constexpr std::string_view Harmless[] = {"application_name",
                                         "channel_binding",
                                         "client_encoding",
                                         "connect_timeout",
                                         "data source",
                                         "database",
                                         "dbname",
                                         "driver",
                                         "dsn",
                                         "encrypt",
                                         "fallback_application_name",
                                         "filedsn",
                                         "gssencmode",
                                         "gsslib",
                                         "host",
                                         "hostaddr",
                                         "initial catalog",
                                         "keepalives",
                                         "keepalives_count",
                                         "keepalives_idle",
                                         "keepalives_interval",
                                         "krbsrvname",
                                         "load_balance_hosts",
                                         "options",
                                         "passfile",
                                         "port",
                                         "replication",
                                         "require_auth",
                                         "requirepeer",
                                         "server",
                                         "servername",
                                         "service",
                                         "ssl_max_protocol_version",
                                         "ssl_min_protocol_version",
                                         "sslcert",
                                         "sslcertmode",
                                         "sslcompression",
                                         "sslcrl",
                                         "sslcrldir",
                                         "sslkey",
                                         "sslmode",
                                         "sslnegotiation",
                                         "sslrootcert",
                                         "sslsni",
                                         "target_session_attrs",
                                         "tcp_user_timeout",
                                         "trusted_connection",
                                         "uid",
                                         "user",
                                         "user id"};

static_assert(std::is_sorted(std::begin(Harmless), std::end(Harmless)));

struct TPiece {
  std::size_t Start, Size;
};
/// Of a text, in order; nothing when the text is not of the form looked for.
using TPieces = std::optional<std::vector<TPiece>>;

int HexDigit(char C) {
  constexpr std::string_view Digits = "0123456789abcdef";
  const std::size_t Found = Digits.find(C >= 'A' && C <= 'F' ? static_cast<char>(C - 'A' + 'a') : C);
  return Found == std::string_view::npos ? -1 : static_cast<int>(Found);
}

std::string Decoded(std::string_view Text) {
  std::string Result;
  for (std::size_t I = 0; I < Text.size(); ++I) {
    const bool IsEncoded =
        Text[I] == '%' && I + 2 < Text.size() && HexDigit(Text[I + 1]) >= 0 && HexDigit(Text[I + 2]) >= 0;
    Result += IsEncoded ? static_cast<char>(HexDigit(Text[I + 1]) * 16 + HexDigit(Text[I + 2])) : Text[I];
    if (IsEncoded) I += 2;
  }
  return Result;
}

/// A value that is an address itself is none that its parameter takes.
bool IsHarmless(std::string_view Key, std::string_view Value) {
  const std::string Word = LowerCase(Trim(Key));
  // A password may have been written behind a user's name, or before a host's. Sockets may begin with "@".
  if (Word == "user" && Decoded(Value).find(':') != std::string::npos) return false;
  if ((Word == "host" || Word == "hostaddr") && Decoded(Value).find('@', 1) != std::string::npos) return false;
  return Value.find('=') == std::string_view::npos && Value.find("://") == std::string_view::npos &&
         std::binary_search(std::begin(Harmless), std::end(Harmless), Word);
}

bool MayHoldSecret(std::string_view Text) { return Decoded(Text).find_first_of("@=") != std::string::npos; }

std::size_t SkipBlanks(std::string_view Text, std::size_t At) {
  return std::min(Text.find_first_not_of(Blanks, At), Text.size());
}

/// Where the value that starts there ends; npos: its apostrophe has no second.
std::size_t EndOfValue(std::string_view Text, std::size_t At) {
  const bool IsHeld = At < Text.size() && Text[At] == '\'';
  const std::string_view Enders = IsHeld ? "'" : Blanks;
  for (At += IsHeld ? 1 : 0; At < Text.size(); ++At) {
    if (Enders.find(Text[At]) != std::string_view::npos) return IsHeld ? At + 1 : At;
    if (Text[At] == '\\') ++At;
  }
  return IsHeld ? std::string_view::npos : Text.size();
}

/// Of a line with blanks, from a place on.
TPieces SecretsOfLine(std::string_view Text, std::size_t Start) {
  std::vector<TPiece> Result;
  for (std::size_t At = SkipBlanks(Text, Start); At < Text.size(); At = SkipBlanks(Text, At)) {
    const std::size_t EndOfKey = std::min(Text.find_first_of(" \t\r\n\v\f=", At), Text.size());
    const std::string_view Key = Text.substr(At, EndOfKey - At);
    const std::size_t Equals = SkipBlanks(Text, EndOfKey);
    if (Key.empty() || Equals == Text.size() || Text[Equals] != '=') return std::nullopt;
    const std::size_t Value = SkipBlanks(Text, Equals + 1);
    At = EndOfValue(Text, Value);
    if (At == std::string_view::npos) return std::nullopt;
    if (!IsHarmless(Key, Text.substr(Value, At - Value))) Result.push_back({Value, At - Value});
  }
  return Result;
}

/// Of a line with semicolons, from a place on.
TPieces SecretsOfList(std::string_view Text, std::size_t At) {
  std::vector<TPiece> Result;
  while (At < Text.size()) {
    const std::size_t Equals = Text.find('=', At);
    const std::string_view Key = Text.substr(At, Equals - At);
    if (Equals == std::string_view::npos) return Trim(Key).empty() ? TPieces(Result) : std::nullopt;
    if (Key.find_first_of(";{}") != std::string_view::npos) return std::nullopt;
    const std::size_t Value = SkipBlanks(Text, Equals + 1);
    std::size_t End = Value;
    if (Value < Text.size() && Text[Value] == '{') {
      // A doubled one is one of the value's.
      while ((End = Text.find('}', End)) != std::string_view::npos && Text.substr(End + 1).starts_with('}')) End += 2;
      if (End == std::string_view::npos) return std::nullopt;
      if (const std::size_t Next = SkipBlanks(Text, ++End); Next < Text.size() && Text[Next] != ';')
        return std::nullopt;
    }
    End = std::min(Text.find(';', End), Text.size());
    if (!IsHarmless(Key, Text.substr(Value, End - Value))) Result.push_back({Value, End - Value});
    At = End + 1;
  }
  return Result;
}

/// Slashes: where "://" is.
TPieces SecretsOfUrl(std::string_view Text, std::size_t Slashes) {
  std::vector<TPiece> Result;
  std::size_t At = Slashes + 3;
  if (const std::string_view Password = PasswordOf(Text); Password.data()) {
    Result.push_back({static_cast<std::size_t>(Password.data() - Text.data()), Password.size()});
    At = Result.back().Start + Password.size();
  }
  const std::size_t Query = std::min(Text.find('?', At), Text.size());
  // What stands for a port and is none is a password whose host was forgotten.
  const std::size_t EndOfHosts = std::min(Text.find_first_of("/?", At), Text.size());
  for (std::size_t Colon = At; (Colon = Text.find(':', Colon)) < EndOfHosts && Text.find(']', Colon) >= EndOfHosts;) {
    const std::size_t End = std::min(Text.find(',', ++Colon), EndOfHosts);
    if (Text.substr(Colon, End - Colon).find_first_not_of("0123456789") < End - Colon)
      Result.push_back({Colon, End - Colon});
    Colon = End;
  }
  // A colon of the user's own would be encoded, and is more likely one that was to end the name.
  const std::string Before = Decoded(Text.substr(At, Query - At));
  const bool HasUser = Text.substr(At, Query - At).find('@') != std::string_view::npos && Result.empty();
  if (Before.find('=') != std::string::npos ||
      (HasUser && Before.substr(0, Before.rfind('@')).find(':') != std::string::npos))
    return std::nullopt;
  for (At = Query + 1; At < Text.size();) {
    const std::size_t End = std::min(Text.find('&', At), Text.size());
    const std::size_t Equals = std::min(Text.find('=', At), End);
    const std::string_view Value = Text.substr(std::min(Equals + 1, End), End - std::min(Equals + 1, End));
    if (Equals == End && End > At) return std::nullopt;
    if (Equals < End && !IsHarmless(Decoded(Text.substr(At, Equals - At)), Value))
      Result.push_back({Equals + 1, Value.size()});
    At = End + 1;
  }
  return Result;
}

std::size_t EndOfScheme(std::string_view Text) { return ParseDatabaseUrl(Text) ? Text.find(':') + 1 : 0; }

std::vector<TPiece> SecretsOf(std::string_view Text) {
  const std::optional<TDatabaseUrl> Url = ParseDatabaseUrl(Text);
  // The name of a file.
  if (Url && Url->Scheme == "sqlite") return {};
  const std::size_t Start = EndOfScheme(Text);
  const std::size_t Slashes = Text.find("://");
  const std::size_t Equals = std::min(Text.find('=', Start), Text.size());
  TPieces Result;
  if (Slashes < Equals)
    Result = SecretsOfUrl(Text, Slashes);
  else if (Equals < Text.size())
    Result = (Url && Url->Scheme == "odbc") || Text.find(';', Start) != std::string_view::npos
                 ? SecretsOfList(Text, Start)
                 : SecretsOfLine(Text, Start);
  if (Result) return *Result;
  return MayHoldSecret(Text.substr(Start)) ? std::vector<TPiece>{{Start, Text.size() - Start}} : std::vector<TPiece>();
}

/// Whether a secret, or a part of one, is within what is quoted of the text. A quotation may begin in one and end
/// behind it.
bool Touches(std::string_view Text, const std::vector<TPiece>& Secrets, std::string_view Quoted) {
  for (const TPiece& Piece : Secrets) {
    const std::string_view Secret = Text.substr(Piece.Start, Piece.Size);
    if (Quoted.find(Secret) != std::string_view::npos) return true;
    for (std::size_t At = 0; (At = Text.find(Quoted, At)) != std::string_view::npos; ++At)
      if (At < Piece.Start + Piece.Size && At + Quoted.size() > Piece.Start) return true;
  }
  return false;
}

}  // namespace

std::string_view PasswordOf(std::string_view Text) {
  const std::size_t Slashes = Text.find("://");
  const std::size_t At = Text.rfind('@');
  if (Slashes == std::string_view::npos || At == std::string_view::npos) return {};
  const std::size_t Colon = Text.find(':', Slashes + 3);
  return Colon < At ? Text.substr(Colon + 1, At - Colon - 1) : std::string_view();
}

std::string WithoutSecrets(std::string_view Text) {
  std::string Result;
  std::size_t At = 0;
  for (const auto& [Start, Size] : SecretsOf(Text)) {
    (Result += Text.substr(At, Start - At)) += Mask;
    At = Start + Size;
  }
  return Result += Text.substr(At);
}

std::string WithSecretsMasked(std::string Message, std::string_view Text, std::string_view Known) {
  std::vector<std::string> Secrets = {std::string(Known)};
  for (const auto& [Start, Size] : SecretsOf(Text)) {
    std::string_view Secret = Text.substr(Start, Size);
    if (Size > 1 && (Secret.front() == '\'' || Secret.front() == '{')) Secret = Secret.substr(1, Size - 2);
    Secrets.emplace_back(Secret);
    Secrets.push_back(Decoded(Secret));
  }
  for (const std::string& Secret : Secrets)
    for (std::size_t At = 0; Secret.size() > 2 && (At = Message.find(Secret, At)) != std::string::npos;
         At += Mask.size())
      Message.replace(At, Secret.size(), Mask);
  return Message;
}

bool TellsNoSecret(std::string_view Message, std::string_view Text) {
  const std::vector<TPiece> Secrets = SecretsOf(Text);
  if (Secrets.empty()) return true;
  bool HasQuoted = false;
  for (std::size_t At = 0; (At = Message.find('"', At)) != std::string_view::npos;) {
    const std::size_t End = Message.find('"', At + 1);
    if (End == std::string_view::npos || Touches(Text, Secrets, Message.substr(At + 1, End - At - 1))) return false;
    HasQuoted = true;
    At = End + 1;
  }
  return HasQuoted;
}

}  // namespace velkrund
