// frmPMCombo, the data-range dialog: up to two ranges of values looked up in
// the host's database, a date range and a yes/no option, as ParamData
// describes them; and the branch switch that points its lookups at another
// branch's database.

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <array>

#include "data/ambiente.h"
#include "dialogs/dialogos.h"
#include "dialogs/formulario.h"
#include "dialogs/multi_combo.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/mensajes.h"
#include "kaloimpresora/utilerias.h"
#include "runtime/ignora.h"
#include "runtime/recorta.h"

namespace kalo::dialogos {

namespace {

using namespace Qt::StringLiterals;

constexpr int kMensajeBaseDeSucursal = 823;

// The window's own icon: a sheet with two ranges, at 16 and 32 pixels.
QIcon IconoDeRangos() {
    QIcon icono;
    for (int lado : {16, 32}) {
        QPixmap p(lado, lado);
        p.fill(Qt::transparent);
        QPainter g(&p);
        const double u = lado / 16.0;
        g.scale(u, u);
        g.setPen(Qt::black);
        g.setBrush(Qt::white);
        g.drawRect(QRectF(2.5, 1.5, 11, 13));
        g.setPen(Qt::NoPen);
        g.setBrush(Qt::darkBlue);
        g.drawRect(QRectF(4, 4, 8, 2));
        g.setBrush(Qt::darkRed);
        g.drawRect(QRectF(4, 8, 5, 2));
        g.setBrush(Qt::darkGreen);
        g.drawRect(QRectF(4, 11, 7, 2));
        g.end();
        icono.addPixmap(p);
    }
    return icono;
}

class DialogoDeRangos final : public Formulario {
public:
    QString strObserv;
    QCheckBox* Check2 = nullptr;

