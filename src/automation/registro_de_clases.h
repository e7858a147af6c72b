#pragma once

// The classes hosts register under a program identifier (RegistraClase in
// kaloimpresora/automatizacion.h). CreaObjeto asks here before it creates a
// class of the component's own, and so does code below the core that needs
// an object of a class the host may replace.

#include <QString>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

// An object of the class registered under the identifier (compared
// case-insensitively), or nullptr when none is.
std::shared_ptr<Objeto> CreaObjetoRegistrado(const QString& idDePrograma);

}  // namespace kalo
