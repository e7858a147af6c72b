#include "dialogs/formulario.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QtDebug>
#include <algorithm>
#include <cmath>

#include "runtime/aplicacion.h"

namespace kalo::dialogos {

namespace {

using namespace Qt::StringLiterals;

constexpr double kTwipsPorPulgada = 1440;
const QDate kDiaCero(1899, 12, 30);

double Resolucion(bool horizontal) {
    const QScreen* pantalla = QGuiApplication::primaryScreen();
    if (!pantalla) return 96;
    return horizontal ? pantalla->logicalDotsPerInchX() : pantalla->logicalDotsPerInchY();
}

// The design's "MS Sans Serif" 8.25 pt bold: the system's sans-serif.
QFont FuenteDelDiseno() {
    QFont f(u"Sans Serif"_s);
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(8.25);
    f.setBold(true);
    return f;
}

}  // namespace

int PixelesX(int twips) { return static_cast<int>(std::lround(twips * Resolucion(true) / kTwipsPorPulgada)); }
int PixelesY(int twips) { return static_cast<int>(std::lround(twips * Resolucion(false) / kTwipsPorPulgada)); }

QDate DiaDeFecha(double fecha) { return kDiaCero.addDays(static_cast<qint64>(std::floor(fecha))); }
double FechaDeDia(QDate dia) { return static_cast<double>(kDiaCero.daysTo(dia)); }

int Valor(const QCheckBox* casilla) {
    switch (casilla->checkState()) {
    case Qt::Checked: return 1;
    case Qt::PartiallyChecked: return 2;
    default: return 0;
    }
}

void PonValor(QCheckBox* casilla, int valor) {
    if (valor == 2) casilla->setTristate(true);
    casilla->setCheckState(valor == 1 ? Qt::Checked : valor == 2 ? Qt::PartiallyChecked : Qt::Unchecked);
}

void AseguraPantalla(const QString& origen) {
    AseguraAplicacion();
    if (SinPantallaVisible()) {
        throw ErrorDeAutomatizacion(
            err::kNoAdmiteAccion,
            DescripcionDeError(err::kNoAdmiteAccion) +
                u": no hay pantalla donde mostrar el diálogo (ni DISPLAY ni WAYLAND_DISPLAY están definidas)"_s,
            origen);
    }
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        throw ErrorDeAutomatizacion(
            err::kNoAdmiteAccion,
            DescripcionDeError(err::kNoAdmiteAccion) + u": la aplicación no admite ventanas (no es QApplication)"_s,
            origen);
    }
}

Formulario::Formulario(const QString& nombre, int anchoTwips, int altoTwips)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                           Qt::MSWindowsFixedSizeDialogHint),
      anchoTwips_(anchoTwips),
      altoTwips_(altoTwips) {
    setObjectName(nombre);
    setFont(FuenteDelDiseno());
    setModal(true);
    setSizeGripEnabled(false);
    setFixedSize(PixelesX(anchoTwips_), PixelesY(altoTwips_));
}

QWidget* Formulario::Panel(const QString& nombre, Anclaje anclaje, int alto, int izquierda, int arriba, int ancho) {
    auto* panel = new QWidget(this);
    panel->setObjectName(nombre);
    paneles_.push_back({panel, anclaje, alto, izquierda, arriba, ancho});
    Acomoda();
    return panel;
}

void Formulario::OcultaPanel(QWidget* panel) {
    panel->hide();
    Acomoda();
}

void Formulario::CambiaAlto(int altoTwips) {
    altoTwips_ = altoTwips;
    setFixedSize(PixelesX(anchoTwips_), PixelesY(altoTwips_));
    Acomoda();
}

void Formulario::Acomoda() {
    int arriba = 0;
    int abajo = altoTwips_;
    const int ancho = PixelesX(anchoTwips_);
    for (const PanelAnclado& p : paneles_) {
        switch (p.anclaje) {
        case Anclaje::Arriba:
            if (p.panel->isHidden()) break;
            p.panel->setGeometry(0, PixelesY(arriba), ancho, PixelesY(arriba + p.alto) - PixelesY(arriba));
            arriba += p.alto;
            break;
        case Anclaje::Abajo:
            if (p.panel->isHidden()) break;
            abajo -= p.alto;
            p.panel->setGeometry(0, PixelesY(abajo), ancho, PixelesY(abajo + p.alto) - PixelesY(abajo));
            break;
        case Anclaje::Libre:
            p.panel->setGeometry(PixelesX(p.izquierda), PixelesY(p.arriba), PixelesX(p.ancho), PixelesY(p.alto));
            break;
        }
    }
}

