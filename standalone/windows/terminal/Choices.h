#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

/// What can be typed at a form.
class TChoices {
 public:
  struct TChoice {
    TLButton* Button = nullptr;      // to press; with no check box either: the whole job is given up
    TLCheckBox* CheckBox = nullptr;  // to change
    std::string Caption;             // in lower case
    std::string Letter;              // in lower case; one character of Caption, or a number that is none
    std::size_t At = 0;              // of the letter in Caption; npos: none
  };

  /// IsName: whether something else that can be typed at the form goes by that; no letter is such a name then.
  using TIsName = std::function<bool(std::string_view)>;
  explicit TChoices(const TForm& Form, TIsName IsName = {});

  /// All of them on one line, their letters in brackets.
  std::string Line() const;
  /// The hints of those that have one, a line each.
  std::string Hints() const;
  /// The one whose letter or caption Typed is, else the first whose component's name begins with it, in any case; null
  /// when there is none.
  const TChoice* Find(std::string_view Typed) const;
  /// Whether it is a letter.
  bool HasLetter(std::string_view Typed) const;

 private:
  void Add(TChoice Choice, std::string_view Caption);
  bool Taken(std::string_view Letter) const;

  const TIsName FIsName;
  std::vector<TChoice> FChoices;
};

}  // namespace velkrund
