#pragma once
#include "platform/scripting/dictionary.h"
#include "platform/scripting/shell.h"

#include <memory>

namespace hourbook {

/// Makes sure that dictionaries can be made, with one attempt at repair; without success the program ends.
void subSetupDictionary();

/// A new dictionary. As all dictionaries of the system, its keys compare without regard to case.
template <class T>
std::shared_ptr<platform::scripting::Dictionary<T>> fncCreateDic() {
  subSetupDictionary();
  auto dictionary = std::make_shared<platform::scripting::Dictionary<T>>();
  dictionary->setCompareMode(platform::scripting::CompareMethod::Text);
  return dictionary;
}

/// The scripting shell, or null after a message that it is missing.
std::shared_ptr<platform::scripting::WshShell> fncGetShell();

}  // namespace hourbook
