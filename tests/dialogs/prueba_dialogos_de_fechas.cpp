// RangoDeFechas (frmParam) and FechaDeCorte (frmFechaCorte), driven by the
// controls' published names.

#include "comun/prueba.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QPushButton>

#include "dialogs/conduce_dialogo.h"

namespace {

constexpr double kMarca = 12345;  // a date no dialog gives

struct Dialogo {
    const char16_t *metodo, *ventana;
    bool rango;
};

class DialogosDeFechas : public ::testing::TestWithParam<Dialogo> {
protected:
    void SetUp() override {
        imp.FechaInicial = imp.FechaFinal = kMarca;
        SustituyeUtilerias(util);
    }
    void Abre(std::function<void(QWidget&)> accion, std::vector<Variant> args = {}) {
        AlMostrarse al(QString::fromUtf16(GetParam().ventana), std::move(accion));
        if (args.empty()) args = {u"Ventas del mes"_s, ambiente};
        imp.InvocaPorNombre(QString::fromUtf16(GetParam().metodo), Llamada::Metodo, args);
        EXPECT_TRUE(al.visto);
    }
    bool rango() const { return GetParam().rango; }
    static void Pulsa(QWidget& w, const QString& n) { QTest::mouseClick(Control<QPushButton>(w, n), Qt::LeftButton); }
    static void Marca(QWidget& w, const QString& n) { QTest::mouseClick(Control<QCheckBox>(w, n), Qt::LeftButton, {}, QPoint(5, 5)); }

    Impresora imp;
    std::shared_ptr<Ambiente> ambiente = AmbienteDeFebrero();
    std::shared_ptr<UtileriasVigiladas> util = std::make_shared<UtileriasVigiladas>();
};

// Accepting at once gives the period's date; SoloFechas clears and disables
// "Sólo objetos seleccionados". Enter is the default button.
TEST_P(DialogosDeFechas, AceptarEnseguida) {
    for (bool soloFechas : {false, true}) {
        util->registro.clear();
        Abre(
            [&](QWidget& w) {
                EXPECT_EQ(w.windowTitle(), u"t"_s);
                auto* check2 = Control<QCheckBox>(w, u"Check2"_s);
                EXPECT_EQ(check2->isChecked(), !soloFechas);
                EXPECT_EQ(check2->isEnabled(), !soloFechas);
                EXPECT_EQ(Control<QDateEdit>(w, u"DTPicker1"_s)->text(), u"29/02/2024"_s);
                QTest::keyClick(w.focusWidget(), Qt::Key_Return);
            },
            {u"t"_s, ambiente, soloFechas});
        EXPECT_EQ(imp.FechaInicial, kUltimoDeFebrero);
        EXPECT_EQ(imp.FechaFinal, rango() ? kUltimoDeFebrero : kMarca);  // the cut-off never writes it
        EXPECT_EQ(imp.SoloSeleccionados, !soloFechas);
        EXPECT_FALSE(imp.Todos || imp.Cancelado);
    }
    const QString v = QString::fromUtf16(GetParam().ventana);
    QStringList esperado(rango() ? 2 : 1, u"FechaDePeriodo(2024,2)"_s);  // read again for the end date
    esperado << u"PreparaFormulario(%1,true,\"\")"_s.arg(v) << u"CierraFormulario(%1,true,\"frmMaster\")"_s.arg(v);
    EXPECT_EQ(util->registro, esperado);
}

// "Leer todos los registros" disables the dates, which are taken all the
// same; only a change of the range's start date unticks it.
TEST_P(DialogosDeFechas, LeerTodosDeshabilitaLasFechasPeroSeEscriben) {
    Abre([&](QWidget& w) {
        auto* todos = Control<QCheckBox>(w, u"Check1"_s);
        auto* desde = Control<QDateEdit>(w, u"DTPicker1"_s);
        Marca(w, u"Check1"_s);
        EXPECT_FALSE(desde->isEnabled());
        if (rango()) {
            auto* hasta = Control<QDateEdit>(w, u"DTPicker2"_s);
            EXPECT_FALSE(hasta->isEnabled());
            hasta->setDate(hasta->date().addDays(-1));
            EXPECT_TRUE(todos->isChecked());
            desde->setDate(QDate(2024, 1, 2));
            EXPECT_FALSE(todos->isChecked());
            EXPECT_TRUE(desde->isEnabled() && hasta->isEnabled());
            Marca(w, u"Check1"_s);
        } else {
            desde->setDate(QDate(2024, 3, 1));
            EXPECT_TRUE(todos->isChecked());
        }
        Pulsa(w, u"Command1"_s);
    });
    EXPECT_TRUE(imp.Todos);
    EXPECT_EQ(imp.FechaInicial, rango() ? 45293 : kUltimoDeFebrero + 1);
    if (rango()) {
        EXPECT_EQ(imp.FechaFinal, kUltimoDeFebrero - 1);
    }
}

// Cancel and Escape only set Cancelado; the close box writes nothing; a later
// accept writes its answers and leaves Cancelado set.
TEST_P(DialogosDeFechas, CancelarEscapeYCajaDeCierre) {
    imp.SoloSeleccionados = true;
    for (int salida : {0, 1, 2}) {
        Abre([&](QWidget& w) {
            Control<QDateEdit>(w, u"DTPicker1"_s)->setDate(QDate(2030, 1, 1));
            Marca(w, u"Check2"_s);
            if (salida == 0) Pulsa(w, u"Command2"_s);
            if (salida == 1) QTest::keyClick(&w, Qt::Key_Escape);
            if (salida == 2) w.close();
        });
        EXPECT_EQ(imp.Cancelado, salida < 2);
        EXPECT_EQ(imp.FechaInicial, kMarca);
        EXPECT_TRUE(imp.SoloSeleccionados);
        imp.Cancelado = false;
    }
    imp.Cancelado = true;
    Abre([](QWidget& w) { Pulsa(w, u"Command1"_s); });
    EXPECT_TRUE(imp.Cancelado);
    EXPECT_EQ(imp.FechaInicial, kUltimoDeFebrero);
    EXPECT_EQ(util->De(u"CierraFormulario"_s).size(), 4);
}

TEST_P(DialogosDeFechas, SinAmbienteOPeriodoImposibleFallaAntesDeMostrarse) {
    const QString metodo = QString::fromUtf16(GetParam().metodo);
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(metodo, {u"t"_s, Variant::Nada()}); }), err::kObjetoNoEstablecido);
    ambiente->Periodo2 = 13;
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(metodo, {u"t"_s, ambiente}); }), err::kLlamadaNoValida);
    EXPECT_EQ(util->De(u"PreparaFormulario"_s), QStringList());
    EXPECT_EQ(imp.FechaInicial, kMarca);
}

