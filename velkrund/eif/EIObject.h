#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/ClassRef.h"
#include "velkrund/platform/ormtools/ParamsList.h"

namespace velkrund {

class TEIObject;
class TEISection;
class TEISectionParameters;
class TEIStream;
class TTableLoading;

/// Progress of a job: Current of Total, and the name of what is being worked on (valid during the call).
using TProgressCallback = std::function<void(std::int32_t Current, std::int32_t Total, std::string_view ObjectName)>;
/// Polled by long jobs; true asks them to stop.
using TCancelCallback = std::function<bool()>;

/// Hands 64-bit progress to a callback, if there is one. A Total beyond 32 bits is reported in millionths.
void ReportProgress(const TProgressCallback& OnProgress, std::int64_t Current, std::int64_t Total,
                    std::string_view ObjectName);

/// What a section's content means to those who import whole files.
enum class TSectionRole {
  Structure,
  TableData,       // rows of a table, which the header names
  QueryData,       // rows for a table that whoever imports them chooses
  GeneratorData,   // where a generator stands
  Language,        // what a language is called
  Resource,        // localized strings
  SingleResource,  // the same in one language, not to be imported
  Other,
};

/// The static facts of a section class. AcceptVersion may be null: then only Version itself is accepted.
struct TEIObjectDescriptor {
  const char* Name;
  const TEIObjectDescriptor* Parent;
  const char* TypeName;
  int Version;
  TSectionRole Role;
  bool (*AcceptVersion)(int Version);
  std::unique_ptr<TEIObject> (*Factory)();
};

/// A section class as a value.
class TEIObjectClass : public TClassRef<TEIObjectDescriptor> {
 public:
  using TClassRef::TClassRef;

  /// The text of the "Type" header line; empty for no class.
  std::string_view TypeName() const { return Descriptor() ? Descriptor()->TypeName : std::string_view(); }
  int Version() const { return Descriptor() ? Descriptor()->Version : -1; }
  TSectionRole Role() const { return Descriptor() ? Descriptor()->Role : TSectionRole::Other; }
  /// Whether the class reads bodies of that version.
  bool AcceptVersion(int Version) const;
  /// A new object; raises EAccessViolation for no class and for an abstract one.
  std::unique_ptr<TEIObject> Create() const;
};

/// Anything that can be written to, or read from, an export/import source: it describes itself in header parameters and
/// writes and reads its body as lines. Used by one thread at a time, for one export or import.
class TEIObject {
 public:
  TEIObject() = default;
  TEIObject(const TEIObject&) = delete;
  TEIObject& operator=(const TEIObject&) = delete;
  virtual ~TEIObject() = default;

  /// Writes the body lines.
  virtual void ExportData(TEIStream& Stream) = 0;
  /// Reads the body lines up to the end of the bounded stream.
  virtual void ImportData(TEIStream& Stream) = 0;
  /// Settings, and answers given for all, on their way from one section object to the next.
  virtual void SaveProperties(TKvParamsList& Properties) const;
  virtual void LoadProperties(const TKvParamsList& Properties);
  /// Takes name, version and parameters from a parsed header, before an import.
  virtual void Initialize(const TEISection& Section) = 0;
  /// Adds the header lines beyond name, type and version, before an export.
  virtual void FillParameters(TEISectionParameters& Parameters) = 0;
  virtual TEIObjectClass ClassType() const = 0;

  std::string_view TypeName() const { return ClassType().TypeName(); }
  int Version() const { return ClassType().Version(); }
  bool AcceptVersion(int Version) const { return ClassType().AcceptVersion(Version); }

  /// ReportProgress to OnProgress.
  void ShowProgress(std::int64_t Current, std::int64_t Total, std::string_view ObjectName) const {
    ReportProgress(OnProgress, Current, Total, ObjectName);
  }
  /// What OnCancel answers; false without one. Polled between records.
  bool IsCanceled() const { return OnCancel && OnCancel(); }
  /// Whether the last import ended early, and undone, because it was cancelled.
  bool Stopped() const { return FStopped; }
  /// Whether the last import left what was there already as it was, because of an answer.
  virtual bool LeftAlone() const { return false; }

  int SectionNumber = 0;  // index of the section to import in its source
  TProgressCallback OnProgress;
  TCancelCallback OnCancel;
  std::string DatabaseName;
  /// Import: a line feed alone within a line of records or nodes, which no writer leaves there, is an error. It is what
  /// remains of a line's end, and two lines would be read as one.
  bool StrictLines = false;
  /// The tables that are loaded in one go with this section's, borrowed; null: this one alone.
  TTableLoading* Loading = nullptr;

 protected:
  bool FStopped = false;
};

}  // namespace velkrund
