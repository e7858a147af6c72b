// Replay: recorded command texts read back from the spool file, parsed and
// run again on a fresh object.

#include <sqlite3.h>

#include "comun/prueba.h"

#include "spool/conexion.h"
#include "spool/guion.h"

namespace {

using Guion = prueba::ConImpresoraYVistaGrabadoras<>;

// The word and each argument's type and text.
std::string Describe(const Comando& c) {
    QStringList partes{c.palabra};
    for (const auto& a : c.argumentos) partes << QString::number(static_cast<int>(a.tipo())) + u':' + CStr(a);
    return partes.join(u" | "_s).toStdString();
}

bool Iguales(const Comando& a, const Comando& b) {
    return a.palabra == b.palabra && std::ranges::equal(a.argumentos, b.argumentos, [](const Variant& x, const Variant& y) {
               return x.identico(y);
           });
}

// A database made by hand, statement by statement.
QString BaseHecha(const QTemporaryDir& dir, const char* nombre, const std::vector<QByteArray>& sql) {
    const QString ruta = dir.filePath(QString::fromLatin1(nombre));
    sqlite3* bd = nullptr;
    EXPECT_EQ(sqlite3_open(ruta.toUtf8().constData(), &bd), SQLITE_OK);
    for (const QByteArray& s : sql) sqlite3_exec(bd, s.constData(), nullptr, nullptr, nullptr);
    sqlite3_close(bd);
    return ruta;
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
    imp.FilledBox(1, 2, 3, 4, 16711680);
    imp.PCircle(4, 5, 0.75);
    imp.Codigo39(100, 200, 15, 500, u"AB-1"_s, true, false, u"d\"1"_s, u"d2"_s);
    imp.Bar128(40, u"AB\"1"_s, 1, 2, 3, 0.5, true);
    imp.Bar3de9(60, u"A\",Fn(\"9\")"_s, 0, 0, 2, 1, true, false);
    imp.FinDocumento();

    const double d = 0;  // type tag for Fn numbers
    const std::pair<int, Comando> esperados[] = {
        {1, {u"IniciaDocumento"_s, {}}}, {1, {u"EstableceFuente"_s, {u"Courier New"_s, 10.5}}},
        {1, {u"FontBold"_s, {false}}},  // 1 is not the runtime's True
        {1, {u"FontItalic"_s, {true}}}, {1, {u"FuenteTransparente"_s, {false}}},
        {1, {u"ColorDeFuente"_s, {int32_t{255}}}}, {1, {u"CurrentX"_s, {0.25}}}, {1, {u"CurrentY"_s, {d - 3}}},
        {1, {u"Say"_s, {d + 1, 2.125, u"a''b"_s}}}, {2, {u"PaginaNueva"_s, {}}},
        {2, {u"Linea"_s, {0.5, d + 1, 7.5, d + 1}}}, {2, {u"Box"_s, {d + 5, d + 6, d + 7, d + 8}}},
        {2, {u"FilledBox"_s, {d + 1, d + 2, d + 3, d + 4, d + 16711680}}}, {2, {u"PCircle"_s, {d + 4, d + 5, 0.75}}},
        {2, {u"Codigo39"_s, {d + 100, d + 200, d + 15, d + 500, u"AB-1"_s, true, false, u"d''1"_s, u"d2"_s}}},
        {2, {u"Bar128"_s, {d + 40, u"AB\"1"_s, d + 1, d + 2, d + 3, 0.5, true}}},
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
    // The preview gets the values as given, the size scaled to it (here 1:1).
    EXPECT_TRUE(vista->Valor(u"FontBold"_s).identico(Variant(1)));
    EXPECT_TRUE(vista->Valor(u"FontTransparent"_s).identico(Variant(true)));
    EXPECT_TRUE(vista->Valor(u"ForeColor"_s).identico(Variant(255)));
    EXPECT_EQ(CDbl(vista->Valor(u"FontSize"_s)), 10.5);
}

TEST(GuionLeeComando, TextosMalFormadosORehusadosDanUnMensaje) {
    const std::pair<const char16_t*, const char16_t*> casos[] = {
        {u"", u"vacía"}, {u"\r\n", u"vacía"},
        {u"AbrirCajonDeDinero Fn(\"1\")", u"Comando no permitido en un guion: AbrirCajonDeDinero"},
        {u"ImprimeDialogo", u"Comando no permitido en un guion: ImprimeDialogo"}, {u"Say", u"no tiene ninguno"},
        {u"FinDocumento Fn(\"1\")", u"no lleva argumentos"}, {u"CurrentX Fn(\"1", u"Fn sin terminar"},
        {u"CurrentX Fn(\"1,5\")", u"no es un número"}, {u"CurrentX Fn(\"\")", u"no es un número"},
        {u"CurrentX Fn(\"1e5\")", u"no es un número"}, {u"CurrentX 1", u"debe ser un número Fn"},
        {u"CurrentX Fn(\"1\"),Fn(\"2\")", u"sobra texto"}, {u"Say Fn(\"1\"),Fn(\"2\")", u"se esperaba \",\""},
        {u"Say Fn(\"1\"),Fn(\"2\"),\"abc", u"texto sin cerrar"}, {u"Say Fn(\"1\"),Fn(\"2\"),abc", u"entre comillas"},
        {u"Say Fn(\"1\"),Fn(\"2\"),\"a\"b\"", u"sobra texto"}, {u"FontBold Verdadero", u"True o False"},
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

TEST(GuionLector, ArchivosQueNoSonReportesSeNombranEnElError) {
    QTemporaryDir dir;
    const std::tuple<QString, int32_t, const char16_t*> casos[] = {
        {dir.filePath(u"no_existe.rep"_s), err::kArchivoNoEncontrado, u"No se encuentra"},
        {Escribe(dir.filePath(u"basura.rep"_s), QByteArray(4096, 'x')), err::kErrorDeBaseDeDatos,
         u"no es un archivo de reporte"},
        {BaseHecha(dir, "sin_tabla.rep", {"CREATE TABLE header( paginas INTEGER )"}), err::kErrorDeBaseDeDatos,
         u"le falta la tabla source"},
    };
    for (const auto& [archivo, numero, mensaje] : casos) {
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { LectorDeReporte lector(archivo); }, &descripcion), numero);
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(mensaje))) << descripcion.toStdString();
        EXPECT_TRUE(descripcion.contains(archivo));
    }
    EXPECT_FALSE(QFile::exists(dir.filePath(u"no_existe.rep"_s)));
}

// Rows written out of order still come out in row order.
TEST(GuionLector, LosRenglonesSalenEnOrdenDeRow) {
    QTemporaryDir dir;
    std::vector<QByteArray> sql = {
        "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, "
        "fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )"};
    for (int row : {3, 1, 4, 2})
        sql.push_back("INSERT INTO source( pagina, row, source, bold ) VALUES ( 1, " + QByteArray::number(row) +
                      ", 'CurrentX Fn(\"" + QByteArray::number(row) + "\")', " + QByteArray::number(row % 2) + " )");
    LectorDeReporte lector(BaseHecha(dir, "desordenado.rep", sql));
    LectorDeReporte::Renglon r;
    std::vector<int64_t> leidos;
    while (lector.Siguiente(r)) {
        EXPECT_EQ(r.source, u"CurrentX Fn(\"%1\")"_s.arg(r.row));
        EXPECT_EQ(r.bold, r.row % 2 == 1);
        leidos.push_back(r.row);
    }
    EXPECT_EQ(leidos, (std::vector<int64_t>{1, 2, 3, 4}));
}

}  // namespace
