// Format, the amount in words, the random sequence and the text helpers.

#include "comun/prueba.h"

#include <QDate>

#include "text/aleatorio.h"
#include "text/formato.h"
#include "text/importe_en_letra.h"

namespace {

std::string Texto(const Variant& v) { return v.texto().toStdString(); }

Variant FechaHora(int ano, int mes, int dia, int h = 0, int n = 0, int s = 0) {
    const double dias = static_cast<double>(QDate(1899, 12, 30).daysTo(QDate(ano, mes, dia)));
    return Variant::Fecha(dias + (h * 3600 + n * 60 + s) / 86400.0);
}

const Variant kMartes = FechaHora(2024, 3, 5, 14, 7, 9);

struct Caso {
    Variant valor;
    const char* formato;
    const char* enUS;  // nullptr for Null
    const char* esES = nullptr;  // when it differs
};

// Each case in both locales.
template <size_t N>
void Comprueba(const Caso (&casos)[N]) {
    for (const char* local : {"en_US", "es_ES"}) {
        ConLocal con(local);
        for (const Caso& c : casos) {
            SCOPED_TRACE(testing::Message() << local << " " << c.formato);
            const Variant r = Formato(c.valor, Variant(c.formato));
            const char* esperado = c.esES && std::string_view(local) == "es_ES" ? c.esES : c.enUS;
            if (!esperado) {
                EXPECT_TRUE(r.esNulo());
            } else {
                ASSERT_TRUE(r.esTexto());
                EXPECT_EQ(Texto(r), esperado);
            }
        }
    }
}

TEST(Formato, PatronesNumericos) {
    const Caso casos[] = {
        {1234567.891, "#,##0.00", "1,234,567.89", "1.234.567,89"},
        {0.125, "0.0%", "12.5%", "12,5%"},
        {7, "0\\%", "7%", "7%"},
        {0.5, "#.##", ".5", ",5"},
        {5, "#.##", "5.", "5,"},
        {5, "0##", "005", "005"},
        {123456, "##", "123456", "123456"},
        {123456789, "000-00-0000", "123-45-6789", "123-45-6789"},
        {1234567, "#,##0,", "1,235", "1.235"},
        {1234567890, "0,,", "1235", "1235"},
        {1234.5, "0.0#", "1234.5", "1234,5"},
        {12345, "0.00E+00", "1.23E+04", "1,23E+04"},
        {0.00123, "0.00E-00", "1.23E-03", "1,23E-03"},
        {12345, "0.00e-00", "1.23e04", "1,23e04"},
        {99999, "0.0E+0", "1.0E+5", "1,0E+5"},
        {0.0, "0.00E+00", "0.00E+00", "0,00E+00"},
        {12345, "0.00E+x", "1.23E+4x", "1,23E+4x"},  // past E+ only 0 and # are digits
        {12345, "0.00E+x00", "1.23E+04x", "1,23E+04x"},
        {12345, "0E+0%", "1E+4%", "1E+4%"},
        {1.5e-100, "0.0e-#", "1.5e-100", "1,5e-100"},
        {-5, "$0.00", "-$5.00", "-$5,00"},
        {3.14159, "\"pi = \"0.00", "pi = 3.14", "pi = 3,14"},
        {42, "\\#0", "#42", "#42"},
        {1e20, "0", "100000000000000000000", "100000000000000000000"},
        {true, "0", "-1", "-1"},
        {Variant(), "0.00", "0.00", "0,00"},
        {Variant::Fecha(45000.5), "0.00", "45000.50", "45000,50"},
        {Moneda{123456}, "0.000", "12.346", "12,346"},
        // Halves away from zero, unlike the whole-number conversions, on the
        // digits the runtime shows: the double nearest 1.005 is just under it.
        {-2.5, "0", "-3", "-3"},
        {1.005, "0.00", "1.01", "1,01"},
        {9.996, "0.00", "10.00", "10,00"},
        {-0.001, "0.00", "-0.00", "-0,00"},
        {0.1f, "0.000000000", "0.100000000", "0,100000000"},
    };
    Comprueba(casos);
}

TEST(Formato, Secciones) {
    const Caso casos[] = {
        {-5, "0;(0)", "(5)"},
        {0, "0;(0)", "0"},
        {Variant(), "0;-0;\"cero\"", "cero"},
        {-5, "0;;\"cero\"", "-5"},
        {0, "0;(0);", "0"},
        {-0.001, "0.00;(0.00);\"cero\"", "(0.00)", "(0,00)"},
        {Variant::Nulo(), "0;(0);\"cero\";\"nulo\"", "nulo"},
        {Variant::Nulo(), "0;(0);\"cero\"", nullptr},
        {Variant::Nulo(), "dd/mm/yyyy", nullptr},
        {Variant::Nulo(), "Currency", nullptr},
        {Variant::Nulo(), "@@", nullptr},
        {Variant::Nulo(), "@;\"(nada)\"", "(nada)"},
        {"", "@;\"(nada)\"", "(nada)"},
    };
    Comprueba(casos);
}

TEST(Formato, FormatosConNombre) {
    const Caso casos[] = {
        {1234.5, "Currency", "$1,234.50", "1.234,50 €"},
        {-1234.5, "Currency", "($1,234.50)", "-1.234,50 €"},
        {0.125, "currency", "$0.13", "0,13 €"},
        {1234.5, "Fixed", "1234.50", "1234,50"},
        {-1234.5, "Standard", "-1,234.50", "-1.234,50"},
        {0.1234, "Percent", "12.34%", "12,34%"},
        {1234.5, "Scientific", "1.23E+03", "1,23E+03"},
        {1234.5, "General Number", "1234.5", "1234,5"},
        {true, "General Number", "-1", "-1"},
        {5, "yes/no", "Yes", "Sí"},
        {true, "True/False", "True", "Verdadero"},
        {-0.5, "On/Off", "On", "Activado"},
        {"0", "On/Off", "Off", "Desactivado"},
        {"abc", "Fixed", "abc", "abc"},
        {kMartes, "General Date", "3/5/2024 2:07:09 PM", "5/3/2024 14:07:09"},
        {kMartes, "Long Date", "Tuesday, March 5, 2024", "martes, 5 de marzo de 2024"},
        {kMartes, "Medium Date", "05-Mar-24", "05-mar-24"},
        {kMartes, "Short Date", "3/5/2024", "5/3/2024"},
        {kMartes, "Long Time", "2:07:09 PM", "14:07:09"},
        {kMartes, "Medium Time", "02:07 PM", "02:07 p. m."},
        {kMartes, "Short Time", "14:07", "14:07"},
    };
    Comprueba(casos);
}

TEST(Formato, PatronesDeFecha) {
    const Caso casos[] = {
        {kMartes, "dddd d \"de\" mmmm \"de\" yyyy hh:nn:ss AM/PM", "Tuesday 5 de March de 2024 02:07:09 PM",
         "martes 5 de marzo de 2024 02:07:09 PM"},
        {kMartes, "d/m/yy", "5/3/24", "5/3/24"},
        {kMartes, "DD/MM/YYYY HH:NN", "05/03/2024 14:07", "05/03/2024 14:07"},
        {kMartes, "ddd mmm", "Tue Mar", "mar mar"},
        {kMartes, "w ww q y", "3 10 1 65", "3 10 1 65"},
        {kMartes, "h:m:s", "14:7:9", "14:7:9"},
        {kMartes, "mm", "03", "03"},
        {kMartes, "h a/p|h A/P|hh am/pm|h AMPM", "2 p|2 P|02 pm|2 PM", "2 p|2 P|02 pm|2 p. m."},
        {kMartes, "\\d\\d dd \"dd\"", "dd 05 dd", "dd 05 dd"},
        {FechaHora(2024, 3, 5), "c", "3/5/2024", "5/3/2024"},
        {FechaHora(1899, 12, 30, 9, 5), "c", "9:05:00 AM", "9:05:00"},
        {FechaHora(2023, 1, 1, 0, 30), "h:nn AM/PM", "12:30 AM", "12:30 AM"},
        {FechaHora(2023, 1, 1, 12), "h:nn AM/PM", "12:00 PM", "12:00 PM"},
        {Variant(), "yyyy-mm-dd", "1899-12-30", "1899-12-30"},
        {45356, "yyyy-mm-dd", "2024-03-05", "2024-03-05"},
        {"45356", "yyyy-mm-dd", "2024-03-05", "2024-03-05"},
        {"hola", "dd/mm/yyyy", "hola", "hola"},
        // Weeks start on Sunday; the first holds 1 January.
        {FechaHora(2023, 1, 1), "ww w", "1 1"},
        {FechaHora(2024, 1, 6), "ww", "1"},
        {FechaHora(2024, 1, 7), "ww", "2"},
        {FechaHora(2024, 12, 31), "ww y", "53 366"},
        {FechaHora(2024, 12, 1), "q", "4"},
    };
    Comprueba(casos);

    ConLocal aleman("de_DE");
    EXPECT_EQ(Texto(Formato(kMartes, "dd/mm/yy hh:nn")), "05.03.24 14:07");
}

// A time that rounds up to 24:00 is 00:00 of the next calendar day, which
// before the base date is the day nearer to it; CStr and Format agree.
TEST(Formato, FechasQueRedondeanAMedianoche) {
    ConLocal local("en_US");
    const struct {
        double serial;
        const char* formato;
        const char* cstr;
    } casos[] = {
        {45356.99999, "2024-03-05 23:59:59", "3/5/2024 11:59:59 PM"},
        {45356.999999, "2024-03-06 00:00:00", "3/6/2024"},
        {-0.9999999, "1899-12-31 00:00:00", "12/31/1899"},
        {-1.25, "1899-12-29 06:00:00", "12/29/1899 6:00:00 AM"},
        {-1.99999, "1899-12-29 23:59:59", "12/29/1899 11:59:59 PM"},
        {-1.9999999, "1899-12-30 00:00:00", "12:00:00 AM"},
        {-2.9999999, "1899-12-29 00:00:00", "12/29/1899"},
    };
    for (const auto& c : casos) {
        const Variant fecha = Variant::Fecha(c.serial);
        EXPECT_EQ(Texto(Formato(fecha, "yyyy-mm-dd hh:nn:ss")), c.formato) << c.serial;
        EXPECT_EQ(CStr(fecha).toStdString(), c.cstr) << c.serial;
    }
}

TEST(Formato, PatronesDeTexto) {
    const Caso casos[] = {
        {"ab", "@@@@", "  ab"},
        {"ab", "!@@@@", "ab  "},
        {"ab", "&&&&", "ab"},
        {"abcdef", "@@@", "abcdef"},
        {"abc", "@-@", "a-bc"},  // left over: after the literals
        {"abc", "(@)", "(a)bc"},
        {"abc", "!(@)", "(a)bc"},
        {"HoLa", "><", "HOLA"},  // the first case mark holds
        {"HoLa", "<@@@@>", "hola"},
        {"5551234", "@@@-@@@@", "555-1234"},
        {"123", "&&&-&&&&", "-123"},
        {"abc", ">\"x\"@@@@", "x ABC"},
        {"a;b", "\\@@@@", "@a;b"},
        {12, "@@@@", "  12"},
        {"hola", "\"dice: \"", "dice: hola"},
    };
    Comprueba(casos);
}

TEST(Formato, SinFormatoYTextosDeEntrada) {
    const Caso casos[] = {
        {1234.5, "", "1234.5", "1234,5"},
        {kMartes, "", "3/5/2024 2:07:09 PM", "5/3/2024 14:07:09"},
        {Variant(), "", "", ""},
        {"hola", "0.00", "hola", "hola"},
        {"  -3 ", "0;(0)", "(3)", "(3)"},
        {"abc", "\"x\"", "xabc", "xabc"},
        {-4, "\"x\"", "-x", "-x"},
        {"1,234.5", "#,##0.00", "1,234.50", "1,234.5"},  // read in the user's locale
        {"1.234,5", "#,##0.00", "1.234,5", "1.234,50"},
        {"3/5/2024", "yyyy-mm-dd", "2024-03-05", "2024-05-03"},
    };
    Comprueba(casos);
    EXPECT_EQ(Texto(Formato(1234.5, Variant::Falta())), Texto(Formato(1234.5, "")));
    EXPECT_TRUE(Formato(Variant::Nulo(), Variant::Falta()).esNulo());
    EXPECT_EQ(Texto(Formato(5, 0)), "5");
    EXPECT_EQ(NumeroDeError([] { Formato(5, Variant::Nulo()); }), 94);
    EXPECT_EQ(NumeroDeError([] { Formato(1e10, "dd"); }), 6);
    EXPECT_EQ(NumeroDeError([] { Formato(HUGE_VAL, "0"); }), 6);
}

TEST(Ayudas, RellenoYRepeticion) {
    Impresora imp;
    // PadL pads on the left just as PadR does: hosts rely on the sameness.
    const std::tuple<Variant, Variant, const char*> rellenos[] = {
        {"ab", 5, "   ab"},
        {"abcdef", 3, "abcdef"},
        {12, 4, "  12"},
        {"x", -3, "x"},
        {"ab", 4.5, "  ab"},    // 2.5 halves to 2
        {"ab", 5.5, "    ab"},  // 3.5 halves to 4
    };
    for (const auto& [texto, ancho, esperado] : rellenos) {
        EXPECT_EQ(imp.PadR(texto, ancho), QString::fromLatin1(esperado)) << esperado;
        EXPECT_EQ(imp.PadL(texto, ancho), QString::fromLatin1(esperado)) << esperado;
    }
    const std::tuple<Variant, Variant, const char*> repeticiones[] = {
        {"-", 0, ""},
        {"-", -2, ""},
        {"ab", 3, "ababab"},
        {"ab", 2.5, "abab"},
        {"=", "3", "==="},
        {7, 2, "77"},
        {Variant::Nulo(), 4, ""},
    };
    for (const auto& [pieza, veces, esperado] : repeticiones)
        EXPECT_EQ(imp.Replicate(pieza, veces), QString::fromLatin1(esperado)) << esperado;
    EXPECT_EQ(NumeroDeError([&] { imp.PadR(Variant::Nulo(), 3); }), 94);
    EXPECT_EQ(NumeroDeError([&] { imp.Replicate("-", "muchas"); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Replicate("-", Variant::Nulo()); }), 94);
}

TEST(Ayudas, ComillasInsercionYReemplazo) {
    Impresora imp;
    EXPECT_EQ(imp.Block(u"a b"_s), u"\"a b\""_s);
    EXPECT_EQ(imp.Quote(u"a b"_s), u"'a b'"_s);
    // What to insert, what to find, where: once, and every time.
    const std::tuple<QString, QString, QString, QString, QString> casos[] = {
        {u"X"_s, u"b"_s, u"abcabc"_s, u"aXcabc"_s, u"aXcaXc"_s},
        {u""_s, u"ab"_s, u"abcabc"_s, u"cabc"_s, u"cc"_s},
        {u"X"_s, u"z"_s, u"abc"_s, u"abc"_s, u"abc"_s},
        {u"X"_s, u""_s, u"abc"_s, u"abc"_s, u"abc"_s},
        {u"aa"_s, u"aaa"_s, u"aaaaaa"_s, u"aaaaa"_s, u"aa"_s},
        {u"cd"_s, u"abc"_s, u"abc"_s, u"cd"_s, u"cd"_s},
    };
    for (const auto& [inserta, busca, destino, unaVez, todas] : casos) {
        QString variable = destino;
        EXPECT_EQ(imp.Inserta(inserta, busca, destino), unaVez) << destino.toStdString();
        EXPECT_EQ(imp.Cambia(inserta, busca, variable), todas) << destino.toStdString();
        EXPECT_EQ(variable, todas) << destino.toStdString();
    }
}

TEST(Ayudas, LineasDeUnTexto) {
    Impresora imp;
    const Variant texto(u"uno\r\ndos\nt\rres"_s);
    const std::pair<Variant, const char*> lineas[] = {
        {1, "uno"},
        {2, "dos"},
        {3, "tres"},
        {4, ""},
        {-1, ""},
        {"2", "dos"},
        {1.5, ""},
        {"dos", ""},
    };
    for (const auto& [linea, esperado] : lineas) EXPECT_EQ(imp.strLinea(texto, linea), QString::fromLatin1(esperado));
    EXPECT_EQ(imp.strLinea(u"uno\r\ndos"_s, 3), u""_s);
    EXPECT_EQ(imp.strLinea(u"solo"_s, 1), u"solo"_s);
    const std::pair<Variant, int32_t> cuentas[] = {
        {u""_s, 0},
        {u"sin salto"_s, 1},
        {u"a\nb"_s, 2},
        {u"a\nb\n"_s, 3},
        {Variant(), 0},
        {Variant::Nulo(), 0},
        {12345, 1},
    };
    for (const auto& [valor, cuantas] : cuentas) EXPECT_EQ(imp.CuantasLineas(valor), cuantas) << cuantas;
}

// Counts how often the decimal separator is asked for.
class SeparadorContado : public UtileriasPredeterminadas {
public:
    QString SeparadorDecimal() override {
        ++veces;
        return u","_s;
    }
    int veces = 0;
};

TEST(Ayudas, FnLeeElPuntoDecimalEnCualquierLocalPidiendoElSeparadorEnCadaPunto) {
    Impresora imp;
    for (const char* local : {"en_US", "es_ES", "de_DE", "es_MX"}) {
        ConLocal l(local);
        SCOPED_TRACE(local);
        EXPECT_EQ(imp.Fn(u"1234.5"_s), 1234.5);
        EXPECT_EQ(imp.Fn(u"-0.0001"_s), -0.0001);
        EXPECT_EQ(imp.Fn(u"7"_s), 7);
        EXPECT_EQ(NumeroDeError([&] { imp.Fn(u""_s); }), 13);
        EXPECT_EQ(NumeroDeError([&] { imp.Fn(u"abc"_s); }), 13);
    }
    ConLocal l("es_ES");
    auto util = std::make_shared<SeparadorContado>();
    SustituyeUtilerias(util);
    EXPECT_EQ(imp.Fn(u"12.5"_s), 12.5);
    EXPECT_EQ(util->veces, 1);
    // Two points become two decimal separators: not a number.
    EXPECT_EQ(NumeroDeError([&] { imp.Fn(u"1.2.3"_s); }), 13);
    EXPECT_EQ(util->veces, 3);
}

TEST(Ayudas, LetraYFormatoPorNombre) {
    ConLocal l("es_ES");
    Impresora imp;
    EXPECT_EQ(imp.Llama(u"Letra"_s, {1234.56, u"PESOS"_s, true, u"M.N."_s}).texto(),
              u"MIL DOSCIENTOS TREINTA Y CUATRO PESOS 56/100 M.N."_s);
    EXPECT_EQ(imp.Llama(u"Letra"_s, {u"21"_s, u"DÓLARES"_s, 0}).texto(), u"VEINTIÚN DÓLARES"_s);
    // strLeyenda2, Decimales, Leyenda, nNumero: the first failure in that order wins.
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(u"mucho"_s, Variant::Nulo(), true); }), 94);
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(Variant::Nulo(), u"X"_s, u"quizá"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(u"mucho"_s, u"X"_s, true); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(1e15, u"X"_s, true); }), 6);
    EXPECT_TRUE(imp.Llama(u"Formato"_s, {1234.5, u"#,##0.00"_s}).identico(Variant(u"1.234,50"_s)));
}

