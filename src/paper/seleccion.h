#pragma once

#include <QString>

namespace kalo {

// Makes current the first of the print server's destinations (instances
// "cola/instancia" included, in the order the server lists them) whose
// DeviceName is exactly nombre, case included. No match changes nothing.
void SeleccionaImpresora(const QString& nombre);

}  // namespace kalo
