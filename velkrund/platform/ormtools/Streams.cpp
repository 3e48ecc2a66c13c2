#include "velkrund/platform/ormtools/Streams.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::int64_t SeekTarget(std::int64_t Offset, TSeekOrigin Origin, std::int64_t Position, std::int64_t Size) {
  const std::int64_t Base = Origin == TSeekOrigin::Beginning ? 0 : Origin == TSeekOrigin::Current ? Position : Size;
  if (Offset > std::numeric_limits<std::int64_t>::max() - Base) return Size;
  return std::clamp<std::int64_t>(Base + Offset, 0, Size);
}

std::size_t TMemoryStream::Read(char* Buffer, std::size_t Count) {
  const std::size_t Taken = std::min(Count, FData.size() - FPosition);
  if (Taken != 0) std::memcpy(Buffer, FData.data() + FPosition, Taken);
  FPosition += Taken;
  return Taken;
}

void TMemoryStream::Write(std::string_view Data) {
  FData.replace(FPosition, std::min(Data.size(), FData.size() - FPosition), Data);
  FPosition += Data.size();
}

std::int64_t TMemoryStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
  const std::int64_t Target = SeekTarget(Offset, Origin, static_cast<std::int64_t>(FPosition), Size());
  FPosition = static_cast<std::size_t>(Target);
  return Target;
}

void TMemoryStream::SetSize(std::int64_t Size) {
  if (Size < 0) throw EWriteError("A stream cannot have a negative size");
  FData.resize(static_cast<std::size_t>(Size));
  FPosition = std::min(FPosition, FData.size());
}

}  // namespace velkrund
