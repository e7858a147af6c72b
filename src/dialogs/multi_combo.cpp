#include "dialogs/multi_combo.h"

#include <QAbstractTableModel>
#include <QFrame>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtDebug>
#include <algorithm>
#include <vector>

#include "data/conexion.h"
#include "dialogs/formulario.h"

namespace kalo::dialogos {

namespace {

using namespace Qt::StringLiterals;

constexpr int kFilasPorLectura = 64;
constexpr int kFilasVisibles = 12;

QString Texto(const Variant& v) {
    if (v.esNulo() || v.esVacio() || (v.esObjeto() && !v.objeto())) return {};
    return CStr(v);
}

}  // namespace

// The rows of a recordset, read forward as the view asks for more. The
// component's own recordsets are read directly; any other through its
// members (Fields, EOF, MoveNext).
class ModeloDeConsulta final : public QAbstractTableModel {
public:
    explicit ModeloDeConsulta(std::shared_ptr<Objeto> rs) : rs_(std::move(rs)) {
        propio_ = dynamic_cast<Recordset*>(rs_.get());
        const std::shared_ptr<Objeto> campos = rs_->Lee(u"Fields"_s).objeto();
        if (!campos) Lanza(err::kObjetoNoEstablecido);
        const int32_t n = CLng(campos->Lee(u"Count"_s));
        for (int32_t i = 0; i < n; ++i) {
            std::shared_ptr<Objeto> campo = campos->Llama(u"Item"_s, {i}).objeto();
            if (!campo) Lanza(err::kObjetoNoEstablecido);
            nombres_ << Texto(campo->Lee(u"Name"_s));
            campos_.push_back(std::move(campo));
        }
        Lee();
    }

    int rowCount(const QModelIndex& padre) const override { return padre.isValid() ? 0 : int(filas_.size()); }
    int columnCount(const QModelIndex& padre) const override { return padre.isValid() ? 0 : int(nombres_.size()); }
    QVariant data(const QModelIndex& i, int rol) const override {
        if (rol != Qt::DisplayRole || !i.isValid()) return {};
        return filas_[size_t(i.row())][i.column()];
    }
    QVariant headerData(int seccion, Qt::Orientation o, int rol) const override {
        if (rol == Qt::DisplayRole && o == Qt::Horizontal && seccion < nombres_.size()) return nombres_[seccion];
        return QAbstractTableModel::headerData(seccion, o, rol);
    }
    bool canFetchMore(const QModelIndex& padre) const override { return !padre.isValid() && !fin_; }
    void fetchMore(const QModelIndex& padre) override {
        if (padre.isValid()) return;
        try {
            Lee();
        } catch (const ErrorDeAutomatizacion&) {
            fin_ = true;  // a connection lost while scrolling ends the list there
        }
    }

    QString Primera(int fila) const {
        return fila >= 0 && size_t(fila) < filas_.size() && !filas_[size_t(fila)].isEmpty()
                   ? filas_[size_t(fila)].front()
                   : QString();
    }

private:
    bool Fin() const { return propio_ ? propio_->Eof() : CBool(rs_->Lee(u"EOF"_s)); }

    void Lee() {
        std::vector<QStringList> nuevas;
        while (nuevas.size() < kFilasPorLectura && !Fin()) {
            QStringList fila;
            for (int c = 0; c < nombres_.size(); ++c)
                fila << Texto(propio_ ? propio_->Valor(c) : campos_[size_t(c)]->Lee(u"Value"_s));
            nuevas.push_back(std::move(fila));
            if (propio_)
                propio_->MoveNext();
            else
                rs_->Llama(u"MoveNext"_s);
        }
        fin_ = Fin();
        if (nuevas.empty()) return;
        beginInsertRows({}, int(filas_.size()), int(filas_.size() + nuevas.size()) - 1);
        for (auto& f : nuevas) filas_.push_back(std::move(f));
        endInsertRows();
    }

