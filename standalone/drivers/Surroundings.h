#pragma once

#include <string>
#include <utility>
#include <vector>

#include "standalone/drivers/Schema.h"

namespace velkrund {

/// Fields that change their names: before, and then. All others keep theirs.
using TRenamedFields = std::vector<std::pair<std::string, std::string>>;

/// How much is put back. Of a rehearsal the new object has no rows: what looks at rows is left out.
enum class TPutBack { Whole, Rehearsed };

/// What stands around a table or view that is dropped and made again, and would be in the way or go with it: views and
/// foreign keys of others, triggers and rules, comments, owner and rights, storage options, counters, membership in a
/// partitioned table. Fields, keys, indexes and conditions are none of it: those of the new one hold. Lives inside one
/// transaction of the caller, whose roll back undoes all. The operations come in this order, each once.
class TSurroundings {
 public:
  TSurroundings() = default;
  TSurroundings(const TSurroundings&) = delete;
  TSurroundings& operator=(const TSurroundings&) = delete;
  virtual ~TSurroundings() = default;

  /// Locks the object against everybody else, before the first question about it: what others have committed by then
  /// is seen from now on, and what is asked then holds.
  virtual void Lock() = 0;
  /// Reads what stands around it, and takes out of the way what keeps it from being dropped. EDatabaseError, before
  /// anything is changed, names all that could not be put back, and rights that are missing.
  virtual void SetAside() = 0;
  /// When the new object of that name is there, with its rows: gives it back all that it has not got by itself. Where
  /// the new one has something of the same name, as a trigger or comment, that stays. EDatabaseError names what does
  /// not fit it any more.
  virtual void PutBack(TPutBack How) = 0;
  /// What people should know, once it is put back: "view 'V' did not work before either".
  virtual const std::vector<std::string>& Remarks() const = 0;
};

}  // namespace velkrund
