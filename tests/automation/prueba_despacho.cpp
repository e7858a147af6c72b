#include "comun/prueba.h"

#include "automation/interfaz.h"
#include "kaloimpresora/paramdata.h"

namespace {

using Enlace = std::pair<const char*, int32_t>;  // name and dispatch id

// The published binding hosts rely on.
const Enlace kImpresora[] = {
    {"Pantalla", 0x40030002},
    {"Imagen1", 0x40030005},
    {"Imagen2", 0x40030006},
    {"Imagen3", 0x40030007},
    {"Documento", 0x40030009},
    {"nRow", 0x4003000a},
    {"nCol", 0x4003000b},
    {"DB", 0x4003000c},
    {"Paginas", 0x4003000d},
    {"nLinea", 0x4003000e},
    {"Archivo", 0x4003000f},
    {"strTemp", 0x40030010},
    {"nCopias", 0x40030011},
    {"bolCancelado", 0x40030012},
    {"Cancelado", 0x40030013},
    {"FechaInicial", 0x40030014},
    {"FechaFinal", 0x40030015},
    {"Todos", 0x40030016},
    {"SoloSeleccionados", 0x40030017},
    {"Avance", 0x40030018},
    {"PapelTipo", 0x40030019},
    {"PapelAncho", 0x4003001a},
    {"PapelLargo", 0x4003001b},
    {"bolStop", 0x4003001c},
    {"PaperOrientation", 0x4003001d},
    {"Horizontal", 0x4003001e},
    {"BusquedaIni", 0x4003001f},
    {"BusquedaFin", 0x40030020},
    {"ParamData", 0x40030021},
    {"Observ", 0x40030022},
    {"AmbienteSucursal", 0x40030023},
    {"sq", 0x40030025},
    {"recordSetOrigen", 0x40030026},
    {"objetoReporte", 0x40030027},
    {"IniciaDocumento", 0x60030004},
    {"Say", 0x60030005},
    {"FinDocumento", 0x60030006},
    {"EstableceFuente", 0x60030007},
    {"CurrentY", 0x60030008},
    {"CurrentX", 0x60030009},
    {"Linea", 0x6003000a},
    {"Box", 0x6003000b},
    {"FilledBox", 0x6003000c},
    {"PCircle", 0x6003000d},
    {"PaginaNueva", 0x6003000e},
    {"Picture", 0x6003000f},
    {"Bar128", 0x60030010},
    {"Bar3de9", 0x60030011},
    {"BarEAN13", 0x60030012},
    {"BarEAN8", 0x60030013},
    {"Replicate", 0x60030014},
    {"Row", 0x60030015},
    {"Col", 0x60030016},
    {"rst", 0x60030017},
    {"Letra", 0x60030018},
    {"Formato", 0x60030019},
    {"PadR", 0x6003001a},
    {"PadL", 0x6003001b},
    {"EstableceImpresora", 0x6003001c},
    {"FontBold", 0x6003001d},
    {"FontITalic", 0x6003001e},
    {"CreaBaseDeDatos", 0x60030020},
    {"BorraArchivo", 0x60030021},
    {"Copias", 0x60030022},
    {"RangoDeFechas", 0x60030023},
    {"FechaDeCorte", 0x60030024},
    {"RangoDeAlcance", 0x60030025},
    {"FuenteTransparente", 0x60030026},
    {"ColorDeFuente", 0x60030027},
    {"Fn", 0x60030029},
    {"Random", 0x6003002a},
    {"RandomColor", 0x6003002b},
    {"Eventos", 0x6003002c},
    {"CreaForma", 0x6003002d},
    {"Portrait", 0x6003002e},
    {"LandScape", 0x6003002f},
    {"PaperSize", 0x60030030},
    {"RestauraPapel", 0x60030031},
    {"strLinea", 0x60030032},
    {"CuantasLineas", 0x60030033},
    {"Block", 0x60030035},
    {"Quote", 0x60030036},
    {"Inserta", 0x60030037},
    {"Cambia", 0x60030038},
    {"Prepara", 0x60030039},
    {"RangoDeDatos", 0x6003003a},
    {"Seleccion", 0x6003003b},
    {"Rangos", 0x6003003c},
    {"AbrirCajonDeDinero", 0x6003003d},
    {"Codigo39", 0x6003003e},
    {"FormaAncho", 0x68030003},
    {"FormaAlto", 0x68030002},
    {"ControlhWndImpresora", 0x68030001},
    {"EstiloImpresion", 0x68030000},
    {"EstableceEstiloImpresoraNT", 0x6003003f},
};

const Enlace kParamData[] = {
    {"BusquedaIni", 0x40030000},
    {"BusquedaFin", 0x40030001},
    {"Todos1", 0x40030002},
    {"BusquedaIni2", 0x40030003},
    {"BusquedaFin2", 0x40030004},
    {"Todos2", 0x40030005},
    {"FechaInicial", 0x40030006},
    {"FechaFinal", 0x40030007},
    {"TodasLasFechas", 0x40030008},
    {"SoloSeleccionados", 0x40030009},
    {"TodosLosRegistros", 0x4003000a},
    {"QueryIni", 0x4003000b},
    {"QueryFin", 0x4003000c},
    {"QueryIni2", 0x4003000d},
    {"QueryFin2", 0x4003000e},
    {"LeyendaIni", 0x4003000f},
    {"LeyendaFin", 0x40030010},
    {"LeyendaIni2", 0x40030011},
    {"LeyendaFin2", 0x40030012},
    {"Param1", 0x40030013},
    {"Param2", 0x40030014},
    {"Fechas", 0x40030015},
    {"Check", 0x40030016},
    {"CheckValue", 0x40030017},
    {"CheckLeyend", 0x40030018},
    {"Observ", 0x40030019},
    {"ParametrosRequeridos", 0x60030000},
};

template <class Clase, size_t N>
void CompruebaEnlaces(const Interfaz<Clase>& interfaz, const Enlace (&esperados)[N]) {
    ASSERT_EQ(interfaz.miembros().size(), N);
    Clase objeto;
    for (size_t i = 0; i < N; ++i) {
        const auto [texto, id] = esperados[i];
        const QString nombre = QString::fromLatin1(texto);
        SCOPED_TRACE(texto);
        EXPECT_EQ(interfaz.miembros()[i].nombre, nombre) << "interface order";
        EXPECT_EQ(objeto.IdDeNombre(nombre), id);
        EXPECT_EQ(objeto.IdDeNombre(nombre.toUpper()), id);
    }
}

TEST(Despacho, NombresEIdsSiguenLaInterfazPublicada) {
    CompruebaEnlaces(InterfazDe<Impresora>(), kImpresora);
    CompruebaEnlaces(InterfazDe<ParamData>(), kParamData);
}

// By name and by id a call reaches the same member, or none; a call that does
// not suit the member fails with the runtime's number.
TEST(Despacho, LlamadasPorNombreYPorId) {
    Impresora imp;
    Variant valor(int32_t{7});
    imp.Invoca(0x4003000d, Llamada::AsignaValor, std::span<Variant>(&valor, 1));
    EXPECT_EQ(imp.Paginas, 7);
    EXPECT_TRUE(imp.Lee(u"PAGINAS"_s).identico(Variant(int32_t{7})));
    imp.Asigna(u"formaancho"_s, 14.0);
    EXPECT_TRUE(imp.Invoca(0x68030003, Llamada::LeePropiedad, {}).identico(Variant(14.0)));
    EXPECT_TRUE(imp.Invoca(0x68030003, Llamada::Metodo, {}).identico(Variant(14.0)));

    EXPECT_EQ(imp.IdDeNombre(u"FontItalic"_s), 0x6003001e);
    EXPECT_EQ(imp.IdDeNombre(u"ImprimeTodo"_s), kDispidDesconocido);
    EXPECT_EQ(imp.IdDeNombre(u""_s), kDispidDesconocido);
    // Private members occupy gaps in the numbering but are not reachable.
    for (int32_t hueco : {0x40030003, 0x40030004, 0x60030028, 0x6003001f, 0x60030034, 0x40030024})
        EXPECT_EQ(NumeroDeError([&] { imp.Invoca(hueco, Llamada::LeePropiedad, {}); }), 438) << hueco;

    using enum Llamada;
    std::tuple<const char*, Llamada, std::vector<Variant>, int32_t> casos[] = {
        {"NoExiste", LeePropiedad, {}, 438},
        {"Block", AsignaValor, {3.0}, 438},  // assignment to a method
        {"Imagen2", AsignaReferencia, {3.0}, 424},  // set with what is not an object
        // A read with arguments, an assignment without.
        {"nRow", LeePropiedad, {3.0}, 450},
        {"nRow", AsignaValor, {}, 450},
        {"Replicate", Metodo, {"-"}, 449},
        {"Replicate", Metodo, {Variant::Falta(), 3}, 449},
        {"Replicate", Metodo, {"-", 3, 4}, 450},
        {"IniciaDocumento", Metodo, {1}, 450},
        {"Fn", Metodo, {Variant::Nulo()}, 94},
        {"Copias", Metodo, {"muchas"}, 13},
        {"Bar128", Metodo, {70000, "123", 0, 0, 1, 1}, 6},
        {"RangoDeFechas", Metodo, {"Periodo", 5}, 13},  // Ambiente is an object
    };
    for (auto& [miembro, tipo, argumentos, error] : casos)
        EXPECT_EQ(NumeroDeError([&] { imp.InvocaPorNombre(QString::fromLatin1(miembro), tipo, argumentos); }), error)
            << miembro;
    EXPECT_EQ(imp.nRow, 66);
}

TEST(Despacho, OpcionalesOmitidosTomanSuValorPredeterminado) {
    const std::tuple<const char*, std::vector<Variant>, size_t, std::vector<std::pair<size_t, Variant>>> casos[] = {
        {"Bar128", {int16_t{40}, "A1", 0, 0, 1, 1}, 7, {{6, true}}},
        {"Bar3de9", {int16_t{40}, "A1", 0, 0, 1, 1, Variant::Falta()}, 8, {{6, false}, {7, true}}},
        {"PaperSize", {5}, 4, {{0, int16_t{5}}, {1, 0.0}, {2, 0.0}, {3, u"Tiendanova"_s}}},
        {"Codigo39", {1, 1, 15, 600, "ABC"}, 10, {{5, false}, {9, u""_s}}},
        {"Seleccion", {"Desde", "", Variant::Nada()}, 4, {{3, Variant::Nada()}}},
        // Typed by-reference parameters take the declared type.
        {"Copias", {"3"}, 1, {{0, int32_t{3}}}},
    };
    for (const auto& [metodo, dados, cuantas, esperados] : casos) {
        SCOPED_TRACE(metodo);
        const int32_t id = Impresora().IdDeNombre(QString::fromLatin1(metodo));
        const auto ranuras = PreparaArgumentos(InterfazDe<Impresora>().PorId(id)->parametros, dados);
        ASSERT_EQ(ranuras.size(), cuantas);
        for (const auto& [i, valor] : esperados) EXPECT_TRUE(ranuras[i].identico(valor)) << i;
    }
}

TEST(Despacho, PorReferenciaSoloDevuelveLoQueElMiembroCambia) {
    Impresora imp;
    std::tuple<const char*, std::vector<Variant>, Variant, std::vector<Variant>> casos[] = {
        {"Cambia", {"-", "a", "banana"}, u"b-n-n-"_s, {"-", "a", u"b-n-n-"_s}},
        // A number passed for a text parameter that the member leaves alone keeps its type.
        {"Cambia", {int32_t{1}, "x", "abc"}, u"abc"_s, {int32_t{1}, "x", "abc"}},
        {"Prepara", {"it's 'x'"}, u"it\"s \"x\""_s, {u"it\"s \"x\""_s}},
        {"Replicate", {"ab", 2.5}, u"abab"_s, {"ab", 2.5}},
    };
    for (auto& [metodo, argumentos, devuelto, despues] : casos) {
        SCOPED_TRACE(metodo);
        EXPECT_TRUE(imp.InvocaPorNombre(QString::fromLatin1(metodo), Llamada::Metodo, argumentos).identico(devuelto));
        for (size_t i = 0; i < argumentos.size(); ++i) EXPECT_TRUE(argumentos[i].identico(despues[i])) << i;
    }
}

// Objects made by identifier, and objects kept in properties: only a ParamData
// where one is declared.
TEST(Despacho, ObjetosCreadosYGuardados) {
    for (const char* id :
         {"KaloImpresora.Impresora", "kaloimpresora.impresora", "{E94BEC84-E327-4A16-913B-8FBDD11090A8}"})
        EXPECT_NE(std::dynamic_pointer_cast<Impresora>(CreaObjeto(QString::fromLatin1(id))), nullptr) << id;
    EXPECT_NE(std::dynamic_pointer_cast<ParamData>(CreaObjeto(u"{b3a1e471-9b00-448b-a06e-abbc3c84dd1d}"_s)), nullptr);
    for (const char* id : {"KaloImpresora.Otra", "", "Impresora", "{9A8C280D-29BC-4A62-BD58-8B46F27C3C00}"})
        EXPECT_EQ(NumeroDeError([&] { CreaObjeto(QString::fromLatin1(id)); }), 429) << id;

    Impresora imp;
    EXPECT_EQ(NumeroDeError([&] { imp.AsignaObjeto(u"ParamData"_s, std::make_shared<Impresora>()); }), 13);
    EXPECT_EQ(imp.ParamData, nullptr);
    auto creado = CreaObjeto(u"KaloImpresora.ParamData"_s);
    imp.AsignaObjeto(u"ParamData"_s, creado);
    EXPECT_EQ(imp.Lee(u"ParamData"_s).objeto(), creado);
    imp.AsignaObjeto(u"ParamData"_s, nullptr);
    EXPECT_EQ(imp.ParamData, nullptr);
    EXPECT_TRUE(imp.Lee(u"ParamData"_s).esObjeto());

    // A host's own object without a default member is no value, and nothing is not one either.
    auto propio = std::make_shared<prueba::ObjetoGrabador>(QStringList{u"Cuenta"_s});
    EXPECT_EQ(NumeroDeError([&] { imp.Asigna(u"nRow"_s, Variant(propio)); }), 438);
    EXPECT_EQ(NumeroDeError([&] { imp.Asigna(u"nRow"_s, Variant::Nada()); }), 91);
}

}  // namespace
