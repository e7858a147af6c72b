// The _Impresora interface: every member in interface order with its dispatch
// id, kind and parameters. Ids of 0x4003nnnn are data properties, 0x6003nnnn
// methods, 0x6803nnnn property procedures; gaps belong to private members.

#include "automation/interfaz.h"
#include "kaloimpresora/impresora.h"

namespace kalo {
namespace {

using namespace Qt::StringLiterals;

using T = TipoDato;
using M = Miembro<Impresora>;
using Ranuras = std::span<Variant>;

// A method without arguments or result.
std::function<Variant(Impresora&, Ranuras)> Accion(void (Impresora::*metodo)()) {
    return [metodo](Impresora& o, Ranuras) {
        (o.*metodo)();
        return Variant();
    };
}

// The four arguments that every picture barcode shares after its data.
std::vector<Parametro> ConRectangulo(std::vector<Parametro> delante, std::vector<Parametro> detras) {
    for (const char16_t* n : {u"pLeft", u"pTop", u"pWidth", u"pHeight"}) delante.push_back(PorValor(QString::fromUtf16(n)));
    for (auto& p : detras) delante.push_back(std::move(p));
    return delante;
}

std::vector<M> Miembros() {
    std::vector<M> m;
    auto prop = [&](const char16_t* nombre, int32_t id, TipoDato tipo, auto campo) {
        m.push_back(Propiedad<Impresora>(QString::fromUtf16(nombre), id, tipo, campo));
    };
    auto metodo = [&](const char16_t* nombre, int32_t id, TipoDato resultado, std::vector<Parametro> params,
                      std::function<Variant(Impresora&, Ranuras)> llama = {}) {
        m.push_back(Metodo<Impresora>(QString::fromUtf16(nombre), id, resultado, std::move(params), std::move(llama)));
    };

    prop(u"Pantalla", 0x40030002, T::Booleano, &Impresora::Pantalla);
    prop(u"Imagen1", 0x40030005, T::Objeto, &Impresora::Imagen1);
    prop(u"Imagen2", 0x40030006, T::Objeto, &Impresora::Imagen2);
    prop(u"Imagen3", 0x40030007, T::Objeto, &Impresora::Imagen3);
    prop(u"Documento", 0x40030009, T::Largo, &Impresora::Documento);
    prop(u"nRow", 0x4003000a, T::Doble, &Impresora::nRow);
    prop(u"nCol", 0x4003000b, T::Doble, &Impresora::nCol);
    prop(u"DB", 0x4003000c, T::Texto, &Impresora::DB);
    prop(u"Paginas", 0x4003000d, T::Largo, &Impresora::Paginas);
    prop(u"nLinea", 0x4003000e, T::Largo, &Impresora::nLinea);
    prop(u"Archivo", 0x4003000f, T::Booleano, &Impresora::Archivo);
    prop(u"strTemp", 0x40030010, T::Texto, &Impresora::strTemp);
    prop(u"nCopias", 0x40030011, T::Largo, &Impresora::nCopias);
    prop(u"bolCancelado", 0x40030012, T::Booleano, &Impresora::bolCancelado);
    prop(u"Cancelado", 0x40030013, T::Booleano, &Impresora::Cancelado);
    prop(u"FechaInicial", 0x40030014, T::Fecha, &Impresora::FechaInicial);
    prop(u"FechaFinal", 0x40030015, T::Fecha, &Impresora::FechaFinal);
    prop(u"Todos", 0x40030016, T::Booleano, &Impresora::Todos);
    prop(u"SoloSeleccionados", 0x40030017, T::Booleano, &Impresora::SoloSeleccionados);
    prop(u"Avance", 0x40030018, T::Objeto, &Impresora::Avance);
    prop(u"PapelTipo", 0x40030019, T::Largo, &Impresora::PapelTipo);
    prop(u"PapelAncho", 0x4003001a, T::Doble, &Impresora::PapelAncho);
    prop(u"PapelLargo", 0x4003001b, T::Doble, &Impresora::PapelLargo);
    prop(u"bolStop", 0x4003001c, T::Booleano, &Impresora::bolStop);
    prop(u"PaperOrientation", 0x4003001d, T::Entero, &Impresora::PaperOrientation);
    prop(u"Horizontal", 0x4003001e, T::Booleano, &Impresora::Horizontal);
    prop(u"BusquedaIni", 0x4003001f, T::Texto, &Impresora::BusquedaIni);
    prop(u"BusquedaFin", 0x40030020, T::Texto, &Impresora::BusquedaFin);
    prop(u"ParamData", 0x40030021, T::ParamData, &Impresora::ParamData);
    prop(u"Observ", 0x40030022, T::Texto, &Impresora::Observ);
    prop(u"AmbienteSucursal", 0x40030023, T::Objeto, &Impresora::AmbienteSucursal);
    prop(u"sq", 0x40030025, T::Objeto, &Impresora::sq);
    prop(u"recordSetOrigen", 0x40030026, T::Objeto, &Impresora::recordSetOrigen);
    prop(u"objetoReporte", 0x40030027, T::Objeto, &Impresora::objetoReporte);

    metodo(u"IniciaDocumento", 0x60030004, T::Ninguno, {}, Accion(&Impresora::IniciaDocumento));
    metodo(u"Say", 0x60030005, T::Ninguno, {PorRef(u"y"_s), PorRef(u"x"_s), PorRef(u"strMensaje"_s)},
           [](Impresora& o, Ranuras a) { o.Say(a[0], a[1], a[2]); return Variant(); });
    metodo(u"FinDocumento", 0x60030006, T::Ninguno, {}, Accion(&Impresora::FinDocumento));
    metodo(u"EstableceFuente", 0x60030007, T::Ninguno, {PorRef(u"strFuente"_s), PorRef(u"Size"_s)},
           [](Impresora& o, Ranuras a) { o.EstableceFuente(a[0], a[1]); return Variant(); });
    metodo(u"CurrentY", 0x60030008, T::Ninguno, {PorRef(u"YVal"_s)},
           [](Impresora& o, Ranuras a) { o.CurrentY(a[0]); return Variant(); });
    metodo(u"CurrentX", 0x60030009, T::Ninguno, {PorRef(u"XVal"_s)},
           [](Impresora& o, Ranuras a) { o.CurrentX(a[0]); return Variant(); });
    metodo(u"Linea", 0x6003000a, T::Ninguno,
           {PorRef(u"bLeft0"_s), PorRef(u"bTop0"_s), PorRef(u"bLeft1"_s), PorRef(u"bTop1"_s)},
           [](Impresora& o, Ranuras a) { o.Linea(a[0], a[1], a[2], a[3]); return Variant(); });
    metodo(u"Box", 0x6003000b, T::Ninguno,
           {PorRef(u"bLeft"_s), PorRef(u"bTop"_s), PorRef(u"bWidth"_s), PorRef(u"bHeight"_s)},
           [](Impresora& o, Ranuras a) { o.Box(a[0], a[1], a[2], a[3]); return Variant(); });
    metodo(u"FilledBox", 0x6003000c, T::Ninguno,
           {PorRef(u"bLeft"_s), PorRef(u"bTop"_s), PorRef(u"bWidth"_s), PorRef(u"bHeight"_s),
            PorRef(u"Color"_s)},
           [](Impresora& o, Ranuras a) { o.FilledBox(a[0], a[1], a[2], a[3], a[4]); return Variant(); });
    metodo(u"PCircle", 0x6003000d, T::Ninguno, {PorRef(u"bLeft"_s), PorRef(u"bTop"_s), PorRef(u"bRadius"_s)},
           [](Impresora& o, Ranuras a) { o.PCircle(a[0], a[1], a[2]); return Variant(); });
    metodo(u"PaginaNueva", 0x6003000e, T::Ninguno, {}, Accion(&Impresora::PaginaNueva));
    metodo(u"Picture", 0x6003000f, T::Ninguno, ConRectangulo({PorRef(u"picSource"_s)}, {}),
           [](Impresora& o, Ranuras a) { o.Picture(a[0], a[1], a[2], a[3], a[4]); return Variant(); });
    const auto alto = [] { return PorRef(u"altoDeBarra"_s, T::Entero); };
    const auto datos = [] { return PorRef(u"barData"_s, T::Texto); };
    const auto incluyeHR = [] { return Opcional(PorRef(u"incluyeHR"_s, T::Booleano), Variant(true)); };
    metodo(u"Bar128", 0x60030010, T::Ninguno, ConRectangulo({alto(), datos()}, {incluyeHR()}),
           [](Impresora& o, Ranuras a) { o.Bar128(a[0].entero(), a[1].texto(), a[2], a[3], a[4], a[5], a[6].booleano()); return Variant(); });
    metodo(u"Bar3de9", 0x60030011, T::Ninguno,
           ConRectangulo({alto(), datos()},
                         {Opcional(PorRef(u"checkSum"_s, T::Booleano), Variant(false)), incluyeHR()}),
           [](Impresora& o, Ranuras a) { o.Bar3de9(a[0].entero(), a[1].texto(), a[2], a[3], a[4], a[5], a[6].booleano(), a[7].booleano()); return Variant(); });
    metodo(u"BarEAN13", 0x60030012, T::Ninguno, ConRectangulo({alto(), datos()}, {incluyeHR()}),
           [](Impresora& o, Ranuras a) { o.BarEAN13(a[0].entero(), a[1].texto(), a[2], a[3], a[4], a[5], a[6].booleano()); return Variant(); });
    metodo(u"BarEAN8", 0x60030013, T::Ninguno, ConRectangulo({alto(), datos()}, {incluyeHR()}),
           [](Impresora& o, Ranuras a) { o.BarEAN8(a[0].entero(), a[1].texto(), a[2], a[3], a[4], a[5], a[6].booleano()); return Variant(); });
    metodo(u"Replicate", 0x60030014, T::Texto, {PorRef(u"strChr"_s), PorRef(u"nVeces"_s)},
           [](Impresora& o, Ranuras a) { return Variant(o.Replicate(a[0], a[1])); });
    metodo(u"Row", 0x60030015, T::Variante, {PorRef(u"nRenglon"_s)},
           [](Impresora& o, Ranuras a) { return o.Row(a[0]); });
    metodo(u"Col", 0x60030016, T::Variante, {PorRef(u"nColumna"_s)},
           [](Impresora& o, Ranuras a) { return o.Col(a[0]); });
    metodo(u"rst", 0x60030017, T::Objeto, {PorRef(u"strSql"_s, T::Texto), PorRef(u"Connection"_s, T::Objeto)},
           [](Impresora& o, Ranuras a) {
               QString sql = a[0].texto();
               std::shared_ptr<Objeto> conexion = a[1].objeto();
               return Variant(o.rst(sql, conexion));
           });
    metodo(u"Letra", 0x60030018, T::Texto,
           {PorRef(u"nNumero"_s), PorRef(u"Leyenda"_s), PorRef(u"Decimales"_s),
            Opcional(PorRef(u"strLeyenda2"_s), Variant(QString()))},
           [](Impresora& o, Ranuras a) { return Variant(o.Letra(a[0], a[1], a[2], a[3])); });
    metodo(u"Formato", 0x60030019, T::Variante, {PorRef(u"Var"_s), PorRef(u"strFormat"_s)},
           [](Impresora& o, Ranuras a) { return o.Formato(a[0], a[1]); });
    metodo(u"PadR", 0x6003001a, T::Texto, {PorRef(u"str"_s), PorRef(u"nVeces"_s)},
           [](Impresora& o, Ranuras a) { return Variant(o.PadR(a[0], a[1])); });
    metodo(u"PadL", 0x6003001b, T::Texto, {PorRef(u"str"_s), PorRef(u"nVeces"_s)},
           [](Impresora& o, Ranuras a) { return Variant(o.PadL(a[0], a[1])); });
    metodo(u"EstableceImpresora", 0x6003001c, T::Ninguno, {PorRef(u"strimpresora"_s)},
           [](Impresora& o, Ranuras a) { o.EstableceImpresora(a[0]); return Variant(); });
    metodo(u"FontBold", 0x6003001d, T::Ninguno, {PorRef(u"Bold"_s)},
           [](Impresora& o, Ranuras a) { o.FontBold(a[0]); return Variant(); });
    metodo(u"FontITalic", 0x6003001e, T::Ninguno, {PorRef(u"Italic"_s)},
           [](Impresora& o, Ranuras a) { o.FontITalic(a[0]); return Variant(); });
    metodo(u"CreaBaseDeDatos", 0x60030020, T::Ninguno, {}, Accion(&Impresora::CreaBaseDeDatos));
    metodo(u"BorraArchivo", 0x60030021, T::Ninguno, {}, Accion(&Impresora::BorraArchivo));
    metodo(u"Copias", 0x60030022, T::Ninguno, {PorRef(u"nCopias"_s, T::Largo)}, [](Impresora& o, Ranuras a) {
        int32_t n = a[0].largo();
        o.Copias(n);
        return Variant();
    });
    const auto dialogoDeFechas = [] {
        return std::vector<Parametro>{PorRef(u"cTitulo"_s, T::Texto), PorRef(u"Ambiente"_s, T::Objeto),
                                      Opcional(PorRef(u"SoloFechas"_s, T::Booleano), Variant(false))};
    };
    metodo(u"RangoDeFechas", 0x60030023, T::Ninguno, dialogoDeFechas(), [](Impresora& o, Ranuras a) {
        o.RangoDeFechas(a[0].texto(), a[1].objeto(), a[2].booleano());
        return Variant();
    });
    metodo(u"FechaDeCorte", 0x60030024, T::Ninguno, dialogoDeFechas(), [](Impresora& o, Ranuras a) {
        o.FechaDeCorte(a[0].texto(), a[1].objeto(), a[2].booleano());
        return Variant();
    });
    metodo(u"RangoDeAlcance", 0x60030025, T::Ninguno,
           {PorRef(u"cTitulo"_s, T::Texto), PorRef(u"Ambiente"_s, T::Objeto)}, [](Impresora& o, Ranuras a) {
               o.RangoDeAlcance(a[0].texto(), a[1].objeto());
               return Variant();
           });
    metodo(u"FuenteTransparente", 0x60030026, T::Ninguno, {PorRef(u"bolTrans"_s)},
           [](Impresora& o, Ranuras a) { o.FuenteTransparente(a[0]); return Variant(); });
    metodo(u"ColorDeFuente", 0x60030027, T::Ninguno, {PorRef(u"nColor"_s)},
           [](Impresora& o, Ranuras a) { o.ColorDeFuente(a[0]); return Variant(); });
    metodo(u"Fn", 0x60030029, T::Doble, {PorRef(u"strValue"_s, T::Texto)},
           [](Impresora& o, Ranuras a) { return Variant(o.Fn(a[0].texto())); });
    metodo(u"Random", 0x6003002a, T::Doble, {},
           [](Impresora& o, Ranuras) { return Variant(o.Random()); });
    metodo(u"RandomColor", 0x6003002b, T::Largo, {},
           [](Impresora& o, Ranuras) { return Variant(o.RandomColor()); });
    metodo(u"Eventos", 0x6003002c, T::Ninguno, {}, Accion(&Impresora::Eventos));
    metodo(u"CreaForma", 0x6003002d, T::Objeto, {},
           [](Impresora& o, Ranuras) { return Variant(o.CreaForma()); });
    metodo(u"Portrait", 0x6003002e, T::Ninguno, {}, Accion(&Impresora::Portrait));
    metodo(u"LandScape", 0x6003002f, T::Ninguno, {}, Accion(&Impresora::LandScape));
    metodo(u"PaperSize", 0x60030030, T::Ninguno,
           {PorRef(u"nTipo"_s, T::Entero), Opcional(PorRef(u"nW"_s, T::Doble), Variant(0.0)),
            Opcional(PorRef(u"nH"_s, T::Doble), Variant(0.0)),
            Opcional(PorRef(u"strestilo"_s, T::Texto), Variant(QString::fromUtf16(kEstiloPredeterminado)))},
           [](Impresora& o, Ranuras a) { o.PaperSize(a[0].entero(), a[1].doble(), a[2].doble(), a[3].texto()); return Variant(); });
    metodo(u"RestauraPapel", 0x60030031, T::Ninguno, {}, Accion(&Impresora::RestauraPapel));
    metodo(u"strLinea", 0x60030032, T::Texto, {PorRef(u"cString"_s), PorRef(u"nLinea"_s)},
           [](Impresora& o, Ranuras a) { return Variant(o.strLinea(a[0], a[1])); });
    metodo(u"CuantasLineas", 0x60030033, T::Largo, {PorRef(u"cString"_s)},
           [](Impresora& o, Ranuras a) { return Variant(o.CuantasLineas(a[0])); });
    metodo(u"Block", 0x60030035, T::Texto, {PorRef(u"cBlock"_s, T::Texto)},
           [](Impresora& o, Ranuras a) { return Variant(o.Block(a[0].texto())); });
    metodo(u"Quote", 0x60030036, T::Texto, {PorRef(u"cBlock"_s, T::Texto)},
           [](Impresora& o, Ranuras a) { return Variant(o.Quote(a[0].texto())); });
    const auto tresTextos = [] {
        return std::vector<Parametro>{PorRef(u"cInserta"_s, T::Texto), PorRef(u"cBusca"_s, T::Texto),
                                      PorRef(u"cTarget"_s, T::Texto)};
    };
    metodo(u"Inserta", 0x60030037, T::Texto, tresTextos(), [](Impresora& o, Ranuras a) {
        return Variant(o.Inserta(a[0].texto(), a[1].texto(), a[2].texto()));
    });
    metodo(u"Cambia", 0x60030038, T::Texto, tresTextos(), [](Impresora& o, Ranuras a) {
        QString destino = a[2].texto();
        QString resultado = o.Cambia(a[0].texto(), a[1].texto(), destino);
        a[2] = Variant(std::move(destino));
        return Variant(std::move(resultado));
    });
    metodo(u"Prepara", 0x60030039, T::Texto, {PorRef(u"cString"_s, T::Texto)}, [](Impresora& o, Ranuras a) {
        QString texto = a[0].texto();
        QString resultado = o.Prepara(texto);
        a[0] = Variant(std::move(texto));
        return Variant(std::move(resultado));
    });
    const auto padre = [] { return Opcional(PorRef(u"ParentForm"_s, T::Objeto), Variant::Nada()); };
    metodo(u"RangoDeDatos", 0x6003003a, T::Variante,
           {PorRef(u"cLeyendaIni"_s, T::Texto), PorRef(u"cBusquedaIni"_s, T::Texto),
            PorRef(u"cLeyendaFin"_s, T::Texto), PorRef(u"cBusquedaFin"_s, T::Texto),
            PorRef(u"Ambiente"_s, T::Objeto), padre()},
           [](Impresora& o, Ranuras a) {
               return o.RangoDeDatos(a[0].texto(), a[1].texto(), a[2].texto(), a[3].texto(), a[4].objeto(),
                                     a[5].objeto());
           });
    metodo(u"Seleccion", 0x6003003b, T::Variante,
           {PorRef(u"cLeyendaIni"_s, T::Texto), PorRef(u"cBusquedaIni"_s, T::Texto),
            PorRef(u"Ambiente"_s, T::Objeto), padre()},
           [](Impresora& o, Ranuras a) { return o.Seleccion(a[0].texto(), a[1].texto(), a[2].objeto(), a[3].objeto()); });
    metodo(u"Rangos", 0x6003003c, T::Ninguno,
           {PorRef(u"Ambiente"_s, T::Objeto), PorRef(u"UsarListView"_s, T::Booleano)},
           [](Impresora& o, Ranuras a) {
               o.Rangos(a[0].objeto(), a[1].booleano());
               return Variant();
           });
    metodo(u"AbrirCajonDeDinero", 0x6003003d, T::Ninguno, {PorRef(u"cPuerto"_s), PorRef(u"cCode"_s)},
           [](Impresora& o, Ranuras a) { o.AbrirCajonDeDinero(a[0], a[1]); return Variant(); });
    metodo(u"Codigo39", 0x6003003e, T::Ninguno,
           {PorRef(u"x"_s), PorRef(u"y"_s), PorRef(u"xNarrow"_s), PorRef(u"yHeight"_s),
            PorRef(u"strMensaje"_s), Opcional(PorRef(u"bolBox"_s), Variant(false)),
            Opcional(PorRef(u"CheckDigit"_s), Variant(false)),
            Opcional(PorRef(u"strData1"_s), Variant(QString())),
            Opcional(PorRef(u"strData2"_s), Variant(QString())),
            Opcional(PorRef(u"strData3"_s), Variant(QString()))},
           [](Impresora& o, Ranuras a) { o.Codigo39(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9]); return Variant(); });

