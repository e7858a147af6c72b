// RangoDeFechas (frmParam) and FechaDeCorte (frmFechaCorte), driven by the
// controls' published names as a user would.

#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "comun/utilerias_de_prueba.h"
#include "dialogs/conduce_dialogo.h"
#include "kaloimpresora/impresora.h"

using namespace kalo;
using namespace kalo::prueba;
using namespace Qt::StringLiterals;

namespace {

constexpr double kMarca = 12345;  // a date no dialog gives

struct Dialogo {
    const char16_t* metodo;
    const char16_t* ventana;
    bool rango;
};
const Dialogo kDialogos[] = {{u"RangoDeFechas", u"frmParam", true}, {u"FechaDeCorte", u"frmFechaCorte", false}};

class DialogosDeFechas : public ::testing::TestWithParam<Dialogo> {
protected:
    void SetUp() override {
        imp.FechaInicial = imp.FechaFinal = kMarca;
        SustituyeUtilerias(util);
    }
    // Calls the method through the automation interface while `accion`
    // drives the window.
    void Abre(std::function<void(QWidget&)> accion, std::vector<Variant> argumentos = {}) {
        AlMostrarse al(QString::fromUtf16(GetParam().ventana), std::move(accion));
        if (argumentos.empty()) argumentos = {u"Ventas del mes"_s, ambiente};
        imp.InvocaPorNombre(QString::fromUtf16(GetParam().metodo), Llamada::Metodo, argumentos);
        EXPECT_TRUE(al.visto);
    }
    bool rango() const { return GetParam().rango; }

    Impresora imp;
    std::shared_ptr<Ambiente> ambiente = AmbienteDeFebrero();
    std::shared_ptr<UtileriasVigiladas> util = std::make_shared<UtileriasVigiladas>();
};

TEST_P(DialogosDeFechas, AceptarEnseguidaDaLaFechaDelPeriodoYSoloSeleccionados) {
    imp.Cancelado = false;
    Abre([&](QWidget& w) {
        EXPECT_EQ(w.windowTitle(), u"Ventas del mes"_s);
        EXPECT_TRUE(w.isModal());
        EXPECT_EQ(w.parentWidget(), nullptr);
        auto* check2 = Control<QCheckBox>(w, u"Check2"_s);
        EXPECT_TRUE(check2->isChecked() && check2->isEnabled());
        EXPECT_FALSE(Control<QCheckBox>(w, u"Check1"_s)->isChecked());
        EXPECT_EQ(Control<QDateEdit>(w, u"DTPicker1"_s)->text(), u"29/02/2024"_s);
        if (rango()) EXPECT_EQ(Control<QDateEdit>(w, u"DTPicker2"_s)->text(), u"29/02/2024"_s);
        QTest::mouseClick(Control<QPushButton>(w, u"Command1"_s), Qt::LeftButton);
    });
    EXPECT_EQ(imp.FechaInicial, kUltimoDeFebrero);
    EXPECT_EQ(imp.FechaFinal, rango() ? kUltimoDeFebrero : kMarca);  // the cut-off never writes it
    EXPECT_TRUE(imp.SoloSeleccionados);
    EXPECT_FALSE(imp.Todos);
    EXPECT_FALSE(imp.Cancelado);
    const QString v = QString::fromUtf16(GetParam().ventana);
    QStringList esperado = {u"FechaDePeriodo(2024,2)"_s};
    if (rango()) esperado << u"FechaDePeriodo(2024,2)"_s;  // read again for the end date
    esperado << u"PreparaFormulario(%1,ambiente,\"\")"_s.arg(v) << u"CierraFormulario(%1,ambiente,\"frmMaster\")"_s.arg(v);
    EXPECT_EQ(util->registro, esperado);
}

TEST_P(DialogosDeFechas, SoloFechasApagaSoloSeleccionados) {
    imp.SoloSeleccionados = true;
    Abre(
        [&](QWidget& w) {
            auto* check2 = Control<QCheckBox>(w, u"Check2"_s);
            EXPECT_FALSE(check2->isChecked());
            EXPECT_FALSE(check2->isEnabled());
            QTest::keyClick(&w, Qt::Key_Return);  // the default button
        },
        {u"t"_s, ambiente, true});
    EXPECT_FALSE(imp.SoloSeleccionados);
    EXPECT_EQ(imp.FechaInicial, kUltimoDeFebrero);
}

// "Leer todos los registros" disables the dates but they are still taken;
// only the start date of the range unticks it when changed.
TEST_P(DialogosDeFechas, LeerTodosDeshabilitaLasFechasPeroSeEscriben) {
    Abre([&](QWidget& w) {
        auto* check1 = Control<QCheckBox>(w, u"Check1"_s);
        auto* desde = Control<QDateEdit>(w, u"DTPicker1"_s);
        auto* hasta = rango() ? Control<QDateEdit>(w, u"DTPicker2"_s) : nullptr;
        QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(5, check1->height() / 2));
        EXPECT_TRUE(check1->isChecked());
        EXPECT_FALSE(desde->isEnabled());
        if (hasta) {
            EXPECT_FALSE(hasta->isEnabled());
            hasta->setDate(hasta->date().addDays(-1));  // the end date does not untick it
            EXPECT_TRUE(check1->isChecked());
            QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(5, check1->height() / 2));
            EXPECT_TRUE(desde->isEnabled() && hasta->isEnabled());
            desde->setFocus();
            QTest::keyClick(desde, Qt::Key_Up);
            EXPECT_FALSE(check1->isChecked());
            QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(5, check1->height() / 2));
            EXPECT_FALSE(desde->isEnabled() || hasta->isEnabled());
            desde->setDate(QDate(2024, 1, 2));  // any change of the start date
            EXPECT_FALSE(check1->isChecked());
            EXPECT_TRUE(desde->isEnabled() && hasta->isEnabled());
            QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(5, check1->height() / 2));
        } else {
            desde->setDate(QDate(2024, 3, 1));  // the cut-off date does not untick it
            EXPECT_TRUE(check1->isChecked());
        }
        QTest::mouseClick(Control<QPushButton>(w, u"Command1"_s), Qt::LeftButton);
    });
    EXPECT_TRUE(imp.Todos);
    if (rango()) {
        EXPECT_EQ(imp.FechaInicial, 45293);  // 2 January 2024
        EXPECT_EQ(imp.FechaFinal, kUltimoDeFebrero - 1);
    } else {
        EXPECT_EQ(imp.FechaInicial, kUltimoDeFebrero + 1);
    }
}

