// The report spool file, read back with SQLite.

#include "comun/prueba.h"

#include <QCoreApplication>
#include <QProcess>

#include "core/privado.h"

namespace {

// The fixture removes the file DB names at the end; a case that makes
// another removes it itself.
using Registro = ConImpresoraYVistaGrabadoras<>;

// The first command creates the file beside the library; the documents that
// follow go on in it, rows numbered on and pages counted in the header.
TEST_F(Registro, UnArchivoParaLosDocumentosQueSiguen) {
    imp.IniciaDocumento();
    const QString primero = imp.DB;
    ASSERT_TRUE(QFileInfo::exists(primero)) << primero.toStdString();
    EXPECT_TRUE(QRegularExpression(u"^\\d{6}(1?\\d)\\.rep$"_s).match(QFileInfo(primero).fileName()).hasMatch())
        << primero.toStdString();
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
    EXPECT_NE(imp.DB, primero);
    BorraReporte(primero);
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
    EXPECT_EQ(Consulta(imp.DB, "SELECT row FROM source ORDER BY row"),
              (std::vector<Fila>{{u"1"_s}, {u"5"_s}, {u"6"_s}}));
    EXPECT_EQ(Consulta(imp.DB, "SELECT paginas FROM header"), (std::vector<Fila>{{u"2"_s}}));
}

TEST_F(Registro, UnArchivoInutilizableNoDetieneNada) {
    imp.DB = u"/proc/no/se/puede.rep"_s;
    EXPECT_NO_THROW(imp.IniciaDocumento());
    EXPECT_EQ(imp.nLinea, 1);
    // Called by the host, the same failure is reported.
    imp.DB.clear();
    imp.CreaBaseDeDatos();
    EXPECT_TRUE(QFileInfo::exists(imp.DB));
    imp.nLinea = INT32_MAX;
    EXPECT_EQ(NumeroDeError([&] { imp.PaginaNueva(); }), 6);
}

TEST_F(Registro, TextoFnEscribePuntoDecimalYCuatroDecimales) {
    const std::pair<Variant, const char*> casos[] = {{2.5, "Fn(\"2.5\")"}, {2, "Fn(\"2\")"}, {1.23456, "Fn(\"1.2346\")"},
                                                     {u"3,5"_s, "Fn(\"3.5\")"}, {-0.00004, "Fn(\"0\")"},
                                                     {0.00025, "Fn(\"0.0002\")"}};
    ConLocal local("es_ES");
    for (const auto& [valor, texto] : casos) EXPECT_EQ(TextoFn(valor), QString::fromLatin1(texto)) << texto;
    EXPECT_EQ(NumeroDeError([&] { TextoFn(u"x"_s); }), 13);
}

TEST_F(Registro, UnProcesoMuertoConservaCadaRenglonConfirmado) {
    QProcess hijo;
    hijo.start(QStringLiteral(KALO_PROCESO_QUE_MUERE), {u"25"_s});
    ASSERT_TRUE(hijo.waitForFinished(30000));
    EXPECT_EQ(hijo.exitStatus(), QProcess::CrashExit);
    const QString archivo = QString::fromUtf8(hijo.readAllStandardOutput()).trimmed();
    ASSERT_TRUE(QFileInfo::exists(archivo)) << archivo.toStdString();
    EXPECT_EQ(Consulta(archivo, "PRAGMA integrity_check"), (std::vector<Fila>{{u"ok"_s}}));
    EXPECT_EQ(Consulta(archivo, "SELECT count(*), max(row) FROM source"), (std::vector<Fila>{{u"26"_s, u"26"_s}}));
    BorraReporte(archivo);
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
