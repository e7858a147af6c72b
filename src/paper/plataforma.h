#pragma once

// The platform family the paper routines ask for: 0 and 1 were the older
// families without a print spooler of forms, 2 the one with it. Linux has a
// print system that can define and select sheets, so the form path always
// stays on.

#include <cstdint>

namespace kalo {

inline constexpr int32_t kPlataformaConFormas = 2;

inline int32_t ObtenPlataforma() { return kPlataformaConFormas; }

}  // namespace kalo
