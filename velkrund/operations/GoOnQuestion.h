#pragma once

#include <exception>
#include <string>

namespace velkrund {

/// To be called within the handler of Error. Asks in a message box whether to go on without what has failed, and
/// returns when that is wanted; otherwise raises Error again, where nobody can be asked with the reason.
void GoOnOrRaise(const std::exception& Error, const std::string& Question);
/// The same with a caption; whatever is answered, but yes, raises the error.
void GoOnAtYesOrRaise(const std::exception& Error, const std::string& Question);

/// As long as one lives, nobody is asked: the error is raised. For who asks such questions himself.
class TNobodyGoesOn {
 public:
  TNobodyGoesOn();
  TNobodyGoesOn(const TNobodyGoesOn&) = delete;
  TNobodyGoesOn& operator=(const TNobodyGoesOn&) = delete;
  ~TNobodyGoesOn();
};

}  // namespace velkrund
