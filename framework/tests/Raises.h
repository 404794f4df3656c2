// The message of the exception a call raises, for tests that check message texts (framework
// layer, tests only).
#pragma once

#include <string>

#include "Exception.h"

namespace fwtest {

/// The message of the E that `call` raises; "(nothing raised)" when it returns normally. An
/// exception of another type propagates and fails the test.
template <class E = fw::Exception, class F>
std::string MessageOf(F&& call) {
  try {
    call();
  } catch (const E& e) {
    return e.Message();
  }
  return "(nothing raised)";
}

}  // namespace fwtest
