#include <mutex>
#include <set>

#include "velkrund/module/CHandles.h"
#include "velkrund/module/Module.h"
#include "velkrund/operations/OperationErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {

namespace {

/// A zero-terminated copy that lives as long as the process.
const char* Kept(const std::string& Text) {
  static std::mutex Lock;
  static std::set<std::string> Texts;
  const std::lock_guard Guard(Lock);
  return Texts.insert(Text).first->c_str();
}

template <typename TList>
const auto& Element(const TList& List, std::int32_t Index, std::string_view What) {
  if (Index < 0 || static_cast<std::size_t>(Index) >= List.size())
    throw EListError(Format("%s %d is out of bounds", What, Index));
  return List[static_cast<std::size_t>(Index)];
}

}  // namespace

}  // namespace velkrund

using namespace velkrund;

int32_t VelkrundClassCount() {
  return GuardedC<std::int32_t>(0, [] {
    StartModule();
    return static_cast<std::int32_t>(InterfaceClasses().All().size());
  });
}

const char* VelkrundClassName(int32_t Index) {
  return GuardedC<const char*>(nullptr, [Index] {
    StartModule();
    return Element(InterfaceClasses().All(), Index, "Class").Name();
  });
}

int32_t VelkrundPropertyCount(const char* ClassName) {
  return GuardedC<std::int32_t>(
      0, [ClassName] { return static_cast<std::int32_t>(InterfaceClassNamed(ClassName).Properties().All().size()); });
}

int VelkrundDescribeProperty(const char* ClassName, int32_t Index, VelkrundPropertyInfo* Info) {
  return GuardedC(0, [&] {
    RequireCStruct(Info, "Info");
    const std::vector<const TProperty*> Properties = InterfaceClassNamed(ClassName).Properties().All();
    const TProperty& Property = *Element(Properties, Index, "Property");
    std::string Choices;
    for (const std::string_view Name : Property.EnumNames) (Choices += Choices.empty() ? "" : ",") += Name;
    ToCStruct(Info, {sizeof *Info, Kept(std::string(Property.Name)), Kept(std::string(Property.Help)), Kept(Choices),
                     static_cast<VelkrundType>(Property.Type), Property.Set == nullptr});
    return 1;
  });
}

namespace velkrund {

static_assert(static_cast<int>(TPropertyType::Object) == VELKRUND_OBJECT, "the types of both sides have one order");

TInterfaceClass InterfaceClassNamed(const char* Name) {
  RequireCArgument(Name, "ClassName");
  StartModule();
  if (const TInterfaceClass Class = InterfaceClasses().Find(Name)) return Class;
  std::vector<std::string> Names;
  for (const TInterfaceClass& Class : InterfaceClasses().All()) Names.emplace_back(Class.Name());
  const std::string Hint = NearestHint(Name, Names);
  throw EPropertyError(Format("There is no operation class '%s'%s", Name,
                              Hint.empty() ? "; VelkrundClassName tells what there is" : Hint));
}

}  // namespace velkrund