    DialogoDeRangos() : Formulario(u"frmPMCombo"_s, 4920, 4905) {
        setWindowTitle(u"Rangos..."_s);
        setWindowIcon(IconoDeRangos());
        QWidget* sucursal = Panel(u"Picture2"_s, Anclaje::Arriba, 405);
        picture1_[0] = Panel(u"Picture1(0)"_s, Anclaje::Arriba, 1215);
        picture1_[1] = Panel(u"Picture1(1)"_s, Anclaje::Arriba, 1155);
        picture1_[2] = Panel(u"Picture1(2)"_s, Anclaje::Arriba, 1005);
        picture1_[5] = Panel(u"Picture1(5)"_s, Anclaje::Arriba, 375);
        picture1_[4] = Panel(u"Picture1(4)"_s, Anclaje::Abajo, 705);
        picture1_[3] = Panel(u"Picture1(3)"_s, Anclaje::Libre, 570, 2850, 3390, 2730);
        OcultaPanel(picture1_[3]);  // by design; nothing shows it

        QLabel* label3 = Etiqueta(sucursal, u"Label3"_s, u"Sucursal"_s, 120, 60, 1605, 255, 31);
        combo1_ = new QComboBox(sucursal);
        combo1_->setObjectName(u"Combo1"_s);
        combo1_->setEditable(true);
        combo1_->setInsertPolicy(QComboBox::NoInsert);
        Coloca(combo1_, 1800, 30, 3015, 315, 32);
        label3->setBuddy(combo1_);

        // The second panel's label indexes are crossed: Label1(3) is the upper one.
        label1_[0] = Etiqueta(picture1_[0], u"Label1(0)"_s, u"&Dato Inicial"_s, 120, 120, 1095, 240, 13);
        label1_[1] = Etiqueta(picture1_[0], u"Label1(1)"_s, u"&Dato Final"_s, 120, 420, 885, 195, 17);
        label1_[3] = Etiqueta(picture1_[1], u"Label1(3)"_s, u"&Dato Inicial"_s, 90, 45, 1095, 240, 22);
        label1_[2] = Etiqueta(picture1_[1], u"Label1(2)"_s, u"&Dato final"_s, 90, 405, 930, 240, 21);
        const int arriba[4] = {30, 390, 30, 405};
        for (int i = 0; i < 4; ++i) {
            multiCombo1_[i] = new MultiCombo(i, picture1_[i / 2]);
            Coloca(multiCombo1_[i], 2490, arriba[i], 2355, 345, 0);
            txtFields_[i] = multiCombo1_[i]->txtFields();
            // The boxes come first in the keyboard order, then Aceptar.
            OrdenDeTabulacion(txtFields_[i], i);
            txtFields_[i]->installEventFilter(this);
        }
        for (int i : {0, 1}) label1_[i]->setBuddy(txtFields_[i]);
        label1_[3]->setBuddy(txtFields_[2]);
        label1_[2]->setBuddy(txtFields_[3]);
        chkParam1_[0] = Casilla(picture1_[0], u"chkParam1(0)"_s, u"Incluir todos los registros"_s, 90, 810, 3225, 255, 6, 1);
        chkParam1_[1] = Casilla(picture1_[1], u"chkParam1(1)"_s, u"Incluir todos los registros"_s, 45, 810, 3225, 255, 7, 1);

        QLabel* label14 = Etiqueta(picture1_[2], u"Label1(4)"_s, u"&Fecha Inicial"_s, 90, 90, 1155, 285, 26);
        dtPicker1_ = Fecha(picture1_[2], u"DTPicker1"_s, 2730, 60, 2115, 315, 8);
        QLabel* label22 = Etiqueta(picture1_[2], u"Label2(2)"_s, u"&Fecha Final"_s, 90, 405, 1155, 285, 25);
        dtPicker2_ = Fecha(picture1_[2], u"DTPicker2"_s, 2730, 360, 2115, 315, 9);
        label14->setBuddy(dtPicker1_);
        label22->setBuddy(dtPicker2_);
        chkParam1_[2] = Casilla(picture1_[2], u"chkParam1(2)"_s, u"Todas las fechas"_s, 90, 660, 3225, 255, 29, 1);

        checkBoolean_ = Casilla(picture1_[5], u"CheckBoolean"_s, u"&BooleanParam"_s, 45, 30, 3480, 285, 28, 0);
        check1_ = Casilla(picture1_[3], u"Check1"_s, u"&Sin condición"_s, 45, 135, 3075, 285, 11, 0);
        Check2 = Casilla(picture1_[3], u"Check2"_s, u"&Sólo objetos seleccionados"_s, 60, 0, 3480, 285, 10, 1);

        QPushButton* aceptar = Boton(picture1_[4], u"Command1"_s, u"&Aceptar"_s, 1470, 60, 1725, 495, 4);
        QPushButton* cancelar = Boton(picture1_[4], u"Command2"_s, u"&Cancelar"_s, 3270, 60, 1485, 495, 5);
        // Not the default button: Enter in an entry box moves on instead.
        aceptar->setAutoDefault(false);
        cancelar->setAutoDefault(false);
        BotonDeCancelar(cancelar);
        CierraOrden();

        connect(aceptar, &QPushButton::clicked, this, [this] { Evento("Command1_Click", [this] { Acepta(); }); });
        connect(cancelar, &QPushButton::clicked, this, [this] {
            Evento("Command2_Click", [this] {
                objImpresora->Cancelado = true;
                reject();
            });
        });
        for (int i = 0; i < 4; ++i) {
            connect(txtFields_[i], &QLineEdit::textChanged, this, [this, i] {
                Evento("txtFields_Change", [this, i] { CambiaTexto(i); });
            });
        }
    }

    void Carga() {
        if (!objAmbiente) Lanza(err::kObjetoNoEstablecido);
        for (MultiCombo* mc : multiCombo1_) mc->DataConnection = objAmbiente->Lee(u"Conexion"_s).objeto();
        if (!objImpresora->ParamData) Lanza(err::kObjetoNoEstablecido);
        const ParamData& pd = *objImpresora->ParamData;
        multiCombo1_[0]->DataQuery = pd.QueryIni;
        multiCombo1_[1]->DataQuery = pd.QueryFin;
        multiCombo1_[2]->DataQuery = pd.QueryIni2;
        multiCombo1_[3]->DataQuery = pd.QueryFin2;

        Utilerias& util = UtileriasCompartidas();
        dtPicker1_->setDate(DiaDeFecha(util.FechaDePeriodo(objAmbiente->Lee(u"Periodo1"_s), objAmbiente->Lee(u"Periodo2"_s))));
        dtPicker2_->setDate(DiaDeFecha(util.FechaDePeriodo(objAmbiente->Lee(u"Periodo1"_s), objAmbiente->Lee(u"Periodo2"_s))));

        const std::pair<bool, int> opcionales[] = {{pd.Param1, 0}, {pd.Param2, 1}, {pd.Fechas, 2}, {pd.Check, 5}};
        static constexpr int kAlto[6] = {1215, 1155, 1005, 570, 705, 375};
        for (auto [pedido, panel] : opcionales) {
            if (pedido) continue;
            OcultaPanel(picture1_[panel]);
            CambiaAlto(AltoTwips() - kAlto[panel]);
        }

        label1_[0]->setText(pd.LeyendaIni);
        label1_[1]->setText(pd.LeyendaFin);
        label1_[2]->setText(pd.LeyendaIni2);
        label1_[3]->setText(pd.LeyendaFin2);
        checkBoolean_->setText(pd.CheckLeyend);
        PonValor(checkBoolean_, pd.CheckValue ? 1 : 0);

        const Variant sucursales = objAmbiente->Lee(u"Sucursales"_s);
        if (sucursales.esObjeto() && sucursales.objeto()) {
            const int32_t n = CLng(sucursales.objeto()->Lee(u"Count"_s));
            for (int32_t i = 1; i <= n; ++i) combo1_->addItem(CStr(Sucursal(*sucursales.objeto(), i)->Lee(u"Name"_s)));
        }
        combo1_->setCurrentIndex(-1);
        combo1_->setEditText(QString());  // the main environment

        // From here on, changes are the user's (or raise the same notifications).
        connect(dtPicker1_, &QDateEdit::dateChanged, this, [this] { PonValor(chkParam1_[2], 0); });
        connect(combo1_, &QComboBox::editTextChanged, this,
                [this] { Evento("Combo1_Change", [this] { CambiaSucursal(); }); });
        connect(combo1_, &QComboBox::activated, this,
                [this] { Evento("Combo1_Click", [this] { CambiaSucursal(); }); });
    }

protected:
    bool event(QEvent* e) override {
        if (e->type() == QEvent::WindowActivate) Evento("Form_Activate", [this] { Activa(); });
        return Formulario::event(e);
    }

