#pragma once

// The printer globals are public API; the library's own code may include
// them from here too.
#include "kaloimpresora/impresoras.h"

namespace kalo {

class ImpresoraComun;

// The current printer when it is one of the component's own, sharing its
// ownership; null for any other object (a host's, a test's recorder). Its
// members are then reached directly instead of by name, with the same effect:
// the class's dispatch cannot be overridden.
std::shared_ptr<ImpresoraComun> ImpresoraActualPropia();

}  // namespace kalo
