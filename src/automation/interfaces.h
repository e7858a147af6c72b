#pragma once

// The member tables of the two public classes, for code that needs to walk
// them (tests, documentation tools).

#include "automation/interfaz.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/paramdata.h"

namespace kalo {

const Interfaz<Impresora>& InterfazImpresora();
const Interfaz<ParamData>& InterfazParamData();

}  // namespace kalo
