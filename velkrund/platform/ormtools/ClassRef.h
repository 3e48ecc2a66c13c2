#pragma once

namespace velkrund {

/// A class as a value: which class, not which object. It points to a static descriptor that has at least
/// `const char* Name` and `const Descriptor* Parent` (empty at the root); it is copied, compared by the descriptor's
/// address, and may be empty. Family-specific references (section classes, operation classes) derive from it and add
/// what their descriptors hold: factories, type names, version tests.
template <typename TDescriptor>
class TClassRef {
 public:
  constexpr TClassRef() = default;
  constexpr explicit TClassRef(const TDescriptor& Descriptor) : FDescriptor(&Descriptor) {}

  constexpr explicit operator bool() const { return FDescriptor != nullptr; }
  constexpr const char* Name() const { return FDescriptor ? FDescriptor->Name : ""; }

  /// True when this class is Ancestor or derives from it; false when either is empty.
  constexpr bool InheritsFrom(const TClassRef& Ancestor) const {
    if (!Ancestor.FDescriptor) return false;
    for (const TDescriptor* At = FDescriptor; At; At = At->Parent)
      if (At == Ancestor.FDescriptor) return true;
    return false;
  }

  friend constexpr bool operator==(const TClassRef&, const TClassRef&) = default;

 protected:
  constexpr const TDescriptor* Descriptor() const { return FDescriptor; }

 private:
  const TDescriptor* FDescriptor = nullptr;
};

}  // namespace velkrund
