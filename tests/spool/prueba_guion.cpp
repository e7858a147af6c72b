// The report spool file: written by the recorder and read back with SQLite,
// and its command texts parsed back and run again.

#include "comun/prueba.h"

#include <QCoreApplication>
#include <QProcess>
#include <sqlite3.h>

#include "core/privado.h"
#include "spool/conexion.h"
#include "spool/guion.h"

namespace {

using Guion = prueba::ConImpresoraYVistaGrabadoras<>;

std::string Describe(const Comando& c) { return c.palabra.toStdString() + " | " + prueba::Describe(c.argumentos); }

bool Iguales(const Comando& a, const Comando& b) {
    return a.palabra == b.palabra && Identicos(a.argumentos, b.argumentos);
}

TEST_F(Guion, CadaRenglonGrabadoSeLeeConLosValoresQueSePasaron) {
    // A comma locale must not change how Fn numbers are read back.
    ConLocal local("es_MX");
    imp.IniciaDocumento();
    imp.EstableceFuente(u"Courier New"_s, 10.5);
    imp.FontBold(1);
    imp.FontITalic(-1);
    imp.FuenteTransparente(true);
    imp.ColorDeFuente(255);
    imp.CurrentX(0.25);
    imp.CurrentY(-3);
    imp.Say(1, 2.125, u"a\"b"_s);
    imp.PaginaNueva();
    imp.Linea(0.5, 1, 7.5, 1);
    imp.Box(5, 6, 7, 8);
    imp.Bar3de9(60, u"A\",Fn(\"9\")"_s, 0, 0, 2, 1, true, false);
    imp.FinDocumento();

    const double d = 0;  // type tag for Fn numbers
    const std::pair<int, Comando> esperados[] = {
        {1, {u"IniciaDocumento"_s, {}}},
        {1, {u"EstableceFuente"_s, {u"Courier New"_s, 10.5}}},
        {1, {u"FontBold"_s, {false}}},  // 1 is not the runtime's True
        {1, {u"FontItalic"_s, {true}}},
        {1, {u"FuenteTransparente"_s, {false}}},
        {1, {u"ColorDeFuente"_s, {int32_t{255}}}},
        {1, {u"CurrentX"_s, {0.25}}},
        {1, {u"CurrentY"_s, {d - 3}}},
        {1, {u"Say"_s, {d + 1, 2.125, u"a''b"_s}}},
        {2, {u"PaginaNueva"_s, {}}},
        {2, {u"Linea"_s, {0.5, d + 1, 7.5, d + 1}}},
        {2, {u"Box"_s, {d + 5, d + 6, d + 7, d + 8}}},
        {2, {u"Bar3de9"_s, {d + 60, u"A\",Fn(\"9\")"_s, d + 0, d + 0, d + 2, d + 1, true, false}}},
        {2, {u"FinDocumento"_s, {}}},
    };
    LectorDeReporte lector(imp.DB);
    LectorDeReporte::Renglon r;
    size_t i = 0;
    for (; lector.Siguiente(r); ++i) {
        SCOPED_TRACE(r.source.toStdString());
        ASSERT_LT(i, std::size(esperados));
        const auto& [pagina, esperado] = esperados[i];
        EXPECT_EQ(r.row, static_cast<int64_t>(i + 1));
        EXPECT_EQ(r.pagina, pagina);
        QString error;
        const auto c = LeeComando(r.source, &error);
        ASSERT_TRUE(c) << error.toStdString();
        EXPECT_TRUE(Iguales(*c, esperado)) << Describe(*c) << "\n esperado " << Describe(esperado);
    }
    EXPECT_EQ(i, std::size(esperados));
    // Beside the text: the font and the flags as given.
    EXPECT_EQ(Consulta(imp.DB, "SELECT fuente, fsize, bold, italic FROM source WHERE row BETWEEN 2 AND 4"),
              (std::vector<Fila>{{u"Courier New"_s, u"10.5"_s, u"0"_s, u"0"_s},
                                 {u""_s, u"0.0"_s, u"-1"_s, u"0"_s},
                                 {u""_s, u"0.0"_s, u"0"_s, u"-1"_s}}));
    // The preview gets the flags as given.
    EXPECT_TRUE(vista->Valor(u"FontBold"_s).identico(Variant(1)));
    EXPECT_TRUE(vista->Valor(u"FontTransparent"_s).identico(Variant(true)));
}

TEST(GuionLeeComando, TextosMalFormadosORehusadosDanUnMensaje) {
    const std::pair<const char16_t*, const char16_t*> casos[] = {
        {u"", u"vacía"},
        {u"\r\n", u"vacía"},
        {u"AbrirCajonDeDinero Fn(\"1\")", u"Comando no permitido en un guion: AbrirCajonDeDinero"},
        {u"ImprimeDialogo", u"Comando no permitido en un guion: ImprimeDialogo"},
        {u"Say", u"no tiene ninguno"},
        {u"FinDocumento Fn(\"1\")", u"no lleva argumentos"},
        {u"CurrentX Fn(\"1", u"Fn sin terminar"},
        {u"CurrentX Fn(\"1,5\")", u"no es un número"},
        {u"CurrentX Fn(\"\")", u"no es un número"},
        {u"CurrentX Fn(\"1e5\")", u"no es un número"},
        {u"CurrentX 1", u"debe ser un número Fn"},
        {u"CurrentX Fn(\"1\"),Fn(\"2\")", u"sobra texto"},
        {u"Say Fn(\"1\"),Fn(\"2\")", u"se esperaba \",\""},
        {u"Say Fn(\"1\"),Fn(\"2\"),\"abc", u"texto sin cerrar"},
        {u"Say Fn(\"1\"),Fn(\"2\"),abc", u"entre comillas"},
        {u"Say Fn(\"1\"),Fn(\"2\"),\"a\"b\"", u"sobra texto"},
        {u"FontBold Verdadero", u"True o False"},
        {u"ColorDeFuente rojo", u"no es un número"},
        {u"Bar128 Fn(\"40\"),\"AB\"1\",Fn(\"1\"),Fn(\"2\"),Fn(\"3\"),Fn(\"0.5\")", u"antes del argumento 7"},
        {u"EstableceImpresora \"HP", u"texto sin cerrar"},
    };
    for (const auto& [texto, mensaje] : casos) {
        const QString linea = QString::fromUtf16(texto);
        QString error;
        EXPECT_FALSE(LeeComando(linea, &error)) << linea.toStdString();
        EXPECT_TRUE(error.contains(QString::fromUtf16(mensaje))) << linea.toStdString() << ": " << error.toStdString();
    }
}

TEST(GuionLeeComando, TextosEscritosAManoTambienSeLeen) {
    const std::pair<const char16_t*, Comando> casos[] = {
        {u"fontitalic False\n", {u"FontItalic"_s, {false}}},
        {u"EstableceImpresora \"La \"rápida\"\"", {u"EstableceImpresora"_s, {u"La \"rápida\""_s}}},
        {u"EstableceImpresora \"\"", {u"EstableceImpresora"_s, {QString()}}},
        {u"PaperSize Fn(\"256\"),Fn(\"-.5\"),Fn(\"11.\")", {u"PaperSize"_s, {256.0, -0.5, 11.0}}},
        {u"ColorDeFuente 0.5", {u"ColorDeFuente"_s, {0.5}}},
        {u"Picture \"c:\\a,b\".bmp\",Fn(\"1\"),Fn(\"2\"),Fn(\"3\"),Fn(\"4\")",
         {u"Picture"_s, {u"c:\\a,b\".bmp"_s, 1.0, 2.0, 3.0, 4.0}}},
    };
    for (const auto& [linea, esperado] : casos) {
        QString error;
        const auto leido = LeeComando(QString::fromUtf16(linea), &error);
        ASSERT_TRUE(leido) << error.toStdString();
        EXPECT_TRUE(Iguales(*leido, esperado)) << Describe(*leido) << "\n esperado " << Describe(esperado);
    }
}

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
              (std::vector<Fila>{
                  {u"1"_s, u"5"_s},
                  {u"2"_s, u"6"_s},
                  {u"2"_s, u"7"_s},
              }));
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

