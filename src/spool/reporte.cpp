#include "spool/reporte.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTime>
#include <dlfcn.h>
#include <sqlite3.h>

#include <array>

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

constexpr char kInsertaRenglon[] =
    "INSERT INTO source( pagina, row, source, nrow, ncol, contenido, fuente, fsize, bold, italic ) "
    "VALUES ( ?, ?, ?, ?, ?, ?, ?, ?, ?, ? )";

// The row as one statement's text, values written in. It fails wherever the
// values break the text (a comma for the decimal point, a quote in the font).
void InsertaLiteral(ConexionDeReporte& conexion, const Renglon& r) {
    conexion.Ejecuta(
        u"INSERT INTO source( pagina, row, source, nrow, ncol, contenido, fuente, fsize, bold, italic ) VALUES ( "_s +
        CStr(Variant(r.pagina)) + u", "_s + CStr(Variant(r.row)) + u", '"_s + DuplicaApostrofos(r.source) +
        u"\r\n', "_s + Numero(r.nrow) + u", "_s + Numero(r.ncol) + u", '"_s + DuplicaApostrofos(r.contenido) +
        u"', '"_s + r.fuente + u"', "_s + Numero(r.fsize) + u", "_s + Numero(r.bold) + u", "_s + Numero(r.italic) +
        u" )"_s);
}

// Whether bound values store exactly what the literal statement would: plain
// numbers, texts that the statement's text would carry whole.
bool SeLigaIgual(const Renglon& r, const std::array<QString, 5>& numeros) {
    for (const QString& n : numeros)
        for (const QChar c : n)
            if ((c < u'0' || c > u'9') && c != u'.' && c != u'-' && c != u'+' && c != u'E') return false;
    auto entero = [](const QString& t) { return !t.contains(QChar(0)) && QStringView(t).isValidUtf16(); };
    return entero(r.source) && entero(r.contenido) && entero(r.fuente) && !r.fuente.contains(u'\'');
}

void LigaTexto(sqlite3_stmt* s, int columna, const QByteArray& texto) {
    sqlite3_bind_text(s, columna, texto.constData(), static_cast<int>(texto.size()), SQLITE_STATIC);
}

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
    const std::array numeros{TextoDeDoble(r.nrow), TextoDeDoble(r.ncol), TextoDeDoble(r.fsize),
                             TextoDeDoble(r.bold), TextoDeDoble(r.italic)};
    if (!SeLigaIgual(r, numeros)) return InsertaLiteral(conexion, r);
    sqlite3_stmt* s = conexion.Preparada(kInsertaRenglon);
    const QByteArray source = (r.source + u"\r\n"_s).toUtf8();
    const QByteArray contenido = r.contenido.toUtf8();
    const QByteArray fuente = r.fuente.toUtf8();
    sqlite3_bind_int(s, 1, r.pagina);
    sqlite3_bind_int(s, 2, r.row);
    LigaTexto(s, 3, source);
    LigaTexto(s, 6, contenido);
    LigaTexto(s, 7, fuente);
    // As text, so that the columns' types turn them into what the literals gave.
    const std::array<QByteArray, 5> cifras{numeros[0].toLatin1(), numeros[1].toLatin1(), numeros[2].toLatin1(),
                                           numeros[3].toLatin1(), numeros[4].toLatin1()};
    for (int i = 0; const int columna : {4, 5, 8, 9, 10}) LigaTexto(s, columna, cifras[i++]);
    conexion.Completa(s);
}

void AnotaPaginas(ConexionDeReporte& conexion, int32_t paginas) {
    if (conexion.HayRenglones(u"SELECT * FROM header"_s))
        conexion.Ejecuta(u"UPDATE header SET paginas = "_s + CStr(Variant(paginas)));
    else
        conexion.Ejecuta(u"INSERT INTO header( paginas ) VALUES ( "_s + CStr(Variant(paginas)) + u" )"_s);
}

}  // namespace kalo::reporte
