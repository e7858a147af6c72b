// The report spool file, read back with SQLite.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "core/privado.h"
#include "comun/lectura_de_reporte.h"
#include "comun/objeto_grabador.h"
#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using namespace kalo::prueba;

namespace {

class Registro : public ::testing::Test {
protected:
    void SetUp() override {
        EstableceImpresoraActual(std::make_shared<ObjetoGrabador>());
        imp.Pantalla = true;
        imp.Archivo = true;
    }
    void TearDown() override {
        imp.sq = nullptr;
        for (const QString& f : creados) BorraReporte(f);
    }
    QString Archivo() {
        if (!imp.DB.isEmpty() && !creados.contains(imp.DB)) creados << imp.DB;
        return imp.DB;
    }

    Impresora imp;
    QStringList creados;
};

// The first command creates the file beside the library; the documents that
// follow go on in it, rows numbered on and pages counted in the header.
TEST_F(Registro, UnArchivoParaLosDocumentosQueSiguen) {
    imp.IniciaDocumento();
    const QString primero = Archivo();
    ASSERT_TRUE(QFileInfo::exists(primero)) << primero.toStdString();
    EXPECT_TRUE(QRegularExpression(u"^\\d{6}(1?\\d)\\.rep$"_s).match(QFileInfo(primero).fileName()).hasMatch())
        << primero.toStdString();
    EXPECT_NE(imp.sq, nullptr);
    EXPECT_EQ(Consulta(primero, "SELECT sql FROM sqlite_master ORDER BY rowid"),
              (std::vector<Fila>{{u"CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, "
                                  "fuente TEXT, fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )"_s},
                                 {u"CREATE INDEX paginarow ON source( pagina, row )"_s},
                                 {u"CREATE TABLE header( paginas INTEGER )"_s}}));
    imp.PaginaNueva();
    EXPECT_EQ(Consulta(primero, "SELECT paginas FROM header"), (std::vector<Fila>{{u"2"_s}}));
    imp.PaginaNueva();
    imp.FinDocumento();
    EXPECT_EQ(Consulta(primero, "SELECT pagina, row, source FROM source ORDER BY row"),
              (std::vector<Fila>{{u"1"_s, u"1"_s, u"IniciaDocumento\r\n"_s},
                                 {u"2"_s, u"2"_s, u"PaginaNueva\r\n"_s},
                                 {u"3"_s, u"3"_s, u"PaginaNueva\r\n"_s},
                                 {u"3"_s, u"4"_s, u"FinDocumento\r\n"_s}}));
    EXPECT_EQ(Consulta(primero, "SELECT DISTINCT contenido, fuente, fsize, nrow, ncol, bold, italic FROM source"),
              (std::vector<Fila>{{u""_s, u""_s, u"0.0"_s, u"0.0"_s, u"0.0"_s, u"0"_s, u"0"_s}}));
    EXPECT_EQ(Consulta(primero, "SELECT paginas FROM header"), (std::vector<Fila>{{u"3"_s}}));
    // After FinDocumento the file alone holds everything: no pending log.
    EXPECT_EQ(QFileInfo(primero + u"-wal"_s).size(), 0);

    imp.IniciaDocumento();
    imp.PaginaNueva();
    imp.FinDocumento();
    EXPECT_EQ(imp.DB, primero);
    EXPECT_EQ(Consulta(primero, "SELECT pagina, row FROM source WHERE row > 4 ORDER BY row"),
              (std::vector<Fila>{{u"1"_s, u"5"_s}, {u"2"_s, u"6"_s}, {u"2"_s, u"7"_s}}));
    // Clearing DB starts a new file at the next recorded command.
    imp.DB.clear();
    imp.IniciaDocumento();
    EXPECT_NE(Archivo(), primero);
    EXPECT_EQ(Consulta(imp.DB, "SELECT row FROM source"), (std::vector<Fila>{{u"8"_s}}));
}

// Only with both Pantalla and Archivo is anything written; commands are
// counted anyway, and pages whenever Archivo is on.
TEST_F(Registro, SinPantallaOSinArchivoNoSeEscribeNadaPeroSeCuenta) {
    imp.Archivo = false;
    imp.Paginas = 7;
    imp.IniciaDocumento();
    imp.PaginaNueva();
    EXPECT_EQ(imp.Paginas, 7);
    imp.Pantalla = false;
    imp.Archivo = true;
    imp.IniciaDocumento();
    EXPECT_EQ(imp.Paginas, 1);
    imp.PaginaNueva();
    EXPECT_EQ(imp.Paginas, 2);
    EXPECT_TRUE(imp.DB.isEmpty());
    EXPECT_EQ(imp.sq, nullptr);
    EXPECT_EQ(imp.nLinea, 4);
    imp.Paginas = INT32_MAX;
    EXPECT_EQ(NumeroDeError([&] { imp.PaginaNueva(); }), 6);
}

TEST_F(Registro, ColumnasYComillasComoLasEscribeElRegistrador) {
    ConLocal local("en_US");
    imp.Paginas = 1;
    RegistraComando(imp, u"Say Fn(\"1\"),Fn(\"2\"),\"a''b\""_s, 6, 2 / 0.10625, u"a\"b'c"_s);
    RegistraComando(imp, u"EstableceFuente \"Arial\",Fn(\"10\")"_s, 0, 0, {}, u"Arial"_s, 10);
    RegistraComando(imp, u"FontBold False"_s, 0, 0, {}, {}, 0, true);
    RegistraComando(imp, u"FontItalic True"_s, 0, 0, {}, {}, 0, false, true);
    const auto filas =
        Consulta(Archivo(), "SELECT source, nrow, ncol, contenido, fuente, fsize, bold, italic FROM source ORDER BY row");
    ASSERT_EQ(filas.size(), 4u);
    EXPECT_EQ(filas[0][0], u"Say Fn(\"1\"),Fn(\"2\"),\"a''b\"\r\n"_s);
    EXPECT_EQ(filas[0][1], u"6.0"_s);
    EXPECT_EQ(filas[0][2].left(14), u"18.82352941176"_s);
    EXPECT_EQ(filas[0][3], u"a\"b'c"_s);
    EXPECT_EQ(filas[1][4], u"Arial"_s);
    EXPECT_EQ(filas[1][5], u"10.0"_s);
    EXPECT_NE(filas[2][6], u"0"_s);
    EXPECT_EQ(filas[2][7], u"0"_s);
    EXPECT_NE(filas[3][7], u"0"_s);
}

// Values keep the types and digits the literal statement gave them, in the
// file DB names even when the host points it at another one between rows.
TEST_F(Registro, TiposYCifrasEnCadaArchivoQueNombraDB) {
    ConLocal local("en_US");
    Impresora otra;
    otra.Pantalla = otra.Archivo = true;
    RegistraComando(otra, u"Cls"_s);
    const QString segundo = otra.DB;
    creados << segundo;
    otra.sq = nullptr;

    imp.Paginas = 3;
    RegistraComando(imp, u"Say Fn(\"0\"),Fn(\"0\"),\"a\""_s, 1.0 / 3, 0.00001, u"a"_s, {}, 2, true);
    const QString primero = Archivo();
    imp.DB = segundo;
    RegistraComando(imp, u"Say Fn(\"0\"),Fn(\"0\"),\"b\""_s, 1e20, -2.5, u"b"_s);
    const char* consulta = "SELECT pagina, typeof(nrow), nrow, typeof(ncol), ncol, typeof(fsize), typeof(bold), bold, "
                           "contenido FROM source WHERE contenido <> ''";
    EXPECT_EQ(Consulta(primero, consulta),
              (std::vector<Fila>{{u"3"_s, u"real"_s, u"0.333333333333333"_s, u"real"_s, u"1.0e-05"_s, u"real"_s,
                                  u"integer"_s, u"-1"_s, u"a"_s}}));
    EXPECT_EQ(Consulta(segundo, consulta),
              (std::vector<Fila>{{u"3"_s, u"real"_s, u"1.0e+20"_s, u"real"_s, u"-2.5"_s, u"real"_s, u"integer"_s,
                                  u"0"_s, u"b"_s}}));
}

TEST_F(Registro, RenglonesQueSePierdenSinDetenerElDocumento) {
    imp.IniciaDocumento();
    // A font name with a quote breaks the statement.
    RegistraComando(imp, u"EstableceFuente \"O'Neil\",Fn(\"9\")"_s, 0, 0, {}, u"O'Neil"_s, 9);
    // Text that would run a second statement never runs.
    RegistraComando(imp, u"EstableceFuente \"x\",Fn(\"9\")"_s, 0, 0, {},
                                   u"x', 0, 0, 0 ); DROP TABLE header; --"_s, 9);
    {
        // In a comma locale a fractional nrow adds a value: the row is lost.
        ConLocal local("es_ES");
        RegistraComando(imp, u"Say Fn(\"1.5\"),Fn(\"0\"),\"x\""_s, 1.5, 0, u"x"_s);
        RegistraComando(imp, u"Say Fn(\"1\"),Fn(\"0\"),\"y\""_s, 6, 0, u"y"_s);
    }
    imp.PaginaNueva();
    EXPECT_EQ(imp.nLinea, 6);
    EXPECT_EQ(Consulta(Archivo(), "SELECT row FROM source ORDER BY row"),
              (std::vector<Fila>{{u"1"_s}, {u"5"_s}, {u"6"_s}}));
    EXPECT_EQ(Consulta(Archivo(), "SELECT paginas FROM header"), (std::vector<Fila>{{u"2"_s}}));
}

TEST_F(Registro, UnArchivoInutilizableNoDetieneNada) {
    imp.DB = u"/proc/no/se/puede.rep"_s;
    EXPECT_NO_THROW(imp.IniciaDocumento());
    EXPECT_EQ(imp.nLinea, 1);
    // Called by the host, the same failure is reported.
    imp.DB.clear();
    imp.CreaBaseDeDatos();
    EXPECT_TRUE(QFileInfo::exists(Archivo()));
    imp.nLinea = INT32_MAX;
    EXPECT_EQ(NumeroDeError([&] { imp.PaginaNueva(); }), 6);
}

TEST_F(Registro, TextoFnEscribePuntoDecimalYCuatroDecimales) {
    struct Caso {
        Variant valor;
        const char* texto;
    } casos[] = {{2.5, "Fn(\"2.5\")"},     {2, "Fn(\"2\")"},         {1.23456, "Fn(\"1.2346\")"},
                 {u"3,5"_s, "Fn(\"3.5\")"}, {-0.00004, "Fn(\"0\")"}, {0.00025, "Fn(\"0.0002\")"}};
    ConLocal local("es_ES");
    for (const auto& c : casos)
        EXPECT_EQ(TextoFn(c.valor), QString::fromLatin1(c.texto)) << c.texto;
    EXPECT_EQ(NumeroDeError([&] { TextoFn(u"x"_s); }), 13);
}

TEST_F(Registro, UnProcesoMuertoConservaCadaRenglonConfirmado) {
    QProcess hijo;
    hijo.start(QStringLiteral(KALO_PROCESO_QUE_MUERE), {u"25"_s});
    ASSERT_TRUE(hijo.waitForFinished(30000));
    EXPECT_EQ(hijo.exitStatus(), QProcess::CrashExit);
    const QString archivo = QString::fromUtf8(hijo.readAllStandardOutput()).trimmed();
    ASSERT_TRUE(QFileInfo::exists(archivo)) << archivo.toStdString();
    creados << archivo;
    EXPECT_EQ(Consulta(archivo, "PRAGMA integrity_check"), (std::vector<Fila>{{u"ok"_s}}));
    EXPECT_EQ(Consulta(archivo, "SELECT count(*), max(row) FROM source"), (std::vector<Fila>{{u"26"_s, u"26"_s}}));
}

TEST_F(Registro, BorraArchivoBorraLoQueNombraStrTemp) {
    QTemporaryDir dir;
    for (const char* n : {"a.tmp", "b.tmp", "c.txt"}) Escribe(dir.filePath(QString::fromLatin1(n)), {});
    imp.strTemp = dir.filePath(u"a.tmp"_s);
    imp.BorraArchivo();
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(u"a.tmp"_s)));
    imp.strTemp = dir.filePath(u"*.tmp"_s);
    imp.BorraArchivo();
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(u"b.tmp"_s)));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(u"c.txt"_s)));
    for (const char* t : {"", "/no/existe", "/proc/1/mem"}) {
        imp.strTemp = QString::fromLatin1(t);
        EXPECT_NO_THROW(imp.BorraArchivo());
    }
}

}  // namespace
