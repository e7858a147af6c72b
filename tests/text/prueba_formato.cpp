#include <QDate>
#include "comun/prueba.h"

#include "text/formato.h"

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
        {1234567.891, "#,##0.00", "1,234,567.89", "1.234.567,89"}, {0.0, "#,##0.00", "0.00", "0,00"},
        {0.125, "0.0%", "12.5%", "12,5%"}, {7, "0\\%", "7%", "7%"}, {0.5, "#.##", ".5", ",5"},
        {0.0, "#.##", ".", ","}, {5, "#.##", "5.", "5,"}, {5, "0##", "005", "005"},
        {123456, "##", "123456", "123456"}, {123456789, "000-00-0000", "123-45-6789", "123-45-6789"},
        {1234567, "#,##0,", "1,235", "1.235"}, {1234567890, "0,,", "1235", "1235"},
        {1234.5, "0.0#", "1234.5", "1234,5"}, {1234.567, "0.0#", "1234.57", "1234,57"},
        {12345, "0.00E+00", "1.23E+04", "1,23E+04"}, {0.00123, "0.00E-00", "1.23E-03", "1,23E-03"},
        {12345, "0.00e-00", "1.23e04", "1,23e04"}, {99999, "0.0E+0", "1.0E+5", "1,0E+5"},
        {0.0, "0.00E+00", "0.00E+00", "0,00E+00"},
        {12345, "0.00E+x", "1.23E+4x", "1,23E+4x"},  // past E+ only 0 and # are digits
        {12345, "0.00E+x00", "1.23E+04x", "1,23E+04x"}, {12345, "0E+0%", "1E+4%", "1E+4%"},
        {1.5e-100, "0.0e-#", "1.5e-100", "1,5e-100"}, {-5, "$0.00", "-$5.00", "-$5,00"},
        {3.14159, "\"pi = \"0.00", "pi = 3.14", "pi = 3,14"}, {42, "\\#0", "#42", "#42"},
        {1e20, "0", "100000000000000000000", "100000000000000000000"}, {true, "0", "-1", "-1"},
        {Variant(), "0.00", "0.00", "0,00"}, {Variant::Fecha(45000.5), "0.00", "45000.50", "45000,50"},
        {Moneda{123456}, "0.000", "12.346", "12,346"},
        // Halves away from zero, unlike the whole-number conversions, on the
        // digits the runtime shows: the double nearest 1.005 is just under it.
        {2.5, "0", "3", "3"}, {-2.5, "0", "-3", "-3"}, {1.005, "0.00", "1.01", "1,01"},
        {9.996, "0.00", "10.00", "10,00"}, {0.0049, "0.00", "0.00", "0,00"}, {-0.001, "0.00", "-0.00", "-0,00"},
        {0.1f, "0.000000000", "0.100000000", "0,100000000"},
    };
    Comprueba(casos);
}

TEST(Formato, Secciones) {
    const Caso casos[] = {
        {-5, "0;(0)", "(5)"}, {0, "0;(0)", "0"}, {Variant(), "0;-0;\"cero\"", "cero"}, {-5, "0;;\"cero\"", "-5"},
        {0, "0;(0);", "0"}, {-0.001, "0.00;(0.00);\"cero\"", "(0.00)", "(0,00)"},
        {Variant::Nulo(), "0;(0);\"cero\";\"nulo\"", "nulo"}, {Variant::Nulo(), "0;(0);\"cero\"", nullptr},
        {Variant::Nulo(), "dd/mm/yyyy", nullptr}, {Variant::Nulo(), "Currency", nullptr},
        {Variant::Nulo(), "@@", nullptr}, {Variant::Nulo(), "@;\"(nada)\"", "(nada)"}, {"", "@;\"(nada)\"", "(nada)"},
    };
    Comprueba(casos);
}