    std::shared_ptr<Objeto> rs_;
    Recordset* propio_ = nullptr;
    std::vector<std::shared_ptr<Objeto>> campos_;
    QStringList nombres_;
    std::vector<QStringList> filas_;
    bool fin_ = false;
};

MultiCombo::MultiCombo(int indice, QWidget* padre) : QWidget(padre) {
    setObjectName(u"MultiCombo1(%1)"_s.arg(indice));
    texto_ = new QLineEdit(this);
    texto_->setObjectName(u"txtFields(%1)"_s.arg(indice));
    boton_ = new QToolButton(this);
    boton_->setObjectName(u"Boton"_s);
    boton_->setArrowType(Qt::DownArrow);
    boton_->setFocusPolicy(Qt::NoFocus);
    connect(boton_, &QToolButton::clicked, this, [this] {
        try {
            ShowData();
        } catch (const ErrorDeAutomatizacion& e) {
            qWarning().noquote() << objectName() + u".ShowData: error "_s + QString::number(e.numero()) + u": "_s +
                                        e.descripcion();
        }
    });
}

MultiCombo::~MultiCombo() = default;

void MultiCombo::resizeEvent(QResizeEvent*) {
    // The entry box sits at 1, 1 twips, 1895 wide; the button takes the rest.
    const int x = PixelesX(1), y = PixelesY(1);
    const int ancho = PixelesX(1895);
    texto_->setGeometry(x, y, ancho, std::max(1, height() - 2 * y));
    boton_->setGeometry(x + ancho, y, std::max(1, width() - ancho - 2 * x), std::max(1, height() - 2 * y));
}

QTableView* MultiCombo::Lista() const { return emergente_ && emergente_->isVisible() ? vista_ : nullptr; }

void MultiCombo::ShowData() {
    if (!DataConnection) Lanza(err::kObjetoNoEstablecido, objectName() + u".ShowData"_s);
    const Variant rs = DataConnection->Llama(u"Execute"_s, {DataQuery});
    if (!rs.esObjeto() || !rs.objeto()) Lanza(err::kTiposNoCoinciden, objectName() + u".ShowData"_s);
    auto modelo = std::make_unique<ModeloDeConsulta>(rs.objeto());

    if (!emergente_) {
        emergente_ = new QFrame(this, Qt::Popup);
        emergente_->setObjectName(u"Lista"_s);
        emergente_->setFrameShape(QFrame::Box);
        auto* capa = new QVBoxLayout(emergente_);
        capa->setContentsMargins(1, 1, 1, 1);
        vista_ = new QTableView(emergente_);
        vista_->setObjectName(u"Filas"_s);
        vista_->setSelectionBehavior(QAbstractItemView::SelectRows);
        vista_->setSelectionMode(QAbstractItemView::SingleSelection);
        vista_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        vista_->verticalHeader()->hide();
        vista_->verticalHeader()->setDefaultSectionSize(vista_->fontMetrics().height() + 4);
        vista_->horizontalHeader()->setStretchLastSection(true);
        vista_->installEventFilter(this);
        capa->addWidget(vista_);
        connect(vista_, &QTableView::clicked, this, [this](const QModelIndex& i) { Elige(i.row()); });
    }
    vista_->setModel(modelo.get());
    modelo_ = std::move(modelo);  // the previous model goes only after the view lets it go
    if (modelo_->rowCount({}) > 0) vista_->selectRow(0);

    const int alto = vista_->horizontalHeader()->sizeHint().height() +
                     vista_->verticalHeader()->defaultSectionSize() * kFilasVisibles + 4;
    int ancho = 0;
    vista_->resizeColumnsToContents();
    for (int c = 0; c < modelo_->columnCount({}); ++c) ancho += vista_->columnWidth(c);
    ancho = std::clamp(ancho + 24, width(), std::max(width(), 640));
    QPoint donde = mapToGlobal(QPoint(0, height()));
    if (const QScreen* s = screen()) {
        const QRect libre = s->availableGeometry();
        if (donde.y() + alto > libre.bottom()) donde.setY(mapToGlobal(QPoint(0, 0)).y() - alto);
        donde.setX(std::clamp(donde.x(), libre.left(), std::max(libre.left(), libre.right() - ancho)));
    }
    emergente_->setGeometry(QRect(donde, QSize(ancho, alto)));
    emergente_->show();
    vista_->setFocus();
}

bool MultiCombo::eventFilter(QObject* objeto, QEvent* evento) {
    if (objeto == vista_ && evento->type() == QEvent::KeyPress) {
        const int tecla = static_cast<QKeyEvent*>(evento)->key();
        if (tecla == Qt::Key_Return || tecla == Qt::Key_Enter) {
            Elige(vista_->currentIndex().row());
            return true;
        }
        if (tecla == Qt::Key_Escape) {
            CierraLista();
            return true;
        }
    }
    return QWidget::eventFilter(objeto, evento);
}

void MultiCombo::Elige(int fila) {
    const QString valor = modelo_ ? modelo_->Primera(fila) : QString();
    const bool hay = modelo_ && fila >= 0 && fila < modelo_->rowCount({});
    CierraLista();
    if (hay) texto_->setText(valor);
}

void MultiCombo::CierraLista() {
    if (emergente_) emergente_->hide();
    texto_->setFocus();
}

}  // namespace kalo::dialogos
