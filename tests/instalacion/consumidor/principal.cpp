// A host built against the installed package only.
#include <kaloimpresora/automatizacion.h>

#include <cstdio>

int main() {
    auto impresora = kalo::CreaObjeto(QStringLiteral("KaloImpresora.Impresora"));
    const QString estilo = kalo::CStr(impresora->Lee(QStringLiteral("EstiloImpresion")));
    std::printf("%s\n", estilo.toUtf8().constData());
    return estilo == QStringLiteral("Tiendanova") ? 0 : 1;
}
