// libFuzzer target for spool files from anywhere: any bytes, written to a
// file of their own and opened as a spool file, must be read or refused with
// a message, never crash or hang, and nothing may appear beside the file.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

#include "spool/guion.h"

namespace {

void Comprueba(bool condicion) {
    if (!condicion) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* datos, size_t tamano) {
    static const QTemporaryDir carpeta;  // removed at exit
    const QString archivo = carpeta.filePath(QStringLiteral("entrada.rep"));
    QFile f(archivo);
    Comprueba(f.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
              f.write(reinterpret_cast<const char*>(datos), static_cast<qint64>(tamano)) ==
                  static_cast<qint64>(tamano));
    f.close();
    try {
        kalo::LectorDeReporte lector(archivo);
        kalo::LectorDeReporte::Renglon r;
        while (lector.Siguiente(r)) {
            Comprueba(r.source.size() <= kalo::limite::kComando + 2 &&
                      r.contenido.size() <= kalo::limite::kComando + 2);
            QString error;
            if (r.rechazo.isEmpty() && !kalo::LeeComando(r.source, &error)) Comprueba(!error.isEmpty());
        }
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        Comprueba(e.numero() == kalo::err::kErrorDeBaseDeDatos && !e.descripcion().isEmpty());
    }
    Comprueba(QDir(carpeta.path()).entryList(QDir::Files | QDir::Hidden) == QStringList{QStringLiteral("entrada.rep")});
    return 0;
}