TEST(Formato, FormatosConNombre) {
    const Caso casos[] = {
        {1234.5, "Currency", "$1,234.50", "1.234,50 €"}, {-1234.5, "Currency", "($1,234.50)", "-1.234,50 €"},
        {0.125, "currency", "$0.13", "0,13 €"}, {1234.5, "Fixed", "1234.50", "1234,50"},
        {-1234.5, "Standard", "-1,234.50", "-1.234,50"}, {0.1234, "Percent", "12.34%", "12,34%"},
        {1234.5, "Scientific", "1.23E+03", "1,23E+03"}, {1234.5, "General Number", "1234.5", "1234,5"},
        {true, "General Number", "-1", "-1"}, {5, "yes/no", "Yes", "Sí"}, {true, "True/False", "True", "Verdadero"},
        {-0.5, "On/Off", "On", "Activado"}, {"0", "On/Off", "Off", "Desactivado"}, {"abc", "Fixed", "abc", "abc"},
        {kMartes, "General Date", "3/5/2024 2:07:09 PM", "5/3/2024 14:07:09"},
        {kMartes, "Long Date", "Tuesday, March 5, 2024", "martes, 5 de marzo de 2024"},
        {kMartes, "Medium Date", "05-Mar-24", "05-mar-24"}, {kMartes, "Short Date", "3/5/2024", "5/3/2024"},
        {kMartes, "Long Time", "2:07:09 PM", "14:07:09"}, {kMartes, "Medium Time", "02:07 PM", "02:07 p. m."},
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
        {kMartes, "ddd mmm", "Tue Mar", "mar mar"}, {kMartes, "w ww q y", "3 10 1 65", "3 10 1 65"},
        {kMartes, "h:m:s", "14:7:9", "14:7:9"}, {kMartes, "mm", "03", "03"},
        {kMartes, "h a/p|h A/P|hh am/pm|h AMPM", "2 p|2 P|02 pm|2 PM", "2 p|2 P|02 pm|2 p. m."},
        {kMartes, "\\d\\d dd \"dd\"", "dd 05 dd", "dd 05 dd"}, {FechaHora(2024, 3, 5), "c", "3/5/2024", "5/3/2024"},
        {FechaHora(1899, 12, 30, 9, 5), "c", "9:05:00 AM", "9:05:00"},
        {FechaHora(2023, 1, 1, 0, 30), "h:nn AM/PM", "12:30 AM", "12:30 AM"},
        {FechaHora(2023, 1, 1, 12), "h:nn AM/PM", "12:00 PM", "12:00 PM"},
        {Variant(), "yyyy-mm-dd", "1899-12-30", "1899-12-30"}, {45356, "yyyy-mm-dd", "2024-03-05", "2024-03-05"},
        {"45356", "yyyy-mm-dd", "2024-03-05", "2024-03-05"}, {"hola", "dd/mm/yyyy", "hola", "hola"},
        // Weeks start on Sunday; the first holds 1 January.
        {FechaHora(2023, 1, 1), "ww w", "1 1"}, {FechaHora(2024, 1, 6), "ww", "1"},
        {FechaHora(2024, 1, 7), "ww", "2"}, {FechaHora(2024, 12, 31), "ww y", "53 366"},
        {FechaHora(2022, 1, 1), "ww", "1"}, {FechaHora(2022, 1, 2), "ww", "2"}, {FechaHora(2024, 12, 1), "q", "4"},
        {FechaHora(2024, 1, 31), "q", "1"},
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
        {45356.999999, "2024-03-06 00:00:00", "3/6/2024"}, {-0.9999999, "1899-12-31 00:00:00", "12/31/1899"},
        {-1.25, "1899-12-29 06:00:00", "12/29/1899 6:00:00 AM"},
        {-1.99999, "1899-12-29 23:59:59", "12/29/1899 11:59:59 PM"},
        {-1.9999999, "1899-12-30 00:00:00", "12:00:00 AM"}, {-2.9999999, "1899-12-29 00:00:00", "12/29/1899"},
    };
    for (const auto& c : casos) {
        const Variant fecha = Variant::Fecha(c.serial);
        EXPECT_EQ(Texto(Formato(fecha, "yyyy-mm-dd hh:nn:ss")), c.formato) << c.serial;
        EXPECT_EQ(CStr(fecha).toStdString(), c.cstr) << c.serial;
    }
}

TEST(Formato, PatronesDeTexto) {
    const Caso casos[] = {
        {"ab", "@@@@", "  ab"}, {"ab", "!@@@@", "ab  "}, {"ab", "&&&&", "ab"}, {"abcdef", "@@@", "abcdef"},
        {"abc", "@-@", "a-bc"},  // left over: after the literals
        {"abc", "(@)", "(a)bc"}, {"abc", "!(@)", "(a)bc"},
        {"HoLa", "><", "HOLA"},  // the first case mark holds
        {"HoLa", "<@@@@>", "hola"}, {"5551234", "@@@-@@@@", "555-1234"}, {"123", "&&&-&&&&", "-123"},
        {"abc", ">\"x\"@@@@", "x ABC"}, {"a;b", "\\@@@@", "@a;b"}, {12, "@@@@", "  12"},
        {"hola", "\"dice: \"", "dice: hola"},
    };
    Comprueba(casos);
}

TEST(Formato, SinFormatoYTextosDeEntrada) {
    const Caso casos[] = {
        {1234.5, "", "1234.5", "1234,5"}, {kMartes, "", "3/5/2024 2:07:09 PM", "5/3/2024 14:07:09"},
        {Variant(), "", "", ""}, {"hola", "0.00", "hola", "hola"}, {"  -3 ", "0;(0)", "(3)", "(3)"},
        {"abc", "\"x\"", "xabc", "xabc"}, {-4, "\"x\"", "-x", "-x"},
        {"1,234.5", "#,##0.00", "1,234.50", "1,234.5"},  // read in the user's locale
        {"1.234,5", "#,##0.00", "1.234,5", "1.234,50"}, {"3/5/2024", "yyyy-mm-dd", "2024-03-05", "2024-05-03"},
    };
    Comprueba(casos);
    EXPECT_EQ(Texto(Formato(1234.5, Variant::Falta())), Texto(Formato(1234.5, "")));
    EXPECT_TRUE(Formato(Variant::Nulo(), Variant::Falta()).esNulo());
    EXPECT_EQ(Texto(Formato(5, 0)), "5");
    EXPECT_EQ(NumeroDeError([] { Formato(5, Variant::Nulo()); }), 94);
    EXPECT_EQ(NumeroDeError([] { Formato(1e10, "dd"); }), 6);
    EXPECT_EQ(NumeroDeError([] { Formato(HUGE_VAL, "0"); }), 6);
}

}  // namespace
