#pragma once

// The registry of components: where in-process servers say which classes
// they offer and which library file holds them, so that a process that knows
// only a class's identifier can load it. One file per class, named by its
// class identifier, in kaloimpresora/componentes under the user's data
// folder (or the system's), of "Clave=valor" lines.

#include <QString>
#include <QStringList>
#include <optional>

namespace kalo::componentes {

struct Registro {
    QString idDePrograma;
    QString idDeClase;  // "{…}", upper case
    QString modeloDeHilos;
    QString interfaz;
    QString idDeInterfaz;
    QString bibliotecaDeTipos;
    QString version;
    QString locale;
    QString biblioteca;  // absolute path of the library file
};

// Where a library's registration goes: the system's data folder of the
// prefix it is installed under when the process runs as root, else the
// user's.
QString CarpetaParaEscribir(const QString& biblioteca);

// Where registrations are looked for, the user's folder first.
QStringList CarpetasDeBusqueda();

bool Escribe(const QString& carpeta, const Registro& registro);
// True when the class is no longer registered there.
bool Borra(const QString& carpeta, const QString& idDeClase);

// By program or class identifier (braces optional), case-insensitively.
std::optional<Registro> Busca(const QString& identificador);

}  // namespace kalo::componentes
