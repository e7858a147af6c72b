// Replay: recorded command texts read back from the spool file, parsed and
// run again on a fresh object.

#include <sqlite3.h>

#include "comun/prueba.h"

#include "comun/impresora_con_grabadores.h"
#include "comun/lectura_de_reporte.h"
#include "spool/conexion.h"
#include "spool/guion.h"

namespace {

using Guion = prueba::ConImpresoraYVistaGrabadoras<>;

std::vector<LectorDeReporte::Renglon> TodosLosRenglones(const QString& archivo) {
    std::vector<LectorDeReporte::Renglon> r;
    LectorDeReporte lector(archivo);
    LectorDeReporte::Renglon renglon;
    while (lector.Siguiente(renglon)) r.push_back(renglon);
    return r;
}

QString Describe(const std::vector<Variant>& v) {
    QStringList partes;
    for (const auto& a : v) partes << QString::number(static_cast<int>(a.tipo())) + u':' + CStr(a);
    return partes.join(u" | "_s);
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
    struct Esperado {
        const char16_t* palabra;
        int pagina;
        std::vector<Variant> argumentos;
    } esperados[] = {
        {u"IniciaDocumento", 1, {}}, {u"EstableceFuente", 1, {u"Courier New"_s, 10.5}},
        {u"FontBold", 1, {false}},  // 1 is not the runtime's True
        {u"FontItalic", 1, {true}}, {u"FuenteTransparente", 1, {false}}, {u"ColorDeFuente", 1, {int32_t{255}}},
        {u"CurrentX", 1, {0.25}}, {u"CurrentY", 1, {d - 3}}, {u"Say", 1, {d + 1, 2.125, u"a''b"_s}},
        {u"PaginaNueva", 2, {}}, {u"Linea", 2, {0.5, d + 1, 7.5, d + 1}}, {u"Box", 2, {d + 5, d + 6, d + 7, d + 8}},
        {u"FilledBox", 2, {d + 1, d + 2, d + 3, d + 4, d + 16711680}}, {u"PCircle", 2, {d + 4, d + 5, 0.75}},
        {u"Codigo39", 2, {d + 100, d + 200, d + 15, d + 500, u"AB-1"_s, true, false, u"d''1"_s, u"d2"_s}},
        {u"Bar128", 2, {d + 40, u"AB\"1"_s, d + 1, d + 2, d + 3, 0.5, true}},
        {u"Bar3de9", 2, {d + 60, u"A\",Fn(\"9\")"_s, d + 0, d + 0, d + 2, d + 1, true, false}},
        {u"FinDocumento", 2, {}},
    };
    const auto renglones = TodosLosRenglones(imp.DB);
    ASSERT_EQ(renglones.size(), std::size(esperados));
    for (size_t i = 0; i < renglones.size(); ++i) {
        SCOPED_TRACE(renglones[i].source.toStdString());
        EXPECT_EQ(renglones[i].row, static_cast<int64_t>(i + 1));
        EXPECT_EQ(renglones[i].pagina, esperados[i].pagina);
        QString error;
        const auto c = LeeComando(renglones[i].source, &error);
        ASSERT_TRUE(c) << error.toStdString();
        EXPECT_EQ(c->palabra, QString::fromUtf16(esperados[i].palabra));
        bool iguales = c->argumentos.size() == esperados[i].argumentos.size();
        for (size_t j = 0; iguales && j < c->argumentos.size(); ++j)
            iguales = c->argumentos[j].identico(esperados[i].argumentos[j]);
        EXPECT_TRUE(iguales) << Describe(c->argumentos).toStdString() << "\n esperados "
                             << Describe(esperados[i].argumentos).toStdString();
    }
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
    struct Caso {
        const char16_t* linea;
        const char16_t* mensaje;
    } casos[] = {
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
    for (const auto& c : casos) {
        const QString linea = QString::fromUtf16(c.linea);
        SCOPED_TRACE(linea.toStdString());
        QString error;
        EXPECT_FALSE(LeeComando(linea, &error));
        EXPECT_TRUE(error.contains(QString::fromUtf16(c.mensaje))) << error.toStdString();
    }
}

TEST(GuionLeeComando, TextosEscritosAManoTambienSeLeen) {
    struct Caso {
        const char16_t* linea;
        const char16_t* palabra;
        std::vector<Variant> argumentos;
    } casos[] = {
        {u"fontitalic False\n", u"FontItalic", {false}},
        {u"EstableceImpresora \"La \"rápida\"\"", u"EstableceImpresora", {u"La \"rápida\""_s}},
        {u"EstableceImpresora \"\"", u"EstableceImpresora", {QString()}},
        {u"PaperSize Fn(\"256\"),Fn(\"-.5\"),Fn(\"11.\")", u"PaperSize", {256.0, -0.5, 11.0}},
        {u"ColorDeFuente 0.5", u"ColorDeFuente", {0.5}},
        {u"Picture \"c:\\a,b\".bmp\",Fn(\"1\"),Fn(\"2\"),Fn(\"3\"),Fn(\"4\")",
         u"Picture",
         {u"c:\\a,b\".bmp"_s, 1.0, 2.0, 3.0, 4.0}},
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(QString::fromUtf16(c.linea).toStdString());
        QString error;
        const auto leido = LeeComando(QString::fromUtf16(c.linea), &error);
        ASSERT_TRUE(leido) << error.toStdString();
        EXPECT_EQ(leido->palabra, QString::fromUtf16(c.palabra));
        ASSERT_EQ(leido->argumentos.size(), c.argumentos.size());
        for (size_t j = 0; j < c.argumentos.size(); ++j)
            EXPECT_TRUE(leido->argumentos[j].identico(c.argumentos[j])) << j << ": " << CStr(leido->argumentos[j]).toStdString();
    }
}

TEST(GuionLector, ArchivosQueNoSonReportesSeNombranEnElError) {
    QTemporaryDir dir;
    struct Caso {
        QString archivo;
        int32_t numero;
        const char16_t* mensaje;
    } casos[] = {
        {dir.filePath(u"no_existe.rep"_s), err::kArchivoNoEncontrado, u"No se encuentra"},
        {Escribe(dir.filePath(u"basura.rep"_s), QByteArray(4096, 'x')), err::kErrorDeBaseDeDatos,
         u"no es un archivo de reporte"},
        {BaseHecha(dir, "sin_tabla.rep", {"CREATE TABLE header( paginas INTEGER )"}), err::kErrorDeBaseDeDatos,
         u"le falta la tabla source"},
    };
    for (const auto& c : casos) {
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { LectorDeReporte lector(c.archivo); }, &descripcion), c.numero);
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(c.mensaje))) << descripcion.toStdString();
        EXPECT_TRUE(descripcion.contains(c.archivo));
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
