#pragma once

// kaloimpresora registra / desregistra: the shared library's own
// DllRegisterServer and DllUnregisterServer, loaded with dlopen.

#include <QStringList>

namespace kalo::herramienta {

int Registra(const QStringList& args, bool registrar);
QString AyudaDelRegistro();

}  // namespace kalo::herramienta
