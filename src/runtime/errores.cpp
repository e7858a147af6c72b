#include "kaloimpresora/errores.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kalo {

namespace {

struct Descripcion {
    int32_t numero;
    const char16_t* texto;
};

// Sorted by number for the binary search below.
constexpr std::array<Descripcion, 34> kDescripciones{{
    {-2147467259, u"Error no especificado"},
    {-2147217900, u"Error en la instrucción SQL"},
    {5, u"Llamada a procedimiento o argumento no válido"},
    {6, u"Desbordamiento"},
    {7, u"Memoria insuficiente"},
    {9, u"El subíndice está fuera del intervalo"},
    {11, u"División por cero"},
    {13, u"No coinciden los tipos"},
    {14, u"Espacio insuficiente para cadenas"},
    {52, u"Nombre o número de archivo incorrecto"},
    {53, u"No se encontró el archivo"},
    {57, u"Error de E/S en el dispositivo"},
    {61, u"Disco lleno"},
    {70, u"Permiso denegado"},
    {75, u"Error de acceso a la ruta o el archivo"},
    {76, u"No se encontró la ruta de acceso"},
    {91, u"Variable de objeto o bloque With no establecido"},
    {94, u"Uso no válido de Null"},
    {380, u"El valor de la propiedad no es válido"},
    {424, u"Se requiere un objeto"},
    {429, u"El componente no puede crear el objeto"},
    {438, u"El objeto no admite esta propiedad o método"},
    {445, u"El objeto no admite esta acción"},
    {448, u"No se encontró el argumento con nombre"},
    {449, u"El argumento no es opcional"},
    {450, u"Número de argumentos erróneo o asignación de propiedad no válida"},
    {481, u"Imagen no válida"},
    {482, u"Error de impresora"},
    {3001, u"Los argumentos son de tipo incorrecto, están fuera del intervalo aceptable o están en conflicto"},
    {3021, u"BOF o EOF es True, o el registro actual se eliminó. La operación solicitada requiere un registro actual"},
    {3265, u"No se encontró el elemento en la colección que corresponde al nombre o al ordinal solicitado"},
    {3704, u"No se permite realizar esta operación si el objeto está cerrado"},
    {3705, u"No se permite realizar esta operación si el objeto está abierto"},
    {3706, u"No se encontró el proveedor. Puede que no esté instalado correctamente"},
}};

static_assert(std::is_sorted(kDescripciones.begin(), kDescripciones.end(),
                             [](const Descripcion& a, const Descripcion& b) { return a.numero < b.numero; }));

QByteArray ComponeWhat(int32_t numero, const QString& descripcion, const QString& origen) {
    QString texto = QString::number(numero) + QStringLiteral(": ") + descripcion;
    if (!origen.isEmpty())
        texto += QStringLiteral(" (") + origen + u')';
    return texto.toUtf8();
}

}  // namespace

QString DescripcionDeError(int32_t numero) {
    auto it = std::lower_bound(kDescripciones.begin(), kDescripciones.end(), numero,
                               [](const Descripcion& d, int32_t n) { return d.numero < n; });
    if (it != kDescripciones.end() && it->numero == numero)
        return QString::fromUtf16(it->texto);
    return QStringLiteral("Error definido por la aplicación o el objeto");
}

ErrorDeAutomatizacion::ErrorDeAutomatizacion(int32_t numero, QString origen)
    : ErrorDeAutomatizacion(numero, DescripcionDeError(numero), std::move(origen)) {}

ErrorDeAutomatizacion::ErrorDeAutomatizacion(int32_t numero, QString descripcion, QString origen)
    : numero_(numero),
      descripcion_(std::move(descripcion)),
      origen_(std::move(origen)),
      what_(ComponeWhat(numero_, descripcion_, origen_)) {}

void Lanza(int32_t numero, const QString& origen) {
    throw ErrorDeAutomatizacion(numero, origen);
}

}  // namespace kalo