    bool eventFilter(QObject* objeto, QEvent* e) override {
        const auto it = std::find(txtFields_.begin(), txtFields_.end(), objeto);
        if (it == txtFields_.end()) return Formulario::eventFilter(objeto, e);
        const int i = int(it - txtFields_.begin());
        QLineEdit* caja = *it;
        switch (e->type()) {
        case QEvent::FocusIn:
            // The box's own handling first, then the whole text selected.
            static_cast<QObject*>(caja)->event(e);
            caja->setSelection(0, int(caja->text().size()));
            return true;
        case QEvent::KeyPress: {
            const int tecla = static_cast<QKeyEvent*>(e)->key();
            if (tecla == Qt::Key_Return || tecla == Qt::Key_Enter)
                Evento("txtFields_KeyDown", [] { UtileriasCompartidas().EnviaTeclas(u"{TAB}"_s, false); });
            return false;
        }
        case QEvent::KeyRelease:
            if (static_cast<QKeyEvent*>(e)->key() == Qt::Key_Down) AbreLista(i);
            return false;
        default: return false;
        }
    }

private:
    static std::shared_ptr<Objeto> Sucursal(Objeto& sucursales, int32_t i) {
        const std::shared_ptr<Objeto> item = sucursales.Llama(u"Item"_s, {i}).objeto();
        if (!item) Lanza(err::kObjetoNoEstablecido);
        return item;
    }

    void Activa() {
        QLineEdit* primera = txtFields_[0];
        // Its own two flags, whatever its panel: a hidden panel does not stop it.
        const bool oculta = primera->isHidden() && primera->testAttribute(Qt::WA_WState_ExplicitShowHide);
        if (primera->testAttribute(Qt::WA_ForceDisabled) || oculta) return;
        // Inside a hidden panel the box cannot take the focus: the refusal
        // ends the handler, unguarded.
        if (!primera->isVisible()) Lanza(err::kLlamadaNoValida);
        primera->setFocus();
        for (int i = 0; i < 4; ++i) {
            QFont f = label1_[i]->font();
            f.setBold(true);
            label1_[i]->setFont(f);
        }
    }

    void CambiaTexto(int i) {
        PonValor(chkParam1_[i < 2 ? 0 : 1], 0);
        if (i == 0) txtFields_[1]->setText(txtFields_[0]->text());
        if (i == 2) txtFields_[3]->setText(txtFields_[2]->text());
    }

    // Down arrow released in box i; every step that fails is skipped.
    void AbreLista(int i) {
        Ignora([&] { multiCombo1_[i]->ShowData(); });
        Ignora([&] { txtFields_[i]->setCursorPosition(0); });
        Utilerias& util = UtileriasCompartidas();
        if (i == 0 || i == 2) {
            Ignora([&] {
                if (util.EsVacio(txtFields_[i + 1]->text())) txtFields_[i + 1]->setText(txtFields_[i]->text());
            });
        }
    }

