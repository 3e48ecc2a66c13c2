#pragma once

#include <memory>

#include "jobs/run/Job.h"
#include "jobs/run/JobProperties.h"

namespace velkrund {

/// The scriptable face of a job, the same for all: what a job has of its own stands in its property table. Makes the
/// job and owns it.
template <typename TJobClass>
class TJobInterface final : public TUtilOperationInterface {
 public:
  explicit TJobInterface(TRBaseManager* Manager = nullptr)
      : TUtilOperationInterface(TUtilOperationClass(TJobClass::Descriptor), Manager) {}
  TInterfaceClass ClassType() const override { return TInterfaceClass(TJobClass::Interface); }

  TJobClass& Job() const { return static_cast<TJobClass&>(Operation()); }
};

// Properties that jobs share; the tables of single jobs begin with one of these.

extern const TPropertyTable JobProperties;          // Report
extern const TPropertyTable PolicyJobProperties;    // and the policies
extern const TPropertyTable SectionsJobProperties;  // and the counts

/// What a job class defines as its Descriptor. Name: "TJobExportTables".
template <typename TJobClass>
constexpr TUtilOperationDescriptor JobDescriptor(const char* Name) {
  return {Name, nullptr, []() -> std::unique_ptr<TUtilOperation> { return std::make_unique<TJobClass>(); }};
}

/// What it defines as its Interface. Name: "TJobExportTablesInterface".
template <typename TJobClass>
constexpr TInterfaceDescriptor JobInterfaceDescriptor(const char* Name, const TPropertyTable& Properties) {
  return {Name, &TUtilOperationInterface::Descriptor, &Properties,
          [](TRBaseManager* Manager) -> std::unique_ptr<TUtilOperationInterface> {
            return std::make_unique<TJobInterface<TJobClass>>(Manager);
          }};
}

}  // namespace velkrund
