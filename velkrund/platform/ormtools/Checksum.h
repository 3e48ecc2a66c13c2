#pragma once

#include <cstdint>
#include <string_view>

namespace velkrund {

/// CRC-32 as in gzip and PNG (reflected polynomial 0xEDB88320): finds every burst of up to 32 changed bits.
std::uint32_t Crc32(std::string_view Bytes);

}  // namespace velkrund