    void Acepta() {
        auto pd = std::make_shared<ParamData>();
        objImpresora->ParamData = pd;
        pd->BusquedaIni = txtFields_[0]->text();
        pd->BusquedaFin = txtFields_[1]->text();
        if (Valor(chkParam1_[0]) == 1) pd->Todos1 = true;
        pd->BusquedaIni2 = txtFields_[2]->text();
        pd->BusquedaFin2 = txtFields_[3]->text();
        if (Valor(chkParam1_[1]) == 1) pd->Todos2 = true;
        pd->FechaInicial = FechaDeDia(dtPicker1_->date());
        pd->FechaFinal = FechaDeDia(dtPicker2_->date());
        if (Valor(Check2) == 1) pd->SoloSeleccionados = true;
        if (Valor(check1_) == 1) pd->TodosLosRegistros = true;
        pd->CheckValue = Valor(checkBoolean_) == 1;
        pd->TodasLasFechas = Valor(chkParam1_[2]) == 1;
        accept();
    }

    void ConectaLookups(const std::shared_ptr<Objeto>& conexion) {
        for (MultiCombo* mc : multiCombo1_) mc->DataConnection = conexion;
    }

    void CambiaSucursal() {
        Utilerias& util = UtileriasCompartidas();
        const QString texto = combo1_->currentText();
        if (util.EsVacio(texto)) {
            objImpresora->AmbienteSucursal = nullptr;
            ConectaLookups(objAmbiente->Lee(u"Conexion"_s).objeto());
            return;
        }
        // The last item of that name wins; no item, no list: the failure is
        // the caller's, and nothing has changed yet.
        std::shared_ptr<Objeto> conexion;
        const std::shared_ptr<Objeto> sucursales = objAmbiente->Lee(u"Sucursales"_s).objeto();
        if (!sucursales) Lanza(err::kObjetoNoEstablecido);
        const int32_t n = CLng(sucursales->Lee(u"Count"_s));
        for (int32_t i = 1; i <= n; ++i) {
            std::shared_ptr<Objeto> item = Sucursal(*sucursales, i);
            if (Recorta(CStr(item->Lee(u"Name"_s))) == Recorta(texto))
                conexion = item->Lee(u"Connection"_s).objeto();
        }
        if (!conexion) Lanza(err::kObjetoNoEstablecido);
        const bool cerrada = CLng(conexion->Lee(u"State"_s)) != 1;

        if (cerrada) {
            // From here on failures are skipped.
            bool abierta = false;
            Ignora([&] {
                conexion->Llama(u"Open"_s, {QString(), QString(), QString(), int32_t{-1}});
                abierta = true;
            });
            if (!abierta) {
                Ignora([&] {
                    MsgBox(util.TextoDeMensaje(kMensajeBaseDeSucursal, objAmbiente), estilo::kInformacion, QString());
                });
                Ignora([&] { combo1_->setEditText(QString()); });  // back to the main environment, re-entering
                return;
            }
        }
        std::shared_ptr<Objeto> ambienteSucursal;
        const auto paso = [cerrada](auto&& accion) {
            if (cerrada)
                Ignora(accion);
            else
                accion();
        };
        paso([&] { ambienteSucursal = CopiaAmbiente(*objAmbiente, conexion, texto, cerrada); });
        objImpresora->AmbienteSucursal = ambienteSucursal;
        paso([&] {
            if (!ambienteSucursal) Lanza(err::kObjetoNoEstablecido);
            ConectaLookups(ambienteSucursal->Lee(u"Conexion"_s).objeto());
        });
    }

    std::array<QWidget*, 6> picture1_{};
    std::array<QLabel*, 4> label1_{};
    std::array<MultiCombo*, 4> multiCombo1_{};
    std::array<QLineEdit*, 4> txtFields_{};
    std::array<QCheckBox*, 3> chkParam1_{};
    QComboBox* combo1_ = nullptr;
    QDateEdit* dtPicker1_ = nullptr;
    QDateEdit* dtPicker2_ = nullptr;
    QCheckBox* checkBoolean_ = nullptr;
    QCheckBox* check1_ = nullptr;
};

}  // namespace

void Rangos(Impresora& imp, const std::shared_ptr<Objeto>& ambiente, bool usarListView) {
    AseguraPantalla(u"Impresora.Rangos"_s);
    auto frm = std::make_unique<DialogoDeRangos>();
    frm->objAmbiente = ambiente;
    frm->objImpresora = &imp;
    frm->strObserv = imp.Observ;
    frm->Carga();
    if (!usarListView) {
        PonValor(frm->Check2, 0);
        frm->Check2->setEnabled(false);
    }
    frm->exec();
}

}  // namespace kalo::dialogos
