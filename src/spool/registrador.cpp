// The report spool file: its creation and the recorder that every drawing and
// lifecycle command calls.

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <dlfcn.h>

#include "kaloimpresora/impresora.h"
#include "kaloimpresora/utilerias.h"
#include "spool/conexion.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

// The folder of this library's own file when it can be written to, else a
// per-user data folder.
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

// hhmmss plus 0 to 19, avoiding a name already taken when one is free.
QString NombreDeReporte(const QString& carpeta) {
    const QString hora = QTime::currentTime().toString(u"HHmmss"_s);
    auto ruta = [&](int n) { return carpeta + u'/' + hora + QString::number(n) + u".rep"_s; };
    const int inicio = static_cast<int>(QRandomGenerator::global()->bounded(20));
    for (int i = 0; i < 20; ++i) {
        const QString candidata = ruta((inicio + i) % 20);
        if (!QFileInfo::exists(candidata)) return candidata;
    }
    return ruta(inicio);
}

QString DuplicaApostrofos(QString texto) { return texto.replace(u'\'', u"''"_s); }

}  // namespace

void Impresora::CreaBaseDeDatos() {
    auto conexion = std::make_shared<ConexionDeReporte>();
    sq = conexion;
    DB = NombreDeReporte(CarpetaDeReportes());
    conexion->Abre(DB);
    conexion->Ejecuta(
        u"CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, "
        "fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )  "_s);
    conexion->Ejecuta(u"CREATE INDEX paginarow ON source( pagina, row )"_s);
    conexion->Ejecuta(u"CREATE TABLE header( paginas INTEGER )"_s);
}

void Impresora::RegistraComando(const QString& source, double nrow, double ncol, const QString& contenido,
                                const QString& fuente, double fsize, bool bold, bool italic) {
    if (nLinea == INT32_MAX) Lanza(err::kDesbordamiento, u"Impresora.RegistraComando"_s);
    ++nLinea;
    if (!Pantalla || !Archivo) return;
    try {
        Utilerias& util = UtileriasCompartidas();
        if (util.EsVacio(Variant(DB))) CreaBaseDeDatos();
        auto conexion = std::dynamic_pointer_cast<ConexionDeReporte>(sq);
        if (!conexion) {
            conexion = std::make_shared<ConexionDeReporte>();
            sq = conexion;
        }
        // The statements must reach the file named by DB, even after the host changed it.
        if (!conexion->abierta() || conexion->ruta() != DB) {
            try {
                conexion->Abre(DB);
            } catch (const ErrorDeAutomatizacion&) {
            }
        }
        // Numbers in the runtime's own text form: a comma locale writes a
        // comma into the value list and the row is lost, as it always was.
        const QString sql =
            u"INSERT INTO source( pagina, row, source, nrow, ncol, contenido, fuente, fsize, bold, italic ) VALUES ( "_s +
            CStr(Variant(Paginas)) + u", "_s + CStr(Variant(nLinea)) + u", '"_s + DuplicaApostrofos(source) +
            u"\r\n', "_s + CStr(Variant(nrow)) + u", "_s + CStr(Variant(ncol)) + u", '"_s +
            DuplicaApostrofos(contenido) + u"', '"_s + fuente + u"', "_s + CStr(Variant(fsize)) + u", "_s +
            CStr(Variant(util.ValorNumerico(Variant(bold)))) + u", "_s +
            CStr(Variant(util.ValorNumerico(Variant(italic)))) + u" )"_s;
        conexion->Ejecuta(sql);
        if (source.toUpper() == u"PAGINANUEVA"_s) {
            if (conexion->HayRenglones(u"SELECT * FROM header"_s))
                conexion->Ejecuta(u"UPDATE header SET paginas = "_s + CStr(Variant(Paginas)));
            else
                conexion->Ejecuta(u"INSERT INTO header( paginas ) VALUES ( "_s + CStr(Variant(Paginas)) + u" )"_s);
        }
    } catch (...) {
        // A lost row must never stop the document.
    }
}

QString Impresora::TextoFn(const Variant& valor) {
    const double redondeado = RedondeaPar(CDbl(valor) * 10000) / 10000;
    return u"Fn(\""_s + UtileriasCompartidas().TextoDeNumero(redondeado) + u"\")"_s;
}

}  // namespace kalo
