#include "comun/prueba.h"

#include "automation/interfaz.h"
#include "kaloimpresora/paramdata.h"

namespace {

// A property's value as its variant type's number and a text no locale changes.
QString Valor(const Variant& v) {
    QString texto;
    switch (v.tipo()) {
    case TipoVariant::Objeto: texto = v.objeto() ? u"Object"_s : u"Nothing"_s; break;
    case TipoVariant::Texto: texto = u'"' + v.texto() + u'"'; break;
    case TipoVariant::Booleano: texto = v.booleano() ? u"True"_s : u"False"_s; break;
    case TipoVariant::Fecha: texto = QString::number(v.fecha()); break;
    default: texto = QString::number(CDbl(v));
    }
    return u"%1:%2"_s.arg(int(v.tipo())).arg(texto);
}

// One line per member, in interface order: dispatch id, name, kind, type and
// parameters ("&" by reference, "?" optional, "=" its default); a property
// without parameters ends with its value on a new object.
QStringList Listado(Objeto&& nuevo) {
    const InformacionDeTipo& tipo = *nuevo.Describe();
    static const char* const kTipos[] = {"Variant", "Boolean", "Integer", "Long",    "Double",
                                         "Date",    "String",  "Object",  "ParamData", "-"};
    static const char* const kClases[] = {"let", "set", "get", "method"};
    QStringList lineas;
    for (const DescripcionDeMiembro& m : tipo.miembros) {
        QString linea = u"%1 0x%2 %3 %4 %5"_s.arg(tipo.nombreDeClase)
                            .arg(uint32_t(m.dispid), 8, 16, QChar(u'0'))
                            .arg(m.nombre, QString::fromLatin1(kClases[int(m.clase)]),
                                 QString::fromLatin1(kTipos[int(m.tipo)]));
        for (const Parametro& p : m.parametros) {
            linea += u' ' + p.nombre + u':' + QString::fromLatin1(kTipos[int(p.tipo)]);
            if (p.porReferencia) linea += u'&';
            if (p.opcional) linea += u'?';
            if (p.omision) linea += u'=' + (p.omision->esObjeto() ? u"Nothing"_s : CStr(*p.omision));
        }
        if (m.clase != ClaseDeMiembro::Metodo && m.parametros.empty())
            linea += u" := "_s + Valor(nuevo.Invoca(m.dispid, Llamada::LeePropiedad, {}));
        lineas << linea;
    }
    return lineas;
}

// The published binding hosts compile against, and the values a new object
// starts with, kept in interfaz_publicada.txt.
// A mismatch leaves the current listing in the working folder, to compare.
TEST(Despacho, NombresIdsYParametrosSiguenLaInterfazPublicada) {
    const QStringList actual = Listado(Impresora()) + Listado(ParamData());
    QFile publicada(QStringLiteral(KALO_INTERFAZ_PUBLICADA));
    ASSERT_TRUE(publicada.open(QIODevice::ReadOnly | QIODevice::Text));
    const QStringList esperada = QString::fromUtf8(publicada.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < std::max(actual.size(), esperada.size()); ++i) {
        if (actual.value(i) == esperada.value(i)) continue;
        QFile salida(u"interfaz_actual.txt"_s);
        if (salida.open(QIODevice::WriteOnly)) salida.write((actual.join(u'\n') + u'\n').toUtf8());
        FAIL() << "line " << i + 1 << ": " << actual.value(i).toStdString() << " instead of "
               << esperada.value(i).toStdString();
    }
}

// By name and by id a call reaches the same member, or none; a call that does
// not suit the member fails with the runtime's number.
TEST(Despacho, LlamadasPorNombreYPorId) {
    Impresora imp;
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
