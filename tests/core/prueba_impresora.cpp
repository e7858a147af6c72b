#include "comun/prueba.h"

namespace {

TEST(Impresora, AsignacionesConviertenAlTipoDeLaPropiedad) {
    ConLocal local("en_US");
    Impresora imp;
    const std::tuple<const char*, Variant, Variant> casos[] = {
        {"Pantalla", int32_t{1}, true},
        {"Archivo", "True", true},
        {"Documento", "42", int32_t{42}},
        {"nRow", "1,200.5", 1200.5},
        {"Paginas", 2.5, int32_t{2}},
        {"Paginas", 3.5, int32_t{4}},
        {"PaperOrientation", 2.0, int16_t{2}},
        {"DB", 12, u"12"_s},
        {"FechaInicial", 45000.25, Variant::Fecha(45000.25)},
        {"EstiloImpresion", "Ticket", u"Ticket"_s},
        {"FormaAlto", int16_t{14}, 14.0},
        {"Cancelado", Variant(), false},
        // ControlhWndImpresora takes anything that converts and always reads 0.
        {"ControlhWndImpresora", int32_t{12345}, int32_t{0}},
    };
    for (const auto& [propiedad, dado, leido] : casos) {
        imp.Asigna(QString::fromLatin1(propiedad), dado);
        const Variant v = imp.Lee(QString::fromLatin1(propiedad));
        EXPECT_TRUE(v.identico(leido)) << propiedad << ": " << CStr(v).toStdString();
    }
    EXPECT_EQ(imp.FormaAlto(), 14);
    EXPECT_EQ(imp.EstiloImpresion(), u"Ticket"_s);
    int32_t directo = 55;
    imp.ControlhWndImpresora(directo);
    EXPECT_EQ(imp.ControlhWndImpresora(), 0);
    EXPECT_EQ(directo, 55);
}

TEST(Impresora, AsignacionesInvalidasNoCambianNada) {
    ConLocal local("es_ES");
    Impresora imp;
    const std::tuple<const char*, Variant, int32_t> casos[] = {
        {"Pantalla", "quizá", 13},
        {"nRow", Variant::Nulo(), 94},
        {"PaperOrientation", 40000, 6},
        {"Paginas", 3e10, 6},
        {"Documento", Variant::Falta(), 13},
        {"ControlhWndImpresora", "ventana", 13},
    };
    for (const auto& [propiedad, dado, error] : casos) {
        const Variant antes = imp.Lee(QString::fromLatin1(propiedad));
        EXPECT_EQ(NumeroDeError([&] { imp.Asigna(QString::fromLatin1(propiedad), dado); }), error) << propiedad;
        EXPECT_TRUE(imp.Lee(QString::fromLatin1(propiedad)).identico(antes)) << propiedad;
    }
    // In a comma locale the point is a group separator.
    imp.Asigna(u"nRow"_s, "1.5");
    EXPECT_EQ(imp.nRow, 15);
    imp.Asigna(u"nRow"_s, "1,5");
    EXPECT_EQ(imp.nRow, 1.5);
}

TEST(Impresora, PropiedadesDeObjetoGuardanLaReferencia) {
    Impresora imp;
    auto otro = std::make_shared<Impresora>();
    for (const char* nombre : {"Imagen1", "Imagen2", "Imagen3", "Avance", "AmbienteSucursal", "sq",
                               "recordSetOrigen", "objetoReporte"}) {
        SCOPED_TRACE(nombre);
        imp.AsignaObjeto(QString::fromLatin1(nombre), otro);
        EXPECT_EQ(imp.Lee(QString::fromLatin1(nombre)).objeto(), otro);
        imp.AsignaObjeto(QString::fromLatin1(nombre), nullptr);
        EXPECT_EQ(imp.Lee(QString::fromLatin1(nombre)).objeto(), nullptr);
    }
    EXPECT_EQ(otro.use_count(), 1);
}

}  // namespace
