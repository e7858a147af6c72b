// A host process without a display and without an application object: the
// component goes offscreen on its own, and a dialog must refuse rather than
// wait for a user who cannot see it. Prints the error number and text.

#include <cstdio>
#include <cstdlib>

#include "kaloimpresora/ambiente.h"
#include "kaloimpresora/impresora.h"

int main() {
    kalo::Impresora imp;
    auto ambiente = std::make_shared<kalo::Ambiente>();
    ambiente->Periodo1 = 2024;
    ambiente->Periodo2 = 1;
    try {
        imp.Llama(QStringLiteral("RangoDeFechas"), {QStringLiteral("t"), ambiente});
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        std::printf("%d %s\n", e.numero(), e.descripcion().toUtf8().constData());
        return 0;
    }
    std::printf("sin error\n");
    return 1;
}
