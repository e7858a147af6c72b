// libFuzzer target for spool files from anywhere: any bytes, written to a
// file of their own and opened as a spool file, must be read or refused with
// a message, never crash or hang, and nothing may appear beside the file.

#include <dirent.h>
#include <unistd.h>

#include <QString>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "spool/guion.h"

namespace {

void Comprueba(bool condicion) {
    if (!condicion) std::abort();
}

// A folder of the process's own, removed at exit.
char kCarpeta[] = "/tmp/fuzz_reporte-XXXXXX";
char kArchivo[sizeof kCarpeta + 16];

const char* Archivo() {
    static const bool hecha = [] {
        Comprueba(mkdtemp(kCarpeta) != nullptr);
        std::snprintf(kArchivo, sizeof kArchivo, "%s/entrada.rep", kCarpeta);
        std::atexit([] {
            std::remove(kArchivo);
            rmdir(kCarpeta);
        });
        return true;
    }();
    return hecha ? kArchivo : nullptr;
}

int Entradas(const char* carpeta) {
    DIR* d = opendir(carpeta);
    Comprueba(d != nullptr);
    int n = 0;
    while (const dirent* e = readdir(d)) n += e->d_name != std::string(".") && e->d_name != std::string("..");
    closedir(d);
    return n;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* datos, size_t tamano) {
    const char* ruta = Archivo();
    FILE* f = std::fopen(ruta, "wb");
    Comprueba(f != nullptr);
    Comprueba(std::fwrite(datos, 1, tamano, f) == tamano);
    std::fclose(f);
    try {
        kalo::LectorDeReporte lector(QString::fromUtf8(ruta));
        kalo::LectorDeReporte::Renglon r;
        while (lector.Siguiente(r)) {
            if (!r.rechazo.isEmpty()) continue;
            Comprueba(r.source.size() <= kalo::limite::kComando + 2 && r.contenido.size() <= kalo::limite::kComando + 2);
            QString error;
            if (!kalo::LeeComando(r.source, &error)) Comprueba(!error.isEmpty());
        }
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        Comprueba(e.numero() == kalo::err::kErrorDeBaseDeDatos && !e.descripcion().isEmpty());
    }
    Comprueba(Entradas(kCarpeta) == 1);
    return 0;
}
