// A host built against the installed package only.
#include <kaloimpresora/automatizacion.h>
#include <kaloimpresora/errores.h>

#include <cstdio>

// A host's own object: its type information derives from the library's.
class Propio : public kalo::Objeto {};

int main() {
    auto impresora = kalo::CreaObjeto(QStringLiteral("KaloImpresora.Impresora"));
    const QString estilo = kalo::CStr(impresora->Lee(QStringLiteral("EstiloImpresion")));
    std::printf("%s\n", estilo.toUtf8().constData());
    // The library's errors are caught by their type.
    int numero = 0;
    try {
        impresora->Lee(QStringLiteral("NoExiste"));
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        numero = e.numero();
    }
    Propio propio;
    const bool esObjeto = dynamic_cast<kalo::Objeto*>(&propio) != nullptr;
    return estilo == QStringLiteral("Tiendanova") && numero == 438 && esObjeto ? 0 : 1;
}
