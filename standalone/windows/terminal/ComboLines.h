#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

/// The combo boxes of a form as numbered lines, and what is typed at them:
///
///     3  NAME  <- TITLE
///
/// "NAME=TITLE" or "3=TITLE" chooses, nothing behind the "=" takes it back, "NAME" or "3" alone lists what there is.
/// Names are written as they are shown, in any case where that is clear. Numbers win: who is called "3" is reached by
/// his own number. To be made anew when the form has changed.
class TComboLines {
 public:
  explicit TComboLines(const TForm& Form);

  bool Empty() const { return FBoxes.empty(); }
  /// Whether Typed stands for one or several of the boxes.
  bool HasName(std::string_view Typed) const;
  /// What is shown of the form: its labels, and its boxes where they stand between them.
  std::vector<std::string> Lines() const;
  /// Does what was typed. Returns what is to be shown then: nothing when something was chosen; null when Typed is about
  /// no box. Width: of the terminal, in columns.
  std::optional<std::string> Obey(std::string_view Typed, int Width) const;
  /// That there is nothing of that name, and which was meant.
  std::string Unknown(std::string_view Typed) const;

 private:
  struct TOrder {
    int Box;  // its position, or one of the answers of a search
    std::string_view Value;
  };

  int FindBox(std::string_view Typed) const;
  std::vector<TOrder> OrdersIn(std::string_view Typed) const;
  std::string Choose(const TOrder& Order) const;
  std::string Values(int Box, int Width) const;

  const TForm& FForm;
  std::vector<TLComboBox*> FBoxes;
  std::vector<std::string> FNames;  // of the boxes, as they are shown
};

/// What a form shows above its choices. One without combo boxes is its message.
class TFormText {
 public:
  /// All of it.
  std::string Whole(const TForm& Form);
  /// After a change: all of it where that fits the screen, else the lines that were not shown before.
  std::string Again(const TForm& Form, int Height);

 private:
  std::vector<std::string> FLines;  // as they were shown last
};

}  // namespace velkrund
