#pragma once

// Branch environments: a copy of the host's environment object for one
// branch of the business (kaloimpresora/ambiente.h).

#include <QString>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

// A new object of the environment class ("KaloEnviroment.Ambiente": the
// host's own when it registered one, else the component's).
std::shared_ptr<Objeto> CreaAmbiente();

// A new environment object with Conexion set to conexion, then every
// property of its class that can be set, in declaration order, read from
// principal and written to it (texts, numbers and variants by value, objects
// by reference), except NombreSucursal, which takes nombreSucursal as it
// comes. principal is not changed. The class must describe its members
// (Objeto::Describe), else 445. A failing step raises, unless ignoraFallas:
// then that property keeps its initial value and the copy goes on.
std::shared_ptr<Objeto> CopiaAmbiente(Objeto& principal, const std::shared_ptr<Objeto>& conexion,
                                      const QString& nombreSucursal, bool ignoraFallas = false);

}  // namespace kalo
