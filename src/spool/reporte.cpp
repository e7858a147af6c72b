#include "spool/reporte.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTime>
#include <dlfcn.h>

#include "kaloimpresora/conversiones.h"

namespace kalo::reporte {

using namespace Qt::StringLiterals;

namespace {

QString CarpetaDeReportes() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&CarpetaDeReportes), &info) && info.dli_fname) {
        const QFileInfo biblioteca(QString::fromLocal8Bit(info.dli_fname));
        const QFileInfo carpeta(biblioteca.absolutePath());
        if (carpeta.isDir() && carpeta.isWritable()) return carpeta.absoluteFilePath();
    }
    const QString propia =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/kaloimpresora/reportes"_s;
    QDir().mkpath(propia);
    return propia;
}

QString DuplicaApostrofos(QString texto) { return texto.replace(u'\'', u"''"_s); }

QString Numero(double valor) { return CStr(Variant(valor)); }

}  // namespace

QString NuevaRuta() {
    // hhmmss plus 0 to 19, avoiding a name already taken when one is free.
    const QString carpeta = CarpetaDeReportes();
    const QString hora = QTime::currentTime().toString(u"HHmmss"_s);
    auto ruta = [&](int n) { return carpeta + u'/' + hora + QString::number(n) + u".rep"_s; };
    const int inicio = static_cast<int>(QRandomGenerator::global()->bounded(20));
    for (int i = 0; i < 20; ++i) {
        const QString candidata = ruta((inicio + i) % 20);
        if (!QFileInfo::exists(candidata)) return candidata;
    }
    return ruta(inicio);
}

void CreaTablas(ConexionDeReporte& conexion) {
    conexion.Ejecuta(
        u"CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, "
        "fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )  "_s);
    conexion.Ejecuta(u"CREATE INDEX paginarow ON source( pagina, row )"_s);
    conexion.Ejecuta(u"CREATE TABLE header( paginas INTEGER )"_s);
}

void Inserta(ConexionDeReporte& conexion, const Renglon& r) {
    conexion.Ejecuta(
        u"INSERT INTO source( pagina, row, source, nrow, ncol, contenido, fuente, fsize, bold, italic ) VALUES ( "_s +
        CStr(Variant(r.pagina)) + u", "_s + CStr(Variant(r.row)) + u", '"_s + DuplicaApostrofos(r.source) +
        u"\r\n', "_s + Numero(r.nrow) + u", "_s + Numero(r.ncol) + u", '"_s + DuplicaApostrofos(r.contenido) +
        u"', '"_s + r.fuente + u"', "_s + Numero(r.fsize) + u", "_s + Numero(r.bold) + u", "_s + Numero(r.italic) +
        u" )"_s);
}

void AnotaPaginas(ConexionDeReporte& conexion, int32_t paginas) {
    if (conexion.HayRenglones(u"SELECT * FROM header"_s))
        conexion.Ejecuta(u"UPDATE header SET paginas = "_s + CStr(Variant(paginas)));
    else
        conexion.Ejecuta(u"INSERT INTO header( paginas ) VALUES ( "_s + CStr(Variant(paginas)) + u" )"_s);
}

}  // namespace kalo::reporte
