#include "kaloimpresora/mensajes.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>
#include <vector>

#include "runtime/aplicacion.h"

namespace kalo {

namespace {

struct Boton {
    QString texto;
    QMessageBox::ButtonRole rol;
    int32_t respuesta;
};

std::vector<Boton> BotonesDe(int32_t bits) {
    const Boton aceptar{QStringLiteral("Aceptar"), QMessageBox::AcceptRole, respuesta::kAceptar};
    const Boton cancelar{QStringLiteral("Cancelar"), QMessageBox::RejectRole, respuesta::kCancelar};
    const Boton anular{QStringLiteral("Anular"), QMessageBox::RejectRole, respuesta::kAnular};
    const Boton reintentar{QStringLiteral("Reintentar"), QMessageBox::AcceptRole, respuesta::kReintentar};
    const Boton omitir{QStringLiteral("Omitir"), QMessageBox::AcceptRole, respuesta::kOmitir};
    const Boton si{QStringLiteral("Sí"), QMessageBox::YesRole, respuesta::kSi};
    const Boton no{QStringLiteral("No"), QMessageBox::NoRole, respuesta::kNo};
    switch (bits & 0x0F) {
    case estilo::kAceptarCancelar: return {aceptar, cancelar};
    case estilo::kAnularReintentarOmitir: return {anular, reintentar, omitir};
    case estilo::kSiNoCancelar: return {si, no, cancelar};
    case estilo::kSiNo: return {si, no};
    case estilo::kReintentarCancelar: return {reintentar, cancelar};
    default: return {aceptar};
    }
}

QMessageBox::Icon IconoDe(int32_t bits) {
    switch (bits & 0x70) {
    case estilo::kCritico: return QMessageBox::Critical;
    case estilo::kPregunta: return QMessageBox::Question;
    case estilo::kExclamacion: return QMessageBox::Warning;
    case estilo::kInformacion: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

int32_t CajaDeMensaje(const QString& texto, int32_t estilo, const QString& titulo) {
    AseguraAplicacion();
    QMessageBox caja;
    caja.setIcon(IconoDe(estilo));
    caja.setText(texto);
    caja.setWindowTitle(titulo.isEmpty() ? QCoreApplication::applicationName() : titulo);

    const std::vector<Boton> botones = BotonesDe(estilo);
    std::vector<QPushButton*> creados;
    for (const Boton& b : botones) {
        creados.push_back(caja.addButton(b.texto, b.rol));
        if (b.respuesta == respuesta::kCancelar || botones.size() == 1) caja.setEscapeButton(creados.back());
    }
    const size_t predeterminado = static_cast<size_t>((estilo >> 8) & 0x3);
    if (predeterminado < creados.size())
        caja.setDefaultButton(creados[predeterminado]);
    caja.exec();

    for (size_t i = 0; i < creados.size(); ++i)
        if (caja.clickedButton() == creados[i]) return botones[i].respuesta;
    // Closed some other way: as if cancelled, or the only choice there was.
    for (const Boton& b : botones)
        if (b.respuesta == respuesta::kCancelar) return b.respuesta;
    return botones.front().respuesta;
}

PresentadorDeMensajes& Presentador() {
    static PresentadorDeMensajes presentador;
    return presentador;
}

}  // namespace

int32_t MsgBox(const QString& texto, int32_t estilo, const QString& titulo) {
    const PresentadorDeMensajes& p = Presentador();
    return p ? p(texto, estilo, titulo) : CajaDeMensaje(texto, estilo, titulo);
}

void EstablecePresentadorDeMensajes(PresentadorDeMensajes presentador) { Presentador() = std::move(presentador); }

}  // namespace kalo
