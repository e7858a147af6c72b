// The environment object and its copy for a branch: the component's own
// class, and a host's class registered in its place.

#include "comun/prueba.h"

#include "automation/interfaz.h"
#include "data/ambiente.h"
#include "data/conexion.h"
#include "kaloimpresora/ambiente.h"

namespace {

const QString kIdDeAmbiente = u"KaloEnviroment.Ambiente"_s;

std::shared_ptr<Conexion> ConexionA(const QString& cadena) {
    auto c = std::make_shared<Conexion>();
    c->ConnectionString(cadena);
    return c;
}

bool Propia(const QString& nombre) {
    return nombre.compare(u"Conexion"_s, Qt::CaseInsensitive) == 0 ||
           nombre.compare(u"NombreSucursal"_s, Qt::CaseInsensitive) == 0;
}

TEST(CopiaAmbiente, TextosYNumerosPorValorObjetosPorReferencia) {
    auto principal = std::make_shared<Ambiente>();
    // A value of its own for every setting, whatever the class declares.
    int16_t n = 0;
    for (const DescripcionDeMiembro& m : principal->Describe()->miembros) {
        if (m.clase == ClaseDeMiembro::PropiedadObjeto)
            principal->AsignaObjeto(m.nombre, std::make_shared<ObjetoGrabador>());
        else if (m.asignable())
            principal->Asigna(m.nombre, ++n);  // texts take it as "n"
    }
    auto matriz = ConexionA(u"Data Source=/datos/matriz.db"_s);
    principal->Conexion = matriz;
    auto norte = ConexionA(u"Driver=QPSQL;Server=norte;Database=sucursal_norte"_s);

    auto copia = CopiaAmbiente(*principal, norte, u"  Norte "_s);
    auto& sucursal = dynamic_cast<Ambiente&>(*copia);
    EXPECT_EQ(sucursal.Conexion, norte);
    EXPECT_EQ(sucursal.NombreSucursal, u"  Norte "_s);  // as given, spaces and all
    // Read from the connection, so the branch's own.
    EXPECT_EQ(sucursal.BaseDeDatos(), u"sucursal_norte"_s);
    EXPECT_EQ(sucursal.Servidor(), u"norte"_s);
    EXPECT_EQ(principal->BaseDeDatos(), u"/datos/matriz.db"_s);
    int copiadas = 0;
    for (const DescripcionDeMiembro& m : principal->Describe()->miembros) {
        if (!m.asignable() || Propia(m.nombre)) continue;
        ++copiadas;
        EXPECT_TRUE(copia->Lee(m.nombre).identico(principal->Lee(m.nombre))) << m.nombre.toStdString();
    }
    EXPECT_GE(copiadas, 35);
    // Objects are shared: a change through one is seen through the other.
    EXPECT_EQ(sucursal.Sucursales, principal->Sucursales);
    // Texts are not; and the main environment is left as it was.
    sucursal.Empresa = u"otra"_s;
    EXPECT_NE(principal->Empresa, u"otra"_s);
    EXPECT_EQ(principal->Conexion, matriz);
    EXPECT_NE(principal->NombreSucursal, sucursal.NombreSucursal);
}

// A host's environment: settings of its own, a read-only member right after
// the connection, and a log of what was set, in order.
class AmbienteDelHost : public ConTabla<AmbienteDelHost> {
public:
    static const TablaDeMiembros& Tabla();

    std::shared_ptr<Objeto> Conexion;
    QString Clave;
    std::shared_ptr<Objeto> Sucursales;
    QString NombreSucursal;
    int32_t Periodo1 = 0;
    QStringList asignadas;
    bool rechazaClave = false;
};

const TablaDeMiembros& AmbienteDelHost::Tabla() {
    using A = AmbienteDelHost;
    static const Interfaz<A> interfaz(u"AmbienteDelHost"_s, [] {
        std::vector<Miembro<A>> m;
        auto prop = [&](const QString& nombre, TipoDato tipo, auto campo) {
            Miembro<A> p = Propiedad<A>(nombre, static_cast<int32_t>(m.size()) + 1, tipo, campo);
            p.asigna = [nombre, asigna = p.asigna](A& a, const Variant& v) {
                if (a.rechazaClave && nombre == u"Clave"_s) Lanza(err::kValorDePropiedadNoValido);
                a.asignadas << nombre;
                asigna(a, v);
            };
            m.push_back(std::move(p));
        };
        prop(u"Conexion"_s, TipoDato::Objeto, &A::Conexion);
        m.push_back(PropiedadDeLectura<A>(u"Version"_s, 2, TipoDato::Texto, [](A&) { return Variant(u"2.1"_s); }));
        prop(u"Clave"_s, TipoDato::Texto, &A::Clave);
        prop(u"Sucursales"_s, TipoDato::Objeto, &A::Sucursales);
        prop(u"NombreSucursal"_s, TipoDato::Texto, &A::NombreSucursal);
        prop(u"Periodo1"_s, TipoDato::Largo, &A::Periodo1);
        return m;
    }());
    return interfaz;
}

TEST(CopiaAmbiente, CopiaLaClaseQueElHostRegistroEnElOrdenDeSusMiembros) {
    bool rechaza = false;
    ConClase clase(kIdDeAmbiente, [&] {
        auto a = std::make_shared<AmbienteDelHost>();
        a->rechazaClave = rechaza;
        return a;
    });
    auto principal = std::dynamic_pointer_cast<AmbienteDelHost>(CreaObjeto(kIdDeAmbiente));
    ASSERT_TRUE(principal);
    principal->Clave = u"S01"_s;
    principal->Sucursales = std::make_shared<ObjetoGrabador>();
    principal->Periodo1 = 202403;
    auto conexion = std::make_shared<ObjetoGrabador>();

    auto copia = std::dynamic_pointer_cast<AmbienteDelHost>(CopiaAmbiente(*principal, conexion, u"Norte"_s));
    ASSERT_TRUE(copia);
    EXPECT_EQ(copia->asignadas,
              (QStringList{u"Conexion"_s, u"Clave"_s, u"Sucursales"_s, u"NombreSucursal"_s, u"Periodo1"_s}));
    EXPECT_EQ(copia->Conexion, conexion);
    EXPECT_EQ(copia->Clave, u"S01"_s);
    EXPECT_EQ(copia->Sucursales, principal->Sucursales);
    EXPECT_EQ(copia->NombreSucursal, u"Norte"_s);
    EXPECT_EQ(copia->Periodo1, 202403);

    // A setting that fails stops the copy, unless failures are being ignored:
    // then it keeps its initial value and the rest is copied.
    rechaza = true;
    EXPECT_EQ(NumeroDeError([&] { CopiaAmbiente(*principal, conexion, u"Norte"_s); }),
              err::kValorDePropiedadNoValido);
    copia = std::dynamic_pointer_cast<AmbienteDelHost>(CopiaAmbiente(*principal, conexion, u"Norte"_s, true));
    ASSERT_TRUE(copia);
    EXPECT_EQ(copia->Clave, u""_s);
    EXPECT_EQ(copia->asignadas, (QStringList{u"Conexion"_s, u"Sucursales"_s, u"NombreSucursal"_s, u"Periodo1"_s}));
}

TEST(CopiaAmbiente, UnaClaseQueNoDescribeSusMiembrosNoSePuedeCopiar) {
    ConClase clase(kIdDeAmbiente, [] { return std::make_shared<ObjetoGrabador>(); });
    Ambiente principal;
    EXPECT_EQ(NumeroDeError([&] { CopiaAmbiente(principal, nullptr, u"Norte"_s); }), err::kNoAdmiteAccion);
}

}  // namespace