    m.push_back(PropiedadConProcedimientos<Impresora>(
        u"FormaAncho"_s, 0x68030003, T::Doble, [](Impresora& o) { return Variant(o.FormaAncho()); },
        [](Impresora& o, const Variant& v) { o.FormaAncho(v.doble()); }));
    m.push_back(PropiedadConProcedimientos<Impresora>(
        u"FormaAlto"_s, 0x68030002, T::Doble, [](Impresora& o) { return Variant(o.FormaAlto()); },
        [](Impresora& o, const Variant& v) { o.FormaAlto(v.doble()); }));
    m.push_back(PropiedadConProcedimientos<Impresora>(
        u"ControlhWndImpresora"_s, 0x68030001, T::Largo,
        [](Impresora& o) { return Variant(o.ControlhWndImpresora()); },
        [](Impresora& o, const Variant& v) {
            int32_t hwnForm = v.largo();
            o.ControlhWndImpresora(hwnForm);
        }));
    m.push_back(PropiedadConProcedimientos<Impresora>(
        u"EstiloImpresion"_s, 0x68030000, T::Texto, [](Impresora& o) { return Variant(o.EstiloImpresion()); },
        [](Impresora& o, const Variant& v) {
            QString estilo = v.texto();
            o.EstiloImpresion(estilo);
        }));
    metodo(u"EstableceEstiloImpresoraNT", 0x6003003f, T::Ninguno, {},
           Accion(&Impresora::EstableceEstiloImpresoraNT));
    return m;
}

}  // namespace

const TablaDeMiembros& Impresora::Tabla() {
    static const Interfaz<Impresora> interfaz(u"Impresora"_s, Miembros());
    return interfaz;
}

}  // namespace kalo
