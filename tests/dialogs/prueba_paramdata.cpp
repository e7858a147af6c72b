#include "comun/prueba.h"

#include "automation/interfaz.h"
#include "kaloimpresora/paramdata.h"

namespace {

Variant Llama(ParamData& pd, std::vector<Variant> args) {
    return pd.InvocaPorNombre(u"ParametrosRequeridos"_s, Llamada::Metodo, args);
}

// The properties read by name that are not "", False or day 0, as "name=value"
// in interface order: what a call changed, and nothing else.
QStringList Puestas(Objeto& pd) {
    const Variant vacios[] = {u""_s, false, Variant::Fecha(0)};
    QStringList r;
    for (const auto& m : InterfazDe<ParamData>().miembros()) {
        if (m.clase == ClaseDeMiembro::Metodo) continue;
        const Variant v = pd.Lee(m.nombre);
        if (std::ranges::none_of(vacios, [&](const Variant& x) { return v.identico(x); }))
            r << m.nombre + u'=' + CStr(v);
    }
    return r;
}

TEST(ParamData, ParametrosRequeridosTomaCadaRangoSoloConSuConsulta) {
    const Variant f = Variant::Falta();
    std::pair<std::vector<std::vector<Variant>>, QStringList> casos[] = {
        // Query before legend; an empty start query drops the whole second range.
        {{{"SELECT a", "Desde", "SELECT b", "Hasta", "", "L2", "SELECT d", "H2", true, true, 1, "Sólo vigentes"}},
         {u"QueryIni=SELECT a"_s, u"QueryFin=SELECT b"_s, u"LeyendaIni=Desde"_s, u"LeyendaFin=Hasta"_s,
          u"Param1=True"_s, u"Fechas=True"_s, u"Check=True"_s, u"CheckValue=True"_s, u"CheckLeyend=Sólo vigentes"_s}},
        // Without arguments only the options and the dates change.
        {{{"q", "", "", "", "q2", "", "", "", true, true, true, "x"}, {}},
         {u"QueryIni=q"_s, u"QueryIni2=q2"_s, u"Param1=True"_s, u"Param2=True"_s}},
        // The flags only switch on: a blank query leaves the earlier range.
        {{{"q1", "l1", "f1", "lf1", "q2"}, {"   ", "otra"}},
         {u"QueryIni=q1"_s, u"QueryFin=f1"_s, u"QueryIni2=q2"_s, u"LeyendaIni=l1"_s, u"LeyendaFin=lf1"_s,
          u"Param1=True"_s, u"Param2=True"_s}},
        {{{f, f, f, f, "q2"}}, {u"QueryIni2=q2"_s, u"Param2=True"_s}},
    };
    for (auto& [llamadas, puestas] : casos) {
        ParamData pd;
        for (auto& argumentos : llamadas) Llama(pd, argumentos);
        EXPECT_EQ(Puestas(pd), puestas);
    }
}

// A utility object whose blank test fails, to see the error reach the host.
class UtileriasQueFallan : public UtileriasPredeterminadas {
public:
    bool EsVacio(const Variant&) override { Lanza(err::kLlamadaNoValida, u"Utilerias.EsVacio"_s); }
};

TEST(ParamData, LosErroresDetienenElMetodoSinCambiarNada) {
    ParamData pd;
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, {Variant::Nulo()}); }), 94);
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, {"", "", "", "", "", "", "", "", "tal vez"}); }), 13);
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, std::vector<Variant>(13, Variant(u""_s))); }), 450);
    SustituyeUtilerias(std::make_shared<UtileriasQueFallan>());
    pd.Check = true;
    EXPECT_EQ(NumeroDeError([&] { Llama(pd, {"q", "l", "", "", "", "", "", "", true, false}); }), 5);
    EXPECT_EQ(Puestas(pd), QStringList{u"Check=True"_s});
}

}  // namespace
