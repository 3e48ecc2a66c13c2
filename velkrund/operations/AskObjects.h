#pragma once

#include <functional>
#include <string>

namespace velkrund {

class TAskObject;
class TUtilOperation;

/// Shows the question and stores the answer in AskData.
using TAskCallback = std::function<void(TAskObject& AskData, TUtilOperation* Sender)>;

/// A question that an operation asks, with the last answer. One object per kind of question; FAlwaysAsk tells whether
/// the next object is asked about again or the stored answer holds for all the rest.
class TAskObject {
 public:
  virtual ~TAskObject() = default;
  /// Copies callback and FAlwaysAsk, and the answers that both classes have; never the question's text.
  virtual void Assign(const TAskObject& Source);

  TAskCallback FCallback;
  bool FAlwaysAsk = false;
  std::string fAskCallbackString;  // the question, stored before the callback is called
};

class TYesNoAsk : public TAskObject {
 public:
  void Assign(const TAskObject& Source) override;
  bool FYes = false;
};

class TYesNoCancelAsk : public TAskObject {
 public:
  void Assign(const TAskObject& Source) override;
  bool FYes = false;
  bool FCancel = false;
};

}  // namespace velkrund
