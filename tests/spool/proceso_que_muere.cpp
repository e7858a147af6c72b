// Records a document of N pages, says where, and dies without any cleanup.

#include <csignal>
#include <cstdio>

#include "comun/objeto_grabador.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"

int main(int argc, char** argv) {
    const int paginas = argc > 1 ? std::atoi(argv[1]) : 10;
    kalo::EstableceImpresoraActual(std::make_shared<kalo::prueba::ObjetoGrabador>());
    kalo::Impresora imp;
    imp.Pantalla = true;
    imp.Archivo = true;
    imp.IniciaDocumento();
    for (int i = 0; i < paginas; ++i) imp.PaginaNueva();
    std::printf("%s\n", imp.DB.toUtf8().constData());
    std::fflush(stdout);
    std::raise(SIGKILL);
}
