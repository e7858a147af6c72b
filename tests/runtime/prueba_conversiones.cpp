// Values: how they convert, read and write text, and how they add, compare
// and report errors.

#include "comun/prueba.h"

#include <thread>

namespace {

std::string U8(const QString& s) { return s.toStdString(); }

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Its default member is itself.
class ObjetoCircular : public Objeto, public std::enable_shared_from_this<ObjetoCircular> {
public:
    Variant Invoca(int32_t, Llamada, std::span<Variant>) override { return shared_from_this(); }
};

// The same tables run with "." and with "," as the decimal separator; the
// suite puts the locale back after each test.
class PorLocal : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override { EstableceLocalDelUsuario(QLocale(QString::fromLatin1(GetParam()))); }

    template <class T>
    T Segun(T enUs, T esEs) const {
        return std::string_view(GetParam()) == "en_US" ? enUs : esEs;
    }
};

INSTANTIATE_TEST_SUITE_P(Locales, PorLocal, ::testing::Values("en_US", "es_ES"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(PorLocal, TextoDeValores) {
    const std::tuple<Variant, const char*, const char*> casos[] = {
        {1.0 / 3, "0.333333333333333", "0,333333333333333"},
        {1e15, "1E+15", "1E+15"},
        {-1e-300, "-1E-300", "-1E-300"},
        {123456789012345.0, "123456789012345", "123456789012345"},
        {1234567890123456.0, "1.23456789012346E+15", "1,23456789012346E+15"},
        {0.0001, "0.0001", "0,0001"},
        {-0.0, "0", "0"},
        {1.0f / 3, "0.3333333", "0,3333333"},
        {1e7f, "1E+07", "1E+07"},
        {Variant::Fecha(43835), "1/5/2020", "5/1/2020"},
        {Variant::Fecha(43835.5625), "1/5/2020 1:30:00 PM", "5/1/2020 13:30:00"},
        {Variant::Fecha(0.5625), "1:30:00 PM", "13:30:00"},
        {Moneda{125000}, "12.5", "12,5"},
        {Moneda{-1}, "-0.0001", "-0,0001"},
        {Moneda{30000}, "3", "3"},
        {Moneda{INT64_MIN}, "-922337203685477.5808", "-922337203685477,5808"},
        {int16_t{-32768}, "-32768", "-32768"},
        {int32_t{2147483647}, "2147483647", "2147483647"},
        {true, "True", "True"},
        {false, "False", "False"},
        {Variant(), "", ""},
        {"texto", "texto", "texto"},
        {Variant::Falta(), "Error 448", "Error 448"},
    };
    for (const auto& [valor, enUs, esEs] : casos) EXPECT_EQ(U8(CStr(valor)), Segun(enUs, esEs)) << "se esperaba " << enUs;
}

TEST_P(PorLocal, LecturaDeTextoNumerico) {
    // Text, the number read in en_US and in es_ES, and the error in each.
    const std::tuple<const char*, double, double, int32_t, int32_t> casos[] = {
        {"1,234.5", 1234.5, 0, 0, 13},
        {"1.234,5", 0, 1234.5, 13, 0},
        {"1.5", 1.5, 15, 0, 0},  // "." groups digits in es_ES
        {"1,2,3", 123, 0, 0, 13},
        {"  -12\t", -12, -12, 0, 0},
        {"12-", -12, -12, 0, 0},
        {"+ 3", 3, 3, 0, 0},
        {"(5)", -5, -5, 0, 0},
        {"$5", 5, 0, 0, 13},
        {"(5 €)", 0, -5, 13, 0},
        {"1d-2", 0.01, 0.01, 0, 0},
        {"2.5e-1", 0.25, 2.5, 0, 0},
        {"&HFFFF", -1, -1, 0, 0},
        {"&h1f", 31, 31, 0, 0},
        {"&O17", 15, 15, 0, 0},
        {"&HFFFFF", 1048575, 1048575, 0, 0},
        {"&H80000000", -2147483648.0, -2147483648.0, 0, 0},
        {"&HG", 0, 0, 13, 13},
        {"&H123456789", 0, 0, 13, 13},
        {"1E400", 0, 0, 6, 6},
        {"   ", 0, 0, 13, 13},
        {"1E", 0, 0, 13, 13},
        {"(5", 0, 0, 13, 13},
        {"-(5)", 0, 0, 13, 13},
        {"--5", 0, 0, 13, 13},
    };
    for (const auto& [texto, enUs, esEs, errorEnUs, errorEsEs] : casos) {
        SCOPED_TRACE(texto);
        const int32_t error = Segun(errorEnUs, errorEsEs);
        double leido = 0;
        EXPECT_EQ(NumeroDeError([&] { leido = CDbl(texto); }), error);
        if (error == 0) { EXPECT_DOUBLE_EQ(leido, Segun(enUs, esEs)); }
        EXPECT_EQ(LeeNumero(QString::fromUtf8(texto)).has_value(), error != 13);
    }
}

TEST_P(PorLocal, FechasDeTexto) {
    // Text, serial, and the one locale that reads it (both when null).
    const std::tuple<const char*, double, const char*> casos[] = {
        {"2020-01-05", 43835, nullptr},
        {"2020-01-05 13:30", 43835.5625, nullptr},
        {"1/5/2020", 43835, "en_US"},
        {"1/5/2020 1:30 PM", 43835.5625, "en_US"},
        {"5/1/2020", 43835, "es_ES"},
        {"5.1.2020", 43835, "es_ES"},
        {"5/1/20", 43835, "es_ES"},
        {"domingo, 5 de enero de 2020", 43835, "es_ES"},
        {"January 5, 2020", 43835, nullptr},
        {"5-Jan-2020", 43835, nullptr},
        {"13:30:00", 0.5625, nullptr},
        {"1:30:00 PM", 0.5625, nullptr},
        {"12:00 AM", 0, nullptr},
        {"1900-01-01", 2, nullptr},
        {"1899-12-29 12:00", -1.5, nullptr},
    };
    for (const auto& [texto, esperado, soloEn] : casos) {
        if (soloEn && std::string_view(soloEn) != GetParam()) continue;
        double serial = kNaN;
        EXPECT_EQ(NumeroDeError([&] { serial = CDate(texto); }), 0) << texto;
        EXPECT_DOUBLE_EQ(serial, esperado) << texto;
    }
    for (const char* invalido : {"1.5", "1,5", "2020", "abc", "2020-02-30", "25:00", "13/13/2020", "5 enero enero"})
        EXPECT_EQ(NumeroDeError([&] { CDate(invalido); }), 13) << invalido;
    // Text written from a date reads back as the same date.
    for (double serial : {43835.5625, 0.5625, -1.5, -700.25, 2958465.0, -657434.0, 45000.999988425923}) {
        const QString texto = CStr(Variant::Fecha(serial));
        EXPECT_NEAR(CDate(texto), serial, 0.5 / 86400) << U8(texto);
    }
    EXPECT_EQ(NumeroDeError([] { CStr(Variant::Fecha(3e6)); }), 6);
}

// Seen from other threads too; with no replacement it is the process's own.
TEST_P(PorLocal, LocalDelUsuario) {
    QString texto;
    std::thread hilo([&] { texto = CStr(2.5); });
    hilo.join();
    EXPECT_EQ(U8(texto), Segun("2.5", "2,5"));
    EXPECT_EQ(LocalDelUsuario().name(), Segun(QStringLiteral("en_US"), QStringLiteral("es_ES")));
    EstableceLocalDelUsuario(std::nullopt);
    EXPECT_EQ(LocalDelUsuario().name(), QLocale::system().name());
}

template <class T>
struct Caso {
    Variant valor;
    T esperado;  // meaningful only when error is 0
    int32_t error;
};

// Each value converts to its result or raises its error.
template <class T, size_t N, class F>
void Comprueba(const Caso<T> (&casos)[N], F convierte) {
    for (size_t i = 0; i < N; ++i) {
        SCOPED_TRACE(testing::Message() << "fila " << i);
        T resultado{};
        EXPECT_EQ(NumeroDeError([&] { resultado = convierte(casos[i].valor); }), casos[i].error);
        if (casos[i].error == 0) {
            EXPECT_EQ(resultado, casos[i].esperado);
        }
    }
}

TEST(RedondeaPar, MitadesAlPar) {
    const std::pair<double, double> casos[] = {
        {0.5, 0},
        {-2.5, -2},
        {-3.5, -4},
        {2.6, 3},
        {0.49999999999999994, 0},
        {4503599627370497.0, 4503599627370497.0},
    };
    for (auto [x, esperado] : casos)
        EXPECT_EQ(RedondeaPar(x), esperado) << x;
    EXPECT_TRUE(std::isnan(RedondeaPar(kNaN)));
}

TEST(ConversionAEntero, RedondeoYLimites) {
    // Value, CInt's result and error, CLng's result and error (a result counts only without its error).
    const std::tuple<Variant, int32_t, int32_t, int32_t, int32_t> casos[] = {
        {2.5, 2, 0, 2, 0},
        {32767.4, 32767, 0, 32767, 0},
        {32767.5, 0, 6, 32768, 0},
        {-32768.5, -32768, 0, -32768, 0},
        {-32768.6, 0, 6, -32769, 0},
        {2147483646.5, 0, 6, 2147483646, 0},
        {2147483647.5, 0, 6, 0, 6},
        {-2147483648.5, 0, 6, INT32_MIN, 0},
        {Moneda{25000}, 2, 0, 2, 0},
        {Moneda{35000}, 4, 0, 4, 0},
        {Moneda{-25000}, -2, 0, -2, 0},
        {Moneda{-25001}, -3, 0, -3, 0},
        {true, -1, 0, -1, 0},
        {Variant(), 0, 0, 0, 0},
        {kNaN, 0, 6, 0, 6},
        {Variant::Nulo(), 0, 94, 0, 94},
        {Variant::Falta(), 0, 13, 0, 13},
        {Variant::Nada(), 0, 91, 0, 91},
    };
    for (const auto& [valor, cint, errorCInt, clng, errorCLng] : casos) {
        SCOPED_TRACE(testing::Message() << "tipo " << int(valor.tipo()) << ", cint " << cint);
        int32_t leidoCInt = 0, leidoCLng = 0;
        EXPECT_EQ(NumeroDeError([&] { leidoCInt = CInt(valor); }), errorCInt);
        EXPECT_EQ(NumeroDeError([&] { leidoCLng = CLng(valor); }), errorCLng);
        if (errorCInt == 0) { EXPECT_EQ(leidoCInt, cint); }
        if (errorCLng == 0) { EXPECT_EQ(leidoCLng, clng); }
    }
}

TEST(ConversionABooleano, TextosYNumeros) {
    const Caso<bool> casos[] = {
        {" true ", true, 0},
        {"VERDADERO", true, 0},
        {"Falso", false, 0},
        {"false", false, 0},
        {"0", false, 0},
        {"-5", true, 0},
        {"si", false, 13},
        {Variant(), false, 0},
        {0.001, true, 0},
        {Moneda{1}, true, 0},
        {Variant::Nulo(), false, 94},
        {Variant::Falta(), false, 13},
    };
    Comprueba(casos, CBool);
}

TEST(ConversionAMoneda, RedondeoDecimalYLimites) {
    prueba::ConLocal local("en_US");
    const Caso<int64_t> casos[] = {
        {2.00005, 20000, 0},  // the decimal half, not the binary value below it
        {2.00015, 20002, 0},
        {-1.23455, -12346, 0},
        {1.1f, 11000, 0},
        {922337203685477.0, 9223372036854770000, 0},
        {"922337203685477.5807", INT64_MAX, 0},
        {"-922337203685477.5808", INT64_MIN, 0},
        {"922337203685477.5808", 0, 6},
        {"0.00025", 2, 0},
        {"0.000250001", 3, 0},
        {1e15, 0, 6},
        {kNaN, 0, 6},
        {int32_t{-7}, -70000, 0},
        {true, -10000, 0},
        {"x", 0, 13},
        {Variant::Nulo(), 0, 94},
    };
    Comprueba(casos, [](const Variant& v) { return CCur(v).escalado; });
}

TEST(ConversionAFecha, NumerosEIntervalo) {
    const Caso<double> casos[] = {
        {2.5, 2.5, 0},
        {true, -1, 0},
        {Variant(), 0, 0},
        {2958465.99, 2958465.99, 0},
        {2958466.0, 0, 6},
        {-657434.0, -657434, 0},
        {-657435.0, 0, 6},
        {kNaN, 0, 6},
        {Variant::Nulo(), 0, 94},
        {Variant::Falta(), 0, 13},
    };
    Comprueba(casos, CDate);
}

TEST(ConversionDeObjetos, PorSuMiembroPredeterminado) {
    prueba::ConLocal local("en_US");
    auto numero = std::make_shared<ObjetoConValor>(Variant("12.5"));
    auto texto = std::make_shared<ObjetoConValor>(Variant(1.5));
    auto anidado = std::make_shared<ObjetoConValor>(Variant(numero));
    EXPECT_DOUBLE_EQ(CDbl(numero), 12.5);
    EXPECT_EQ(CInt(numero), 12);
    EXPECT_EQ(U8(CStr(texto)), "1.5");
    EXPECT_TRUE(CBool(texto));
    EXPECT_EQ(CCur(anidado).escalado, 125000);

    const Variant sinValor(std::make_shared<Objeto>());
    const Variant circular(std::make_shared<ObjetoCircular>());
    struct Caso {
        const Variant& valor;
        int32_t error;
    };
    for (const Caso& c : {
             Caso{Variant::Nada(), 91},
             Caso{sinValor, 438},
             Caso{circular, 13},
         }) {
        EXPECT_EQ(NumeroDeError([&] { CStr(c.valor); }), c.error);
        EXPECT_EQ(NumeroDeError([&] { CDbl(c.valor); }), c.error);
        EXPECT_EQ(NumeroDeError([&] { CBool(c.valor); }), c.error);
        EXPECT_EQ(NumeroDeError([&] { CDate(c.valor); }), c.error);
    }
}

TEST(ConversionASencillo, DesbordamientoYNull) {
    EXPECT_EQ(CSng(1e38), 1e38f);
    EXPECT_EQ(NumeroDeError([] { CSng(1e39); }), 6);
    EXPECT_EQ(NumeroDeError([] { CSng(-1e39); }), 6);
    EXPECT_EQ(CSng(Moneda{15000}), 1.5f);
    EXPECT_EQ(NumeroDeError([] { CStr(Variant::Nulo()); }), 94);
}

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
        {"1", '+', "2", "12"},
        {"1.5", '+', int16_t{2}, 3.5},
        {"7", '-', "2", 5.0},
        {"x", '+', int16_t{1}, {}, 13},
        {"a", '+', Variant::Nulo(), Variant::Nulo()},
        {Variant::Nulo(), '/', int16_t{0}, Variant::Nulo()},
        {Variant(), '+', Variant(), int16_t{0}},
        {Variant(), '+', "a", "a"},
        {"a", '+', Variant(), "a"},
        {Variant(), '+', int32_t{5}, int32_t{5}},
        {true, '+', true, int16_t{-2}},
        {int16_t{32766}, '+', int16_t{1}, int16_t{32767}},
        {int16_t{32767}, '+', int16_t{1}, int32_t{32768}},
        {int16_t{-32768}, '-', int16_t{1}, int32_t{-32769}},
        {int32_t{2147483647}, '+', int16_t{1}, 2147483648.0},
        {1.5f, '+', int16_t{1}, 2.5f},
        {1.5f, '+', int32_t{1}, 2.5},
        {3e38f, '*', int16_t{2}, double{3e38f} * 2},
        {1.25, '+', int16_t{1}, 2.25},
        {1e308, '*', 10.0, {}, 6},
        {Moneda{15000}, '+', int16_t{1}, Moneda{25000}},
        {Moneda{15000}, '+', 0.00005, Moneda{15000}},
        {Moneda{15000}, '*', int16_t{3}, Moneda{45000}},
        {Moneda{3}, '*', Moneda{5000}, Moneda{2}},  // to even
        {Moneda{10000}, '*', 0.25, Moneda{2500}},
        {Moneda{INT64_MAX}, '+', int16_t{1}, {}, 6},
        {Moneda{10000}, '/', Moneda{40000}, 0.25},
        {Variant::Fecha(10), '+', int16_t{1}, Variant::Fecha(11)},
        {Variant::Fecha(10), '-', Variant::Fecha(3), 7.0},
        {Variant::Fecha(2958465), '+', int16_t{2}, {}, 6},
        {int16_t{7}, '/', int16_t{2}, 3.5},
        {int16_t{1}, '/', int16_t{0}, {}, 11},
        {0.0, '/', int16_t{0}, {}, 6},
        {Variant::Falta(), '+', int16_t{1}, {}, 13},
        {objeto, '+', int16_t{1}, int16_t{6}},
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
        {int16_t{1}, 2.0, -1},
        {"a", "B", 1},  // binary: lower case after upper case
        {"abc", "ab", 1},
        {"10", int16_t{9}, 1},  // numeric text beside a number compares as a number
        {"10", "9", -1},
        {"abc", int32_t{1000}, 1},
        {Variant(), "a", -1},
        {Variant(), int16_t{0}, 0},
        {true, int16_t{-1}, 0},
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
    for (const auto& [a, b, esperado] : identicos)
        EXPECT_EQ(a.identico(b), esperado) << Describe(a) << " / " << Describe(b);
    // Its type and number are identical to Error(448)'s just above.
    EXPECT_TRUE(Variant::Falta().esFalta());
    EXPECT_FALSE(Variant::Error(13).esFalta());

    const std::pair<Variant, bool> numericos[] = {
        {int16_t{1}, true},
        {int32_t{1}, true},
        {1.0f, true},
        {1.0, true},
        {Moneda{1}, true},
        {Variant::Fecha(1), true},
        {true, true},
        {Variant(), false},
        {Variant::Nulo(), false},
        {"1", false},
        {Variant::Falta(), false},
        {Variant::Nada(), false},
    };
    for (const auto& [valor, esperado] : numericos) EXPECT_EQ(valor.esNumerico(), esperado) << Describe(valor);
}

TEST(Errores, DescripcionesYTexto) {
    // The ends of the sorted table and numbers outside it.
    const std::pair<int32_t, const char*> casos[] = {
        {5, "Llamada a procedimiento o argumento no válido"},
        {482, "Error de impresora"},
        {8, "Error definido por la aplicación o el objeto"},
        {9999, "Error definido por la aplicación o el objeto"},
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
    QString descripcion, origen;
    EXPECT_EQ(NumeroDeError([] { Lanza(11, QStringLiteral("ParamData")); }, &descripcion, &origen), 11);
    EXPECT_EQ(descripcion.toStdString(), "División por cero");
    EXPECT_EQ(origen.toStdString(), "ParamData");
}

}  // namespace
