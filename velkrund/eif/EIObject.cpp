#include "velkrund/eif/EIObject.h"

#include <limits>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

namespace {

constexpr std::int64_t MaxPlainTotal = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t Millionths = 1'000'000;

}  // namespace

void ReportProgress(const TProgressCallback& OnProgress, std::int64_t Current, std::int64_t Total,
                    std::string_view ObjectName) {
  if (!OnProgress) return;
  if (Total >= -MaxPlainTotal && Total <= MaxPlainTotal) {
    OnProgress(static_cast<std::int32_t>(Current), static_cast<std::int32_t>(Total), ObjectName);
    return;
  }
  const double Share = static_cast<double>(Current) / static_cast<double>(Total) * Millionths;
  OnProgress(static_cast<std::int32_t>(Share), Millionths, ObjectName);
}

bool TEIObjectClass::AcceptVersion(int Version) const {
  if (!Descriptor()) return false;
  return Descriptor()->AcceptVersion ? Descriptor()->AcceptVersion(Version) : Version == Descriptor()->Version;
}

std::unique_ptr<TEIObject> TEIObjectClass::Create() const {
  if (!Descriptor() || !Descriptor()->Factory)
    throw EAccessViolation("No section object can be made: the section has no registered class");
  return Descriptor()->Factory();
}

void TEIObject::SaveProperties(TKvParamsList&) const {}

void TEIObject::LoadProperties(const TKvParamsList&) {}

}  // namespace velkrund