// Sizes from the design in twips and the font; the start date has the focus.
TEST_P(DialogosDeFechas, DisposicionDelDiseno) {
    Abre([&](QWidget& w) {
        const auto px = [&](int twips, bool x) { return qRound(twips * (x ? w.logicalDpiX() : w.logicalDpiY()) / 1440.0); };
        EXPECT_EQ(w.size(), QSize(px(rango() ? 5220 : 3990, true), px(rango() ? 2340 : 1965, false)));
        EXPECT_EQ(Control(w, u"Picture4"_s)->geometry().bottom(), w.height() - 1);
        EXPECT_EQ(Control(w, u"Picture1(0)"_s)->y(), px(rango() ? 885 : 525, false));
        auto* aceptar = Control<QPushButton>(w, u"Command1"_s);
        EXPECT_EQ(aceptar->geometry(), QRect(px(90, true), px(90, false), px(1245, true), px(375, false)));
        EXPECT_TRUE(aceptar->font().bold());
        EXPECT_DOUBLE_EQ(aceptar->font().pointSizeF(), 8.25);
        EXPECT_EQ(Control<QLabel>(w, u"Label1"_s)->text(), rango() ? u"&Fecha Inicial"_s : u"&Fecha de corte"_s);
        EXPECT_EQ(Control<QDateEdit>(w, u"DTPicker1"_s)->displayFormat(), u"dd/MM/yyyy"_s);
        EXPECT_EQ(w.focusWidget()->objectName(), u"DTPicker1"_s);
        w.close();
    });
}

const Dialogo kDialogos[] = {
    {u"RangoDeFechas", u"frmParam", true},
    {u"FechaDeCorte", u"frmFechaCorte", false},
};
INSTANTIATE_TEST_SUITE_P(, DialogosDeFechas, ::testing::ValuesIn(kDialogos),
                         [](const auto& i) { return QString::fromUtf16(i.param.ventana).toStdString(); });

}  // namespace