// The first draws of a process that never reseeds, exact to the last bit,
// reached by name as the host reaches them.
TEST(Ayudas, RandomYRandomColorSiguenLaSecuenciaDelRuntime) {
    Impresora imp;
    ReiniciaAleatorio();
    EXPECT_TRUE(imp.Llama(u"Random"_s).identico(Variant(static_cast<double>(0.705547512f))));
    EXPECT_EQ(SiguienteAleatorio(), 0.53342402f);
    EXPECT_EQ(SiguienteAleatorio(), 0.579518616f);
    const float cuarto = SiguienteAleatorio();
    ReiniciaAleatorio();
    // 0.7055475 * 256 = 180.6, 0.533424 * 256 = 136.6, 0.5795186 * 256 = 148.4.
    EXPECT_TRUE(imp.Llama(u"RandomColor"_s).identico(Variant(int32_t{0x9488B4})));
    // The colour used up exactly three draws.
    EXPECT_EQ(SiguienteAleatorio(), cuarto);
}

// Integer part alone: no legends, no cents.
TEST(Letra, Palabras) {
    const std::pair<double, const char*> casos[] = {
        {0, "CERO"},
        {10, "DIEZ"},
        {15, "QUINCE"},
        {16, "DIECISÉIS"},
        {19, "DIECINUEVE"},
        {20, "VEINTE"},
        {22, "VEINTIDÓS"},
        {23, "VEINTITRÉS"},
        {26, "VEINTISÉIS"},
        {29, "VEINTINUEVE"},
        {30, "TREINTA"},
        {100, "CIEN"},
        {500, "QUINIENTOS"},
        {700, "SETECIENTOS"},
        {31000, "TREINTA Y UN MIL"},
        {101000, "CIENTO UN MIL"},
        {999999, "NOVECIENTOS NOVENTA Y NUEVE MIL NOVECIENTOS NOVENTA Y NUEVE"},
        {1e6, "UN MILLÓN"},
        {31e6, "TREINTA Y UN MILLONES"},
        {1e9, "MIL MILLONES"},
        {21e9, "VEINTIÚN MIL MILLONES"},
        {1e12, "UN BILLÓN"},
        {121e12, "CIENTO VEINTIÚN BILLONES"},
        {999999999999999.0,
         "NOVECIENTOS NOVENTA Y NUEVE BILLONES NOVECIENTOS NOVENTA Y NUEVE MIL NOVECIENTOS NOVENTA Y NUEVE "
         "MILLONES NOVECIENTOS NOVENTA Y NUEVE MIL NOVECIENTOS NOVENTA Y NUEVE"},
    };
    for (const auto& [numero, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, {}, false, {}), QString::fromUtf8(esperado)) << numero;
}

