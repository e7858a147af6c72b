#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/paramdata.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::ConUtilerias;
using kalo::prueba::NumeroDeError;

namespace {

const char* const kTextos[] = {"BusquedaIni", "BusquedaFin", "BusquedaIni2", "BusquedaFin2", "QueryIni",
                               "QueryFin", "QueryIni2", "QueryFin2", "LeyendaIni", "LeyendaFin",
                               "LeyendaIni2", "LeyendaFin2", "CheckLeyend", "Observ"};
const char* const kBanderas[] = {"Todos1", "Todos2", "TodasLasFechas", "SoloSeleccionados", "TodosLosRegistros",
                                 "Param1", "Param2", "Fechas", "Check", "CheckValue"};

TEST(ParamData, UnObjetoNuevoEstaVacio) {
    auto pd = CreaObjeto(u"KaloImpresora.ParamData"_s);
    for (const char* p : kTextos) EXPECT_TRUE(pd->Lee(QString::fromLatin1(p)).identico(Variant(u""_s))) << p;
    for (const char* p : kBanderas) EXPECT_TRUE(pd->Lee(QString::fromLatin1(p)).identico(Variant(false))) << p;
    EXPECT_TRUE(pd->Lee(u"FechaInicial"_s).identico(Variant::Fecha(0)));
    EXPECT_TRUE(pd->Lee(u"FechaFinal"_s).identico(Variant::Fecha(0)));
}

TEST(ParamData, LasPropiedadesSonIndependientes) {
    ParamData pd;
    pd.Asigna(u"Param1"_s, true);
    pd.Asigna(u"CheckValue"_s, -1);
    pd.Asigna(u"FechaFinal"_s, Variant::Fecha(45291));
    EXPECT_TRUE(pd.Param1);
    EXPECT_TRUE(pd.CheckValue);
    EXPECT_EQ(pd.FechaFinal, 45291);
    EXPECT_TRUE(pd.QueryIni.isEmpty());
    EXPECT_FALSE(pd.Param2);
}

Variant Llama(ParamData& pd, std::vector<Variant> args) {
    return pd.InvocaPorNombre(u"ParametrosRequeridos"_s, Llamada::Metodo, args);
}

TEST(ParamData, SinArgumentosSoloCambianLasOpcionesYLasFechas) {
    ParamData pd;
    pd.Param1 = true;
    pd.Param2 = true;
    pd.QueryIni = u"q"_s;
    pd.Check = pd.CheckValue = pd.Fechas = true;
    pd.CheckLeyend = u"x"_s;
    Llama(pd, {});
    EXPECT_TRUE(pd.Param1);
    EXPECT_TRUE(pd.Param2);
    EXPECT_EQ(pd.QueryIni, u"q"_s);
    EXPECT_FALSE(pd.Check);
    EXPECT_FALSE(pd.CheckValue);
    EXPECT_FALSE(pd.Fechas);
    EXPECT_TRUE(pd.CheckLeyend.isEmpty());
}

TEST(ParamData, ElOrdenDeLosArgumentosEsConsultaAntesQueLeyenda) {
    ParamData pd;
    Llama(pd, {"SELECT a", "Desde", "SELECT b", "Hasta", "", "L2", "SELECT d", "H2", true, true, 1,
               "Sólo vigentes"});
    EXPECT_TRUE(pd.Param1);
    EXPECT_EQ(pd.QueryIni, u"SELECT a"_s);
    EXPECT_EQ(pd.LeyendaIni, u"Desde"_s);
    EXPECT_EQ(pd.QueryFin, u"SELECT b"_s);
    EXPECT_EQ(pd.LeyendaFin, u"Hasta"_s);
    // An empty start query drops the whole second range.
    EXPECT_FALSE(pd.Param2);
    EXPECT_TRUE(pd.QueryFin2.isEmpty());
    EXPECT_TRUE(pd.LeyendaIni2.isEmpty());
    EXPECT_TRUE(pd.Fechas);
    EXPECT_TRUE(pd.Check);
    EXPECT_TRUE(pd.CheckValue);
    EXPECT_EQ(pd.CheckLeyend, u"Sólo vigentes"_s);
}

TEST(ParamData, LasBanderasSoloSeEncienden) {
    ParamData pd;
    pd.ParametrosRequeridos(u"q1"_s, u"l1"_s, u"f1"_s, u"lf1"_s, u"q2"_s);
    EXPECT_TRUE(pd.Param1);
    EXPECT_TRUE(pd.Param2);
    pd.ParametrosRequeridos(u"   "_s, u"otra"_s);
    EXPECT_TRUE(pd.Param1);
    EXPECT_TRUE(pd.Param2);
    EXPECT_EQ(pd.QueryIni, u"q1"_s);
    EXPECT_EQ(pd.LeyendaIni, u"l1"_s);
    EXPECT_EQ(pd.QueryIni2, u"q2"_s);
    // Only the second range given.
    ParamData solo2;
    Llama(solo2, {Variant::Falta(), Variant::Falta(), Variant::Falta(), Variant::Falta(), "q2"});
    EXPECT_FALSE(solo2.Param1);
    EXPECT_TRUE(solo2.Param2);
}

TEST(ParamData, ArgumentosInvalidos) {
    ParamData pd;
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, {Variant::Nulo()}); }), 94);
    EXPECT_EQ(NumeroDeError([&] {
                  Llama(pd, {"", "", "", "", "", "", "", "", "tal vez"});
              }),
              13);
    std::vector<Variant> trece(13, Variant(u""_s));
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, trece); }), 450);
    EXPECT_FALSE(pd.Param1);
}

// A utility object whose blank test fails, to see the error reach the host.
class UtileriasQueFallan : public UtileriasPredeterminadas {
public:
    bool EsVacio(const Variant&) override { Lanza(err::kLlamadaNoValida, u"Utilerias.EsVacio"_s); }
};

TEST(ParamData, UnErrorDeEsVacioLlegaAlAnfitrionYDetieneElMetodo) {
    ConUtilerias u(std::make_shared<UtileriasQueFallan>());
    ParamData pd;
    pd.Check = true;
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, {"q", "l", "", "", "", "", "", "", true, false}); }), 5);
    EXPECT_FALSE(pd.Param1);
    EXPECT_TRUE(pd.Check);
}

TEST(ParamData, ElDeImpresoraYElDelAnfitrionSonIntercambiables) {
    Impresora imp;
    auto propio = std::make_shared<ParamData>();
    propio->ParametrosRequeridos(u"SELECT 1"_s);
    imp.AsignaObjeto(u"ParamData"_s, propio);
    EXPECT_TRUE(imp.Lee(u"ParamData"_s).objeto()->Lee(u"Param1"_s).identico(Variant(true)));
    imp.ParamData->Asigna(u"BusquedaFin"_s, "Z");
    EXPECT_EQ(propio->BusquedaFin, u"Z"_s);
}

}  // namespace