void Formulario::resizeEvent(QResizeEvent* evento) {
    QDialog::resizeEvent(evento);
    Acomoda();
}

void Formulario::Coloca(QWidget* control, int l, int t, int w, int h, int tab) {
    control->setGeometry(PixelesX(l), PixelesY(t), PixelesX(w), PixelesY(h));
    if (control->focusPolicy() != Qt::NoFocus) OrdenDeTabulacion(control, tab);
}

void Formulario::OrdenDeTabulacion(QWidget* control, int tab) { orden_.emplace_back(tab, control); }

QLabel* Formulario::Etiqueta(QWidget* panel, const QString& nombre, const QString& texto, int l, int t, int w,
                             int h, int tab) {
    auto* e = new QLabel(texto, panel);
    e->setObjectName(nombre);
    e->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    Coloca(e, l, t, w, h, tab);
    return e;
}

QCheckBox* Formulario::Casilla(QWidget* panel, const QString& nombre, const QString& texto, int l, int t, int w,
                               int h, int tab, int valor) {
    auto* c = new QCheckBox(texto, panel);
    c->setObjectName(nombre);
    PonValor(c, valor);
    Coloca(c, l, t, w, h, tab);
    return c;
}

QPushButton* Formulario::Boton(QWidget* panel, const QString& nombre, const QString& texto, int l, int t, int w,
                               int h, int tab) {
    auto* b = new QPushButton(texto, panel);
    b->setObjectName(nombre);
    b->setAutoDefault(true);
    Coloca(b, l, t, w, h, tab);
    return b;
}

QDateEdit* Formulario::Fecha(QWidget* panel, const QString& nombre, int l, int t, int w, int h, int tab) {
    auto* f = new QDateEdit(panel);
    f->setObjectName(nombre);
    f->setDisplayFormat(u"dd/MM/yyyy"_s);
    f->setCalendarPopup(true);
    f->setDateRange(QDate(100, 1, 1), QDate(9999, 12, 31));
    Coloca(f, l, t, w, h, tab);
    return f;
}

void Formulario::CierraOrden() {
    std::stable_sort(orden_.begin(), orden_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (size_t i = 1; i < orden_.size(); ++i) setTabOrder(orden_[i - 1].second, orden_[i].second);
}

void Formulario::showEvent(QShowEvent* evento) {
    QDialog::showEvent(evento);
    // The focus starts on the first control in the keyboard order that can take it.
    if (QWidget* f = focusWidget(); f && f->isVisible() && f->isEnabled()) return;
    for (const auto& [tab, control] : orden_) {
        if (control->isVisible() && control->isEnabled()) {
            control->setFocus();
            return;
        }
    }
}

void Formulario::Evento(const char* nombre, const std::function<void()>& cuerpo) {
    try {
        cuerpo();
    } catch (const ErrorDeAutomatizacion& e) {
        qWarning().noquote() << objectName() + u'.' + QString::fromLatin1(nombre) + u": error "_s +
                                    QString::number(e.numero()) + u": "_s + e.descripcion();
    } catch (const std::exception& e) {
        qWarning().noquote() << objectName() + u'.' + QString::fromLatin1(nombre) + u": "_s +
                                    QString::fromLocal8Bit(e.what());
    }
}

void Formulario::done(int resultado) {
    if (!descargado_) {
        descargado_ = true;
        Evento("Unload", [this] { Descarga(); });
    }
    QDialog::done(resultado);
}

void Formulario::keyPressEvent(QKeyEvent* evento) {
    // Escape presses the cancel button; without one it does nothing (the
    // close box is the other way out, and it runs no button).
    if (evento->key() == Qt::Key_Escape && evento->modifiers() == Qt::NoModifier) {
        if (cancelar_ && cancelar_->isVisible() && cancelar_->isEnabled()) cancelar_->click();
        evento->accept();
        return;
    }
    // Enter on a button presses it, also where no button is the default.
    if ((evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter) && evento->modifiers() == Qt::NoModifier) {
        if (auto* boton = qobject_cast<QPushButton*>(focusWidget()); boton && boton->isEnabled()) {
            boton->click();
            evento->accept();
            return;
        }
    }
    QDialog::keyPressEvent(evento);
}

}  // namespace kalo::dialogos