TEST(Letra, LeyendasYCentavos) {
    const std::tuple<double, const char*, bool, const char*, const char*> casos[] = {
        {1, "PESO", true, "M.N.", "UN PESO 00/100 M.N."},
        {7.05, "PESOS", true, "", "SIETE PESOS 05/100"},
        {7.05, "", true, "M.N.", "SIETE 05/100 M.N."},
        {7.05, "", true, "", "SIETE 05/100"},
        {7.05, "PESOS", false, "M.N.", "SIETE PESOS M.N."},
        {0.5, "PESOS", true, "M.N.", "CERO PESOS 50/100 M.N."},
        // Legends go in as given, spaces and case included.
        {2, " pesos ", true, "(m.n.)", "DOS  pesos  00/100 (m.n.)"},
    };
    for (const auto& [numero, leyenda, decimales, leyenda2, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, QString::fromUtf8(leyenda), decimales, QString::fromUtf8(leyenda2)),
                  QString::fromUtf8(esperado));
}

TEST(Letra, NegativosRedondeoYLimites) {
    const std::pair<double, const char*> casos[] = {
        {-1, "MENOS UN PESOS 00/100"},
        {-0.25, "MENOS CERO PESOS 25/100"},
        {-0.004, "CERO PESOS 00/100"},  // rounds to nothing: no sign left
        {0.125, "CERO PESOS 13/100"},
        {2.675, "DOS PESOS 68/100"},  // the double sits just below 2.675
        {20.995, "VEINTIÚN PESOS 00/100"},
        {999999.999, "UN MILLÓN PESOS 00/100"},
        {1e-300, "CERO PESOS 00/100"},
    };
    for (const auto& [numero, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, QStringLiteral("PESOS"), true, {}), QString::fromUtf8(esperado)) << numero;

    constexpr double kInfinito = std::numeric_limits<double>::infinity();
    for (double numero : {1e15, -1e15, 1e300, kInfinito, -kInfinito, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(NumeroDeError([&] { ImporteEnLetra(numero, QStringLiteral("PESOS"), true, {}); }), 6) << numero;
    // The largest amounts below the limit still go into words.
    EXPECT_TRUE(ImporteEnLetra(-999999999999999.9, {}, true, {}).endsWith(u"NOVENTA Y NUEVE 90/100"));
}

}  // namespace
