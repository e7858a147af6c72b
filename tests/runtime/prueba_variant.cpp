#include <gtest/gtest.h>

#include <cfloat>
#include <functional>
#include <string>

#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/errores.h"
#include "kaloimpresora/variant.h"

namespace kalo {
namespace {

using prueba::NumeroDeError;
using prueba::ObjetoConValor;

std::string U8(const QString& s) { return s.toStdString(); }

std::string Describe(const Variant& v) {
    std::string texto = "tipo " + std::to_string(int(v.tipo()));
    try {
        if (!v.esNulo())
            texto += " [" + U8(CStr(v)) + "]";
    } catch (const ErrorDeAutomatizacion&) {
    }
    return texto;
}

// Numeric text in these tests is written the en_US way.
class VariantEnUs : public ::testing::Test {
protected:
    void SetUp() override { EstableceLocalDelUsuario(QLocale(QStringLiteral("en_US"))); }
    void TearDown() override { EstableceLocalDelUsuario(std::nullopt); }
};

using Operador = std::function<Variant(const Variant&, const Variant&)>;
const Operador kSuma = [](const Variant& a, const Variant& b) { return a + b; };
const Operador kResta = [](const Variant& a, const Variant& b) { return a - b; };
const Operador kProducto = [](const Variant& a, const Variant& b) { return a * b; };
const Operador kCociente = [](const Variant& a, const Variant& b) { return a / b; };

TEST_F(VariantEnUs, Aritmetica) {
    struct Caso {
        const char* nombre;
        Variant a;
        const Operador& op;
        Variant b;
        Variant esperado;  // same type and contents
        int32_t error = 0;
    };
    const auto objeto = std::make_shared<ObjetoConValor>(Variant(int16_t{5}));
    const Caso casos[] = {
        {"cifras+cifras", "1", kSuma, "2", "12"},
        {"texto+entero", "1.5", kSuma, int16_t{2}, 3.5},
        {"texto-texto", "7", kResta, "2", 5.0},
        {"no numerico", "x", kSuma, int16_t{1}, {}, 13},
        {"texto+nulo", "a", kSuma, Variant::Nulo(), Variant::Nulo()},
        {"nulo/0", Variant::Nulo(), kCociente, int16_t{0}, Variant::Nulo()},
        {"vacio+vacio", Variant(), kSuma, Variant(), int16_t{0}},
        {"vacio+texto", Variant(), kSuma, "a", "a"},
        {"texto+vacio", "a", kSuma, Variant(), "a"},
        {"vacio+largo", Variant(), kSuma, int32_t{5}, int32_t{5}},
        {"booleanos", true, kSuma, true, int16_t{-2}},
        {"entero al limite", int16_t{32766}, kSuma, int16_t{1}, int16_t{32767}},
        {"entero a largo", int16_t{32767}, kSuma, int16_t{1}, int32_t{32768}},
        {"resta a largo", int16_t{-32768}, kResta, int16_t{1}, int32_t{-32769}},
        {"largo a doble", int32_t{2147483647}, kSuma, int16_t{1}, 2147483648.0},
        {"sencillo+entero", 1.5f, kSuma, int16_t{1}, 2.5f},
        {"sencillo+largo", 1.5f, kSuma, int32_t{1}, 2.5},
        {"sencillo desbordado", 3e38f, kProducto, int16_t{2}, double{3e38f} * 2},
        {"doble+entero", 1.25, kSuma, int16_t{1}, 2.25},
        {"doble desbordado", 1e308, kProducto, 10.0, {}, 6},
        {"moneda+entero", Moneda{15000}, kSuma, int16_t{1}, Moneda{25000}},
        {"moneda+doble", Moneda{15000}, kSuma, 0.00005, Moneda{15000}},
        {"moneda*entero", Moneda{15000}, kProducto, int16_t{3}, Moneda{45000}},
        {"moneda*moneda al par", Moneda{3}, kProducto, Moneda{5000}, Moneda{2}},
        {"moneda*doble", Moneda{10000}, kProducto, 0.25, Moneda{2500}},
        {"moneda desbordada", Moneda{INT64_MAX}, kSuma, int16_t{1}, {}, 6},
        {"moneda/moneda", Moneda{10000}, kCociente, Moneda{40000}, 0.25},
        {"fecha+numero", Variant::Fecha(10), kSuma, int16_t{1}, Variant::Fecha(11)},
        {"fecha-fecha", Variant::Fecha(10), kResta, Variant::Fecha(3), 7.0},
        {"fecha fuera de intervalo", Variant::Fecha(2958465), kSuma, int16_t{2}, {}, 6},
        {"cociente", int16_t{7}, kCociente, int16_t{2}, 3.5},
        {"entre cero", int16_t{1}, kCociente, int16_t{0}, {}, 11},
        {"cero entre cero", 0.0, kCociente, int16_t{0}, {}, 6},
        {"falta", Variant::Falta(), kSuma, int16_t{1}, {}, 13},
        {"objeto", objeto, kSuma, int16_t{1}, int16_t{6}},
        {"nada", Variant::Nada(), kSuma, int16_t{1}, {}, 91},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.nombre);
        Variant r;
        EXPECT_EQ(NumeroDeError([&] { r = c.op(c.a, c.b); }), c.error);
        if (c.error == 0) {
            EXPECT_TRUE(r.identico(c.esperado)) << Describe(r) << " en vez de " << Describe(c.esperado);
        }
    }
}

TEST_F(VariantEnUs, Comparacion) {
    struct Caso {
        Variant a;
        Variant b;
        std::optional<int> esperado;
        int32_t error = 0;
    };
    const Caso casos[] = {
        {int16_t{1}, 2.0, -1},
        {"a", "B", 1},  // binary: lower case after upper case
        {"abc", "ab", 1},
        {"10", int16_t{9}, 1},  // numeric text beside a number compares as a number
        {"10", "9", -1},
        {"abc", int32_t{1000}, 1},
        {Variant(), "a", -1},
        {Variant(), int16_t{0}, 0},
        {true, int16_t{-1}, 0},
        {Moneda{10000}, int16_t{1}, 0},
        {Moneda{5000}, 0.5, 0},
        {Moneda{INT64_MAX}, Moneda{INT64_MAX - 1}, 1},
        {0.1f, 0.1, 1},
        {Variant::Nulo(), int16_t{1}, std::nullopt},
        {Variant::Falta(), int16_t{1}, std::nullopt, 13},
        {Variant::Nada(), int16_t{1}, std::nullopt, 91},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(Describe(c.a) + " frente a " + Describe(c.b));
        std::optional<int> r;
        bool igual = false;
        EXPECT_EQ(NumeroDeError([&] { r = Compara(c.a, c.b); }), c.error);
        EXPECT_EQ(NumeroDeError([&] { igual = c.a == c.b; }), c.error);
        if (c.error != 0)
            continue;
        EXPECT_EQ(r, c.esperado);
        EXPECT_EQ(igual, c.esperado == 0);
        // Swapping the sides reverses the order.
        const std::optional<int> inverso = Compara(c.b, c.a);
        EXPECT_EQ(inverso, c.esperado ? std::optional<int>(-*c.esperado) : std::nullopt);
    }
}

TEST(Variant, Identico) {
    const auto o1 = std::make_shared<ObjetoConValor>(Variant());
    const auto o2 = std::make_shared<ObjetoConValor>(Variant());
    struct Caso {
        Variant a;
        Variant b;
        bool esperado;
    };
    const Caso casos[] = {
        {int16_t{1}, int16_t{1}, true},
        {int16_t{1}, int32_t{1}, false},
        {0.0, -0.0, false},
        {"a", "a", true},
        {"a", "A", false},
        {o1, o1, true},
        {o1, o2, false},
        {Variant::Falta(), Variant::Error(448), true},
        {Variant::Nulo(), Variant::Nulo(), true},
        {Moneda{5}, Moneda{5}, true},
    };
    for (const Caso& c : casos)
        EXPECT_EQ(c.a.identico(c.b), c.esperado) << Describe(c.a) << " / " << Describe(c.b);
}

TEST(Variant, EsNumerico) {
    const std::pair<Variant, bool> casos[] = {
        {int16_t{1}, true},     {int32_t{1}, true}, {1.0f, true},   {1.0, true},
        {Moneda{1}, true},      {Variant::Fecha(1), true},          {true, true},
        {Variant(), false},     {Variant::Nulo(), false},           {"1", false},
        {Variant::Falta(), false}, {Variant::Nada(), false},
    };
    for (const auto& [valor, esperado] : casos)
        EXPECT_EQ(valor.esNumerico(), esperado) << Describe(valor);
}

TEST(Variant, FaltaEsElError448) {
    // Its type and number are proven identical to Error(448) above.
    EXPECT_TRUE(Variant::Falta().esFalta());
    EXPECT_FALSE(Variant::Error(13).esFalta());
}

// The ends of the sorted table and numbers outside it; 13, 94 and 11 below.
TEST(Errores, Descripciones) {
    const std::pair<int32_t, const char*> casos[] = {
        {5, "Llamada a procedimiento o argumento no válido"},
        {482, "Error de impresora"},
        {8, "Error definido por la aplicación o el objeto"},
        {9999, "Error definido por la aplicación o el objeto"},
        {0, "Error definido por la aplicación o el objeto"},
    };
    for (auto [numero, texto] : casos) {
        EXPECT_EQ(U8(DescripcionDeError(numero)), texto) << numero;
        EXPECT_EQ(U8(ErrorDeAutomatizacion(numero).descripcion()), texto) << numero;
    }
}

TEST(Errores, ContenidoDelError) {
    const ErrorDeAutomatizacion sinOrigen(13);
    EXPECT_STREQ(sinOrigen.what(), "13: No coinciden los tipos");
    EXPECT_TRUE(sinOrigen.origen().isEmpty());

    const ErrorDeAutomatizacion conOrigen(94, QStringLiteral("Impresora"));
    EXPECT_STREQ(conOrigen.what(), "94: Uso no válido de Null (Impresora)");

    const ErrorDeAutomatizacion propio(482, QStringLiteral("Sin papel"), QStringLiteral("Impresora"));
    EXPECT_EQ(propio.numero(), 482);
    EXPECT_EQ(U8(propio.descripcion()), "Sin papel");
    EXPECT_STREQ(propio.what(), "482: Sin papel (Impresora)");

    try {
        Lanza(11, QStringLiteral("ParamData"));
        ADD_FAILURE() << "Lanza volvió";
    } catch (const ErrorDeAutomatizacion& e) {
        EXPECT_EQ(e.numero(), 11);
        EXPECT_EQ(U8(e.origen()), "ParamData");
        EXPECT_STREQ(e.what(), "11: División por cero (ParamData)");
    }
}

}  // namespace
}  // namespace kalo
