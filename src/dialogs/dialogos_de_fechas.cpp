// frmParam (a date range) and frmFechaCorte (a cut-off date): the answers go
// straight into the calling Impresora.

#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QPushButton>

#include "dialogs/dialogos.h"
#include "dialogs/formulario.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/utilerias.h"

namespace kalo::dialogos {

namespace {

using namespace Qt::StringLiterals;

class DialogoDeFechas final : public Formulario {
public:
    // rango: frmParam, two dates; otherwise frmFechaCorte, one.
    explicit DialogoDeFechas(bool rango)
        : Formulario(rango ? u"frmParam"_s : u"frmFechaCorte"_s, rango ? 5220 : 3990, rango ? 2340 : 1965),
          rango_(rango) {
        setWindowTitle(rango ? u"Rango de fechas..."_s : u"Fecha de corte"_s);
        const int altoFechas = rango ? 885 : 525;
        QWidget* fechas = Panel(u"Picture3"_s, Anclaje::Arriba, altoFechas);
        QWidget* opciones = Panel(u"Picture1(0)"_s, Anclaje::Arriba, 795);
        QWidget* botones = Panel(u"Picture4"_s, Anclaje::Abajo, 615);
        if (rango) {
            QLabel* l1 = Etiqueta(fechas, u"Label1"_s, u"&Fecha Inicial"_s, 90, 90, 1155, 285, 5);
            dtPicker1_ = Fecha(fechas, u"DTPicker1"_s, 2880, 60, 2115, 315, 4);
            QLabel* l2 = Etiqueta(fechas, u"Label2"_s, u"&Fecha final"_s, 90, 450, 1155, 285, 10);
            dtPicker2_ = Fecha(fechas, u"DTPicker2"_s, 2880, 420, 2115, 315, 9);
            l1->setBuddy(dtPicker1_);
            l2->setBuddy(dtPicker2_);
            check1_ = Casilla(opciones, u"Check1"_s, u"&Leer todos los registros."_s, 60, 60, 3075, 285, 8, 0);
            check2_ = Casilla(opciones, u"Check2"_s, u"&Sólo objetos seleccionados"_s, 60, 360, 3480, 285, 7, 1);
        } else {
            QLabel* l1 = Etiqueta(fechas, u"Label1"_s, u"&Fecha de corte"_s, 90, 90, 1830, 285, 5);
            dtPicker1_ = Fecha(fechas, u"DTPicker1"_s, 2025, 60, 1800, 315, 4);
            l1->setBuddy(dtPicker1_);
            check1_ = Casilla(opciones, u"Check1"_s, u"&Leer todos los registros."_s, 60, 0, 3075, 285, 8, 0);
            check2_ = Casilla(opciones, u"Check2"_s, u"&Sólo objetos seleccionados"_s, 60, 315, 3480, 285, 7, 1);
        }
        QPushButton* aceptar = Boton(botones, u"Command1"_s, u"&Aceptar"_s, 90, 90, 1245, 375, 2);
        QPushButton* cancelar = Boton(botones, u"Command2"_s, u"&Cancelar"_s, 1440, 90, 1245, 375, 1);
        aceptar->setDefault(true);
        BotonDeCancelar(cancelar);
        CierraOrden();
        dtPicker1_->setFocus();

        connect(aceptar, &QPushButton::clicked, this, [this] { Evento("Command1_Click", [this] { Acepta(); }); });
        connect(cancelar, &QPushButton::clicked, this, [this] {
            Evento("Command2_Click", [this] {
                objImpresora->Cancelado = true;
                reject();
            });
        });
        connect(check1_, &QCheckBox::stateChanged, this, [this] {
            const bool todos = Valor(check1_) == 1;
            dtPicker1_->setEnabled(!todos);
            if (rango_) dtPicker2_->setEnabled(!todos);
        });
    }

    QCheckBox* check2() const { return check2_; }

    void Carga() {
        Utilerias& util = UtileriasCompartidas();
        const auto periodo = [this](const QString& nombre) {
            if (!objAmbiente) Lanza(err::kObjetoNoEstablecido);
            return objAmbiente->Lee(nombre);
        };
        dtPicker1_->setDate(DiaDeFecha(util.FechaDePeriodo(periodo(u"Periodo1"_s), periodo(u"Periodo2"_s))));
        if (rango_)
            dtPicker2_->setDate(DiaDeFecha(util.FechaDePeriodo(periodo(u"Periodo1"_s), periodo(u"Periodo2"_s))));
        util.PreparaFormulario(this, objAmbiente, QString());
        // Only the user's changes count: the dates above are already set.
        // The end date and the cut-off date have no such reaction.
        if (rango_) connect(dtPicker1_, &QDateEdit::dateChanged, this, [this] { PonValor(check1_, 0); });
    }

private:
    void Acepta() {
        Impresora& imp = *objImpresora;
        imp.FechaInicial = FechaDeDia(dtPicker1_->date());
        if (rango_) imp.FechaFinal = FechaDeDia(dtPicker2_->date());
        imp.Todos = Valor(check1_) == 1;
        imp.SoloSeleccionados = Valor(check2_) == 1;
        accept();
    }

    void Descarga() override {
        UtileriasCompartidas().CierraFormulario(this, objAmbiente, u"frmMaster"_s);
    }

    bool rango_;
    QDateEdit* dtPicker1_ = nullptr;
    QDateEdit* dtPicker2_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QCheckBox* check2_ = nullptr;
};

void Muestra(bool rango, Impresora& imp, const QString& cTitulo, const std::shared_ptr<Objeto>& ambiente,
             bool soloFechas, const QString& origen) {
    AseguraPantalla(origen);
    auto frm = std::make_unique<DialogoDeFechas>(rango);
    frm->objImpresora = &imp;
    frm->objAmbiente = ambiente;
    frm->Carga();
    frm->setWindowTitle(cTitulo);
    if (soloFechas) {
        PonValor(frm->check2(), 0);
        frm->check2()->setEnabled(false);
    }
    frm->exec();
}

}  // namespace

void RangoDeFechas(Impresora& imp, const QString& cTitulo, const std::shared_ptr<Objeto>& ambiente,
                   bool soloFechas) {
    Muestra(true, imp, cTitulo, ambiente, soloFechas, u"Impresora.RangoDeFechas"_s);
}

void FechaDeCorte(Impresora& imp, const QString& cTitulo, const std::shared_ptr<Objeto>& ambiente,
                  bool soloFechas) {
    Muestra(false, imp, cTitulo, ambiente, soloFechas, u"Impresora.FechaDeCorte"_s);
}

}  // namespace kalo::dialogos
