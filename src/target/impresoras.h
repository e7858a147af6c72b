#pragma once

// The printer globals are public API; the library's own code may include
// them from here too.
#include "kaloimpresora/impresoras.h"
