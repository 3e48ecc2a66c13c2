#pragma once

#include "jobs/policies/PolicyProperties.h"
#include "jobs/run/Job.h"
#include "velkrund/operations/OperationInterface.h"
#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

/// The scriptable face of a job, the same for all: what a job has of its own stands in its property table, and
/// TJobClass::Interface describes it.
template <typename TJobClass>
class TJobInterface final : public TOperationInterface<TJobInterface<TJobClass>, TJobClass> {
 public:
  using TOperationInterface<TJobInterface, TJobClass>::TOperationInterface;

  TJobClass& Job() const { return this->Operation(); }

  static constexpr const TInterfaceDescriptor& Descriptor = TJobClass::Interface;
};

/// Rows for the policies that a job obeys.
using TPolicyRows = TPolicyProperties<&TPolicyJob::Policies>;

// Properties that jobs share; the tables of single jobs begin with one of these.

extern const TPropertyTable JobProperties;          // Report
extern const TPropertyTable SectionsJobProperties;  // and the counts

}  // namespace velkrund