// Values keep the types and digits the literal statement gave them, in the
// file DB names even when the host points it at another one between rows.
TEST_F(Registro, TiposYCifrasEnCadaArchivoQueNombraDB) {
    ConLocal local("en_US");
    Impresora otra;
    otra.Pantalla = otra.Archivo = true;
    RegistraComando(otra, u"Cls"_s);
    const QString segundo = otra.DB;
    otra.sq = nullptr;

    imp.Paginas = 3;
    RegistraComando(imp, u"Say Fn(\"0\"),Fn(\"0\"),\"a\""_s, 1.0 / 3, 0.00001, u"a"_s, {}, 2, true);
    const QString primero = imp.DB;
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
    BorraReporte(primero);  // the fixture removes the one DB names now
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
              (std::vector<Fila>{
                  {u"1"_s},
                  {u"5"_s},
                  {u"6"_s},
              }));
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
    // Four places and the point are also read back elsewhere; these two only here.
    const std::pair<Variant, const char*> casos[] = {
        {-0.00004, "Fn(\"0\")"},     // no "-0"
        {0.00025, "Fn(\"0.0002\")"},  // halves to even
    };
    ConLocal local("es_ES");
    for (const auto& [valor, texto] : casos) EXPECT_EQ(TextoFn(valor), QString::fromLatin1(texto)) << texto;
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
