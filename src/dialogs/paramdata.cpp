// The parameter record of the data-range dialog and its automation interface.

#include "kaloimpresora/paramdata.h"

#include "automation/interfaz.h"
#include "kaloimpresora/utilerias.h"

namespace kalo {
namespace {

using namespace Qt::StringLiterals;
using T = TipoDato;

std::vector<Miembro<ParamData>> Miembros() {
    std::vector<Miembro<ParamData>> m;
    auto prop = [&](const char16_t* nombre, int32_t id, TipoDato tipo, auto campo) {
        m.push_back(Propiedad<ParamData>(QString::fromUtf16(nombre), id, tipo, campo));
    };
    prop(u"BusquedaIni", 0x40030000, T::Texto, &ParamData::BusquedaIni);
    prop(u"BusquedaFin", 0x40030001, T::Texto, &ParamData::BusquedaFin);
    prop(u"Todos1", 0x40030002, T::Booleano, &ParamData::Todos1);
    prop(u"BusquedaIni2", 0x40030003, T::Texto, &ParamData::BusquedaIni2);
    prop(u"BusquedaFin2", 0x40030004, T::Texto, &ParamData::BusquedaFin2);
    prop(u"Todos2", 0x40030005, T::Booleano, &ParamData::Todos2);
    prop(u"FechaInicial", 0x40030006, T::Fecha, &ParamData::FechaInicial);
    prop(u"FechaFinal", 0x40030007, T::Fecha, &ParamData::FechaFinal);
    prop(u"TodasLasFechas", 0x40030008, T::Booleano, &ParamData::TodasLasFechas);
    prop(u"SoloSeleccionados", 0x40030009, T::Booleano, &ParamData::SoloSeleccionados);
    prop(u"TodosLosRegistros", 0x4003000a, T::Booleano, &ParamData::TodosLosRegistros);
    prop(u"QueryIni", 0x4003000b, T::Texto, &ParamData::QueryIni);
    prop(u"QueryFin", 0x4003000c, T::Texto, &ParamData::QueryFin);
    prop(u"QueryIni2", 0x4003000d, T::Texto, &ParamData::QueryIni2);
    prop(u"QueryFin2", 0x4003000e, T::Texto, &ParamData::QueryFin2);
    prop(u"LeyendaIni", 0x4003000f, T::Texto, &ParamData::LeyendaIni);
    prop(u"LeyendaFin", 0x40030010, T::Texto, &ParamData::LeyendaFin);
    prop(u"LeyendaIni2", 0x40030011, T::Texto, &ParamData::LeyendaIni2);
    prop(u"LeyendaFin2", 0x40030012, T::Texto, &ParamData::LeyendaFin2);
    prop(u"Param1", 0x40030013, T::Booleano, &ParamData::Param1);
    prop(u"Param2", 0x40030014, T::Booleano, &ParamData::Param2);
    prop(u"Fechas", 0x40030015, T::Booleano, &ParamData::Fechas);
    prop(u"Check", 0x40030016, T::Booleano, &ParamData::Check);
    prop(u"CheckValue", 0x40030017, T::Booleano, &ParamData::CheckValue);
    prop(u"CheckLeyend", 0x40030018, T::Texto, &ParamData::CheckLeyend);
    prop(u"Observ", 0x40030019, T::Texto, &ParamData::Observ);

    m.push_back(Metodo<ParamData>(
        u"ParametrosRequeridos"_s, 0x60030000, T::Ninguno,
        {Opcional(PorRef(u"pQueryIni"_s, T::Texto)), Opcional(PorRef(u"pLeyendaIni"_s, T::Texto)),
         Opcional(PorRef(u"pQueryFin"_s, T::Texto)), Opcional(PorRef(u"pLeyendaFin"_s, T::Texto)),
         Opcional(PorRef(u"pQueryIni2"_s, T::Texto)), Opcional(PorRef(u"pLeyendaIni2"_s, T::Texto)),
         Opcional(PorRef(u"pQueryFin2"_s, T::Texto)), Opcional(PorRef(u"pLeyendaFin2"_s, T::Texto)),
         Opcional(PorRef(u"Fechas"_s, T::Booleano)), Opcional(PorRef(u"pCheck"_s, T::Booleano)),
         Opcional(PorRef(u"pCheckValue"_s, T::Booleano)), Opcional(PorRef(u"pCheckLeyend"_s, T::Texto))},
        [](ParamData& o, std::span<Variant> a) {
            o.ParametrosRequeridos(a[0].texto(), a[1].texto(), a[2].texto(), a[3].texto(), a[4].texto(),
                                   a[5].texto(), a[6].texto(), a[7].texto(), a[8].booleano(), a[9].booleano(),
                                   a[10].booleano(), a[11].texto());
            return Variant();
        }));
    return m;
}

}  // namespace

const TablaDeMiembros& ParamData::Tabla() {
    static const Interfaz<ParamData> interfaz(u"ParamData"_s, Miembros());
    return interfaz;
}


void ParamData::ParametrosRequeridos(const QString& pQueryIni, const QString& pLeyendaIni,
                                     const QString& pQueryFin, const QString& pLeyendaFin,
                                     const QString& pQueryIni2, const QString& pLeyendaIni2,
                                     const QString& pQueryFin2, const QString& pLeyendaFin2, bool pFechas,
                                     bool pCheck, bool pCheckValue, const QString& pCheckLeyend) {
    Utilerias& util = UtileriasCompartidas();
    if (!util.EsVacio(Variant(pQueryIni))) {
        Param1 = true;
        QueryIni = pQueryIni;
        QueryFin = pQueryFin;
        LeyendaIni = pLeyendaIni;
        LeyendaFin = pLeyendaFin;
    }
    if (!util.EsVacio(Variant(pQueryIni2))) {
        Param2 = true;
        QueryIni2 = pQueryIni2;
        QueryFin2 = pQueryFin2;
        LeyendaIni2 = pLeyendaIni2;
        LeyendaFin2 = pLeyendaFin2;
    }
    Check = pCheck;
    CheckValue = pCheckValue;
    CheckLeyend = pCheckLeyend;
    Fechas = pFechas;
}

}  // namespace kalo