TEST_P(DialogosDeFechas, CancelarSoloMarcaCanceladoYNadaLoBorra) {
    Abre([](QWidget& w) { QTest::mouseClick(Control<QPushButton>(w, u"Command1"_s), Qt::LeftButton); });
    for (bool conEscape : {false, true}) {
        Abre([&](QWidget& w) {
            Control<QDateEdit>(w, u"DTPicker1"_s)->setDate(QDate(2030, 1, 1));
            QTest::mouseClick(Control<QCheckBox>(w, u"Check1"_s), Qt::LeftButton, {}, QPoint(5, 5));
            if (conEscape)
                QTest::keyClick(&w, Qt::Key_Escape);
            else
                QTest::mouseClick(Control<QPushButton>(w, u"Command2"_s), Qt::LeftButton);
        });
        EXPECT_TRUE(imp.Cancelado);
        EXPECT_EQ(imp.FechaInicial, kUltimoDeFebrero);
        EXPECT_FALSE(imp.Todos);
    }
    // A later accept writes its answers and leaves Cancelado alone.
    Abre([](QWidget& w) {
        QTest::mouseClick(Control<QCheckBox>(w, u"Check2"_s), Qt::LeftButton, {}, QPoint(5, 5));
        QTest::mouseClick(Control<QPushButton>(w, u"Command1"_s), Qt::LeftButton);
    });
    EXPECT_TRUE(imp.Cancelado);
    EXPECT_FALSE(imp.SoloSeleccionados);
    EXPECT_EQ(util->De(u"CierraFormulario"_s).size(), 4);
}

TEST_P(DialogosDeFechas, LaCajaDeCierreNoEscribeNada) {
    imp.SoloSeleccionados = false;
    Abre([](QWidget& w) {
        Control<QDateEdit>(w, u"DTPicker1"_s)->setDate(QDate(2030, 1, 1));
        w.close();
    });
    EXPECT_FALSE(imp.Cancelado);
    EXPECT_FALSE(imp.SoloSeleccionados);
    EXPECT_EQ(imp.FechaInicial, kMarca);
    EXPECT_EQ(util->De(u"CierraFormulario"_s).size(), 1);
}

