#include "comun/prueba.h"

namespace kalo {
namespace {

// Type and text; Null and Nothing have no text to show.
std::string Describe(const Variant& v) {
    QString texto;
    NumeroDeError([&] { texto = CStr(v); });
    return "tipo " + std::to_string(int(v.tipo())) + " [" + texto.toStdString() + "]";
}

Variant Opera(const Variant& a, char op, const Variant& b) {
    return op == '+' ? a + b : op == '-' ? a - b : op == '*' ? a * b : a / b;
}

TEST(Variant, Aritmetica) {
    ConLocal local("en_US");
    struct Caso {
        Variant a;
        char op;
        Variant b;
        Variant esperado;  // same type and contents
        int32_t error = 0;
    };
    const auto objeto = std::make_shared<ObjetoConValor>(Variant(int16_t{5}));
    const Caso casos[] = {
        {"1", '+', "2", "12"}, {"1.5", '+', int16_t{2}, 3.5}, {"7", '-', "2", 5.0}, {"x", '+', int16_t{1}, {}, 13},
        {"a", '+', Variant::Nulo(), Variant::Nulo()}, {Variant::Nulo(), '/', int16_t{0}, Variant::Nulo()},
        {Variant(), '+', Variant(), int16_t{0}}, {Variant(), '+', "a", "a"}, {"a", '+', Variant(), "a"},
        {Variant(), '+', int32_t{5}, int32_t{5}}, {true, '+', true, int16_t{-2}},
        {int16_t{32766}, '+', int16_t{1}, int16_t{32767}}, {int16_t{32767}, '+', int16_t{1}, int32_t{32768}},
        {int16_t{-32768}, '-', int16_t{1}, int32_t{-32769}}, {int32_t{2147483647}, '+', int16_t{1}, 2147483648.0},
        {1.5f, '+', int16_t{1}, 2.5f}, {1.5f, '+', int32_t{1}, 2.5}, {3e38f, '*', int16_t{2}, double{3e38f} * 2},
        {1.25, '+', int16_t{1}, 2.25}, {1e308, '*', 10.0, {}, 6},
        {Moneda{15000}, '+', int16_t{1}, Moneda{25000}}, {Moneda{15000}, '+', 0.00005, Moneda{15000}},
        {Moneda{15000}, '*', int16_t{3}, Moneda{45000}}, {Moneda{3}, '*', Moneda{5000}, Moneda{2}},  // to even
        {Moneda{10000}, '*', 0.25, Moneda{2500}}, {Moneda{INT64_MAX}, '+', int16_t{1}, {}, 6},
        {Moneda{10000}, '/', Moneda{40000}, 0.25},
        {Variant::Fecha(10), '+', int16_t{1}, Variant::Fecha(11)}, {Variant::Fecha(10), '-', Variant::Fecha(3), 7.0},
        {Variant::Fecha(2958465), '+', int16_t{2}, {}, 6},
        {int16_t{7}, '/', int16_t{2}, 3.5}, {int16_t{1}, '/', int16_t{0}, {}, 11}, {0.0, '/', int16_t{0}, {}, 6},
        {Variant::Falta(), '+', int16_t{1}, {}, 13}, {objeto, '+', int16_t{1}, int16_t{6}},
        {Variant::Nada(), '+', int16_t{1}, {}, 91},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(Describe(c.a) + ' ' + c.op + ' ' + Describe(c.b));
        Variant r;
        EXPECT_EQ(NumeroDeError([&] { r = Opera(c.a, c.op, c.b); }), c.error);
        if (c.error != 0) continue;
        EXPECT_TRUE(r.identico(c.esperado)) << Describe(r) << " en vez de " << Describe(c.esperado);
    }
}

TEST(Variant, Comparacion) {
    ConLocal local("en_US");
    struct Caso {
        Variant a;
        Variant b;
        std::optional<int> esperado;
        int32_t error = 0;
    };
    const Caso casos[] = {
        {int16_t{1}, 2.0, -1}, {"a", "B", 1},  // binary: lower case after upper case
        {"abc", "ab", 1}, {"10", int16_t{9}, 1},  // numeric text beside a number compares as a number
        {"10", "9", -1}, {"abc", int32_t{1000}, 1}, {Variant(), "a", -1}, {Variant(), int16_t{0}, 0},
        {true, int16_t{-1}, 0}, {Moneda{10000}, int16_t{1}, 0}, {Moneda{5000}, 0.5, 0},
        {Moneda{INT64_MAX}, Moneda{INT64_MAX - 1}, 1}, {0.1f, 0.1, 1}, {Variant::Nulo(), int16_t{1}, std::nullopt},
        {Variant::Falta(), int16_t{1}, std::nullopt, 13}, {Variant::Nada(), int16_t{1}, std::nullopt, 91},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(Describe(c.a) + " frente a " + Describe(c.b));
        std::optional<int> r;
        bool igual = false;
        EXPECT_EQ(NumeroDeError([&] { r = Compara(c.a, c.b); }), c.error);
        EXPECT_EQ(NumeroDeError([&] { igual = c.a == c.b; }), c.error);
        if (c.error != 0) continue;
        EXPECT_EQ(r, c.esperado);
        EXPECT_EQ(igual, c.esperado == 0);
        // Swapping the sides reverses the order.
        EXPECT_EQ(Compara(c.b, c.a), c.esperado ? std::optional<int>(-*c.esperado) : std::nullopt);
    }
}

TEST(Variant, IdenticoYNumerico) {
    const auto o1 = std::make_shared<ObjetoConValor>(Variant());
    const auto o2 = std::make_shared<ObjetoConValor>(Variant());
    const std::tuple<Variant, Variant, bool> identicos[] = {
        {int16_t{1}, int16_t{1}, true}, {int16_t{1}, int32_t{1}, false}, {0.0, -0.0, false}, {"a", "a", true},
        {"a", "A", false}, {o1, o1, true}, {o1, o2, false}, {Variant::Falta(), Variant::Error(448), true},
        {Variant::Nulo(), Variant::Nulo(), true}, {Moneda{5}, Moneda{5}, true},
    };
    for (const auto& [a, b, esperado] : identicos)
        EXPECT_EQ(a.identico(b), esperado) << Describe(a) << " / " << Describe(b);
    // Its type and number are identical to Error(448)'s just above.
    EXPECT_TRUE(Variant::Falta().esFalta());
    EXPECT_FALSE(Variant::Error(13).esFalta());

    const std::pair<Variant, bool> numericos[] = {
        {int16_t{1}, true}, {int32_t{1}, true}, {1.0f, true}, {1.0, true}, {Moneda{1}, true},
        {Variant::Fecha(1), true}, {true, true}, {Variant(), false}, {Variant::Nulo(), false}, {"1", false},
        {Variant::Falta(), false}, {Variant::Nada(), false},
    };
    for (const auto& [valor, esperado] : numericos) EXPECT_EQ(valor.esNumerico(), esperado) << Describe(valor);
}

TEST(Errores, DescripcionesYTexto) {
    // The ends of the sorted table and numbers outside it.
    const std::pair<int32_t, const char*> casos[] = {
        {5, "Llamada a procedimiento o argumento no válido"}, {482, "Error de impresora"},
        {8, "Error definido por la aplicación o el objeto"}, {9999, "Error definido por la aplicación o el objeto"},
        {0, "Error definido por la aplicación o el objeto"},
    };
    for (auto [numero, texto] : casos) {
        EXPECT_EQ(DescripcionDeError(numero).toStdString(), texto) << numero;
        EXPECT_EQ(ErrorDeAutomatizacion(numero).descripcion().toStdString(), texto) << numero;
    }
    const ErrorDeAutomatizacion sinOrigen(13);
    EXPECT_STREQ(sinOrigen.what(), "13: No coinciden los tipos");
    EXPECT_TRUE(sinOrigen.origen().isEmpty());
    EXPECT_STREQ(ErrorDeAutomatizacion(94, QStringLiteral("Impresora")).what(),
                 "94: Uso no válido de Null (Impresora)");
    const ErrorDeAutomatizacion propio(482, QStringLiteral("Sin papel"), QStringLiteral("Impresora"));
    EXPECT_EQ(propio.numero(), 482);
    EXPECT_EQ(propio.descripcion().toStdString(), "Sin papel");
    EXPECT_EQ(propio.origen().toStdString(), "Impresora");
    EXPECT_STREQ(propio.what(), "482: Sin papel (Impresora)");
    // Lanza raises exactly that: number, standard text, source.
    try {
        Lanza(11, QStringLiteral("ParamData"));
    } catch (const ErrorDeAutomatizacion& e) {
        EXPECT_STREQ(e.what(), "11: División por cero (ParamData)");
        EXPECT_EQ(e.origen().toStdString(), "ParamData");
    }
}

}  // namespace
}  // namespace kalo
