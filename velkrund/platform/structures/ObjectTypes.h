#pragma once

namespace velkrund {

// Object types of stored structures that have a meaning of their own. The numbers stand in files and databases: they
// are fixed.

inline constexpr int TableObjectType = 10;
inline constexpr int VisualFormObjectType = 12;
inline constexpr int GeneratorObjectType = 71;
inline constexpr int ViewObjectType = 72;
inline constexpr int ExecStoredProcObjectType = 73;  // holds the text of a program
inline constexpr int SelectStoredProcObjectType = 74;
inline constexpr int PatternObjectType = 75;  // by which tables are made

}  // namespace velkrund