// Before the window shows, failures reach the caller and nothing opens.
TEST_P(DialogosDeFechas, SinAmbienteOPeriodoImposibleFallaAntesDeMostrarse) {
    const QString metodo = QString::fromUtf16(GetParam().metodo);
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(metodo, {u"t"_s, Variant::Nada()}); }), err::kObjetoNoEstablecido);
    ambiente->Periodo2 = 13;
    QString descripcion;
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(metodo, {u"t"_s, ambiente}); }), err::kLlamadaNoValida);
    EXPECT_EQ(util->De(u"PreparaFormulario"_s), QStringList());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(imp.FechaInicial, kMarca);
}

// Sizes and places from the design in twips, font, captions and keyboard order.
TEST_P(DialogosDeFechas, DisposicionDelDiseno) {
    const auto px = [](int twips, double ppp) { return qRound(twips * ppp / 1440); };
    Abre([&](QWidget& w) {
        const double ppx = w.logicalDpiX(), ppy = w.logicalDpiY();
        EXPECT_EQ(w.size(), QSize(px(rango() ? 5220 : 3990, ppx), px(rango() ? 2340 : 1965, ppy)));
        EXPECT_EQ(w.minimumSize(), w.maximumSize());
        auto* botones = Control(w, u"Picture4"_s);
        EXPECT_EQ(botones->geometry().bottom(), w.height() - 1);  // docked to the bottom
        EXPECT_EQ(Control(w, u"Picture1(0)"_s)->y(), px(rango() ? 885 : 525, ppy));
        auto* aceptar = Control<QPushButton>(w, u"Command1"_s);
        EXPECT_EQ(aceptar->geometry(), QRect(px(90, ppx), px(90, ppy), px(1245, ppx), px(375, ppy)));
        EXPECT_EQ(Control<QDateEdit>(w, u"DTPicker1"_s)->x(), px(rango() ? 2880 : 2025, ppx));
        EXPECT_TRUE(aceptar->font().bold());
        EXPECT_DOUBLE_EQ(aceptar->font().pointSizeF(), 8.25);
        EXPECT_EQ(aceptar->text(), u"&Aceptar"_s);
        EXPECT_EQ(Control<QLabel>(w, u"Label1"_s)->text(), rango() ? u"&Fecha Inicial"_s : u"&Fecha de corte"_s);
        if (rango()) EXPECT_EQ(Control<QLabel>(w, u"Label2"_s)->text(), u"&Fecha final"_s);
        EXPECT_EQ(Control<QCheckBox>(w, u"Check2"_s)->text(), u"&Sólo objetos seleccionados"_s);
        EXPECT_EQ(Control<QDateEdit>(w, u"DTPicker1"_s)->displayFormat(), u"dd/MM/yyyy"_s);
        EXPECT_TRUE(Control<QDateEdit>(w, u"DTPicker1"_s)->calendarPopup());
        // The start date has the focus; Tab walks the tab indexes: Cancelar,
        // Aceptar, the start date (day, month, year), Check2, Check1, the end date.
        const auto foco = [&w] {
            QWidget* f = w.focusWidget();
            if (f && qobject_cast<QDateEdit*>(f->parentWidget())) f = f->parentWidget();  // its line edit
            return f ? f->objectName() : QString();
        };
        EXPECT_EQ(foco(), u"DTPicker1"_s);
        Control(w, u"Command2"_s)->setFocus();
        QStringList orden;
        for (int i = 0; i < 12 && orden.size() < (rango() ? 6 : 5); ++i) {
            const QString nombre = foco();
            if (orden.isEmpty() || orden.back() != nombre) orden << nombre;
            QTest::keyClick(w.focusWidget(), Qt::Key_Tab);
        }
        QStringList esperado = {u"Command2"_s, u"Command1"_s, u"DTPicker1"_s, u"Check2"_s, u"Check1"_s};
        if (rango()) esperado << u"DTPicker2"_s;
        EXPECT_EQ(orden, esperado);
        w.close();
    });
}

INSTANTIATE_TEST_SUITE_P(, DialogosDeFechas, ::testing::ValuesIn(kDialogos),
                         [](const auto& i) { return QString::fromUtf16(i.param.ventana).toStdString(); });

}  // namespace
