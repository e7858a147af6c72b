// What objects tell of their members, checked against what their members do;
// and the classes a host registers in place of the component's.

#include "comun/prueba.h"

#include "data/conexion.h"
#include "kaloimpresora/ambiente.h"

namespace {

TEST(InformacionDeTipo, CadaMiembroDescritoSeUsaComoDiceSuDescripcion) {
    const std::shared_ptr<Objeto> objetos[] = {std::make_shared<Impresora>(), std::make_shared<ParamData>(),
                                               std::make_shared<Ambiente>(), std::make_shared<Conexion>(),
                                               CreaSuperficieDeImagen(20, 20)};
    for (const auto& objeto : objetos) {
        const InformacionDeTipo* tipo = objeto->Describe();
        ASSERT_TRUE(tipo);
        int leidas = 0;
        for (const DescripcionDeMiembro& m : tipo->miembros) {
            const std::string nombre = (tipo->nombreDeClase + u'.' + m.nombre).toStdString();
            EXPECT_EQ(objeto->IdDeNombre(m.nombre.toUpper()), m.dispid) << nombre;
            EXPECT_EQ(tipo->Busca(m.nombre.toLower()), &m) << nombre;
            if (m.clase == ClaseDeMiembro::Metodo) continue;
            if (m.clase == ClaseDeMiembro::PropiedadDeLectura && !m.parametros.empty()) continue;
            // A property reads; one that can be set takes back what it gave, by
            // value or by reference as described; a read-only one refuses.
            Variant valor = objeto->Invoca(m.dispid, Llamada::LeePropiedad, {});
            ++leidas;
            const bool porReferencia = m.clase == ClaseDeMiembro::PropiedadObjeto;
            const auto asigna = [&](Llamada llamada) {
                return NumeroDeError([&] { objeto->Invoca(m.dispid, llamada, std::span<Variant>(&valor, 1)); });
            };
            if (m.asignable()) {
                EXPECT_EQ(asigna(porReferencia ? Llamada::AsignaReferencia : Llamada::AsignaValor), 0) << nombre;
                EXPECT_EQ(asigna(porReferencia ? Llamada::AsignaValor : Llamada::AsignaReferencia),
                          err::kNoAdmitePropiedadOMetodo)
                    << nombre;
            } else {
                EXPECT_EQ(asigna(Llamada::AsignaValor), err::kNoAdmitePropiedadOMetodo) << nombre;
            }
        }
        EXPECT_GE(leidas, 2) << tipo->nombreDeClase.toStdString();
    }
    EXPECT_EQ(ObjetoGrabador().Describe(), nullptr);  // a host's object that does not say
}

TEST(RegistroDeClases, LaClaseDelHostVaEnLugarDeLaDelComponenteMientrasEsteRegistrada) {
    const QString id = u"KaloEnviroment.Ambiente"_s;
    EXPECT_TRUE(dynamic_cast<Ambiente*>(CreaObjeto(id).get()));
    {
        ConClase propia(u"kaloenviroment.AMBIENTE"_s, [] { return std::make_shared<ObjetoGrabador>(); });
        ConClase otra(u"Tienda.Caja"_s, [] { return std::make_shared<Impresora>(); });
        ConClase rota(u"Tienda.Rota"_s, [] { return std::shared_ptr<Objeto>(); });
        EXPECT_TRUE(dynamic_cast<ObjetoGrabador*>(CreaObjeto(u" "_s + id).get()));
        EXPECT_TRUE(dynamic_cast<Impresora*>(CreaObjeto(u"tienda.caja"_s).get()));
        EXPECT_EQ(NumeroDeError([] { CreaObjeto(u"Tienda.Rota"_s); }), err::kNoPuedeCrearObjeto);
    }
    EXPECT_TRUE(dynamic_cast<Ambiente*>(CreaObjeto(id).get()));
    EXPECT_EQ(NumeroDeError([] { CreaObjeto(u"Tienda.Caja"_s); }), err::kNoPuedeCrearObjeto);
}

}  // namespace
