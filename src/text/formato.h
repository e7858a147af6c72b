#pragma once

#include "kaloimpresora/variant.h"

namespace kalo {

// The runtime's Format: named formats and user formats of numbers, dates and
// texts, in the user's locale, weeks starting on Sunday and the first week of
// the year the one holding 1 January. Text, or Null where the runtime gives
// Null (a Null value without a section for it).
Variant Formato(const Variant& valor, const Variant& formato);

}  // namespace kalo
