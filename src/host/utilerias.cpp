#include "kaloimpresora/utilerias.h"

#include <QApplication>
#include <QDate>
#include <QHash>
#include <QKeyEvent>
#include <QScreen>
#include <QWidget>
#include <cmath>
#include <vector>

#include "kaloimpresora/automatizacion.h"
#include "barcode/imagenes_zint.h"
#include "data/conexion.h"
#include "text/importe_en_letra.h"

namespace kalo {

namespace {

thread_local std::shared_ptr<Utilerias> tUtilerias;

struct Pulsacion {
    int tecla;
    Qt::KeyboardModifiers modificadores;
    QString texto;
};

// The key-string notation: plain characters; {NAME} for a special key;
// {+}, {^}, {%}, {~}, {(}, {{}... for those characters; ~ is Enter; +, ^ and
// % hold Shift, Ctrl and Alt for the next key. Empty when it does not read.
std::vector<Pulsacion> LeeTeclas(const QString& teclas) {
    static const QHash<QString, int> especiales = {
        {QStringLiteral("TAB"), Qt::Key_Tab},          {QStringLiteral("ENTER"), Qt::Key_Return},
        {QStringLiteral("ESC"), Qt::Key_Escape},       {QStringLiteral("ESCAPE"), Qt::Key_Escape},
        {QStringLiteral("BS"), Qt::Key_Backspace},     {QStringLiteral("BKSP"), Qt::Key_Backspace},
        {QStringLiteral("BACKSPACE"), Qt::Key_Backspace}, {QStringLiteral("DEL"), Qt::Key_Delete},
        {QStringLiteral("DELETE"), Qt::Key_Delete},    {QStringLiteral("UP"), Qt::Key_Up},
        {QStringLiteral("DOWN"), Qt::Key_Down},        {QStringLiteral("LEFT"), Qt::Key_Left},
        {QStringLiteral("RIGHT"), Qt::Key_Right},      {QStringLiteral("HOME"), Qt::Key_Home},
        {QStringLiteral("END"), Qt::Key_End},          {QStringLiteral("PGUP"), Qt::Key_PageUp},
        {QStringLiteral("PGDN"), Qt::Key_PageDown},    {QStringLiteral("INSERT"), Qt::Key_Insert},
        {QStringLiteral("F1"), Qt::Key_F1},            {QStringLiteral("F2"), Qt::Key_F2},
        {QStringLiteral("F3"), Qt::Key_F3},            {QStringLiteral("F4"), Qt::Key_F4},
    };
    std::vector<Pulsacion> r;
    Qt::KeyboardModifiers mods;
    const auto caracter = [&](QChar c) {
        const char16_t u = c.toUpper().unicode();
        const bool ascii = (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') || u == u' ';
        const int tecla = ascii ? int(u) : int(Qt::Key_unknown);  // Qt's codes for these are their ASCII
        r.push_back({tecla, mods, mods & Qt::ShiftModifier ? QString(c.toUpper()) : QString(c)});
        mods = {};
    };
    for (qsizetype i = 0; i < teclas.size(); ++i) {
        const QChar c = teclas[i];
        if (c == u'+') mods |= Qt::ShiftModifier;
        else if (c == u'^') mods |= Qt::ControlModifier;
        else if (c == u'%') mods |= Qt::AltModifier;
        else if (c == u'~') {
            r.push_back({Qt::Key_Return, mods, QStringLiteral("\r")});
            mods = {};
        } else if (c == u'{') {
            // "{}}" names the closing brace itself.
            const qsizetype fin = teclas.indexOf(u'}', i + 2);
            if (fin < 0) return {};
            const QString nombre = teclas.mid(i + 1, fin - i - 1);
            i = fin;
            if (nombre.size() == 1) {
                caracter(nombre[0]);
                continue;
            }
            const auto it = especiales.constFind(nombre.toUpper());
            if (it == especiales.cend()) return {};
            const bool esIntro = *it == Qt::Key_Return;
            r.push_back({*it, mods, esIntro ? QStringLiteral("\r") : *it == Qt::Key_Tab ? QStringLiteral("\t")
                                                                     : QString()});
            mods = {};
        } else {
            caracter(c);
        }
    }
    return r;
}

}  // namespace

QString UtileriasPredeterminadas::TextoDeNumero(double numero) {
    if (numero == 0 || !std::isfinite(numero)) return QStringLiteral("0");
    const int exponente = static_cast<int>(std::floor(std::log10(std::fabs(numero))));
    const int decimales = std::clamp(14 - exponente, 0, 330);
    QString texto = QString::number(numero, 'f', decimales);
    if (texto.contains(u'.')) {
        while (texto.endsWith(u'0')) texto.chop(1);
        if (texto.endsWith(u'.')) texto.chop(1);
    }
    return texto == u"-0" ? QStringLiteral("0") : texto;
}

QString UtileriasPredeterminadas::TextoDeValor(const Variant& valor) {
    switch (valor.tipo()) {
    case TipoVariant::Vacio:
    case TipoVariant::Nulo:
    case TipoVariant::Error: return {};
    case TipoVariant::Objeto:
        if (!valor.objeto()) return {};
        [[fallthrough]];
    default: return CStr(valor);
    }
}

bool UtileriasPredeterminadas::EsVacio(const Variant& valor) {
    switch (valor.tipo()) {
    case TipoVariant::Vacio:
    case TipoVariant::Nulo:
    case TipoVariant::Error: return true;
    case TipoVariant::Texto: return valor.texto().trimmed().isEmpty();
    case TipoVariant::Objeto: return !valor.objeto();
    default: return false;
    }
}

double UtileriasPredeterminadas::ValorNumerico(const Variant& valor) {
    if (valor.esNumerico()) return CDbl(valor);
    if (valor.esTexto()) return LeeNumero(valor.texto()).value_or(0);
    return 0;
}

std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBar128(int16_t& altoDeBarra, QString& barData,
                                                               bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::Code128, altoDeBarra, barData, false, incluyeHR);
}
std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBar3de9(int16_t& altoDeBarra, QString& barData,
                                                                bool& checkSum, bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::Code39, altoDeBarra, barData, checkSum, incluyeHR);
}
std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBarEAN13(int16_t& altoDeBarra, QString& barData,
                                                                 bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::EAN13, altoDeBarra, barData, false, incluyeHR);
}
std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBarEAN8(int16_t& altoDeBarra, QString& barData,
                                                                bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::EAN8, altoDeBarra, barData, false, incluyeHR);
}
QString UtileriasPredeterminadas::ImporteEnLetra(double& numero, QString& leyenda, bool& decimales,
                                                 QString& leyenda2) {
    return kalo::ImporteEnLetra(numero, leyenda, decimales, leyenda2);
}

int32_t UtileriasPredeterminadas::BuscaTexto(const Variant& busca, const QString& texto) {
    if (busca.esNulo()) return 0;
    const QString aguja = CStr(busca);
    if (aguja.isEmpty()) return 0;
    return static_cast<int32_t>(texto.indexOf(aguja)) + 1;
}

QString UtileriasPredeterminadas::SeparadorDecimal() { return LocalDelUsuario().decimalPoint(); }

std::shared_ptr<Objeto> UtileriasPredeterminadas::AbreConsulta(const QString& sql,
                                                               const std::shared_ptr<Objeto>& conexion, bool) {
    const QString origen = QStringLiteral("Utilerias.AbreConsulta");
    if (!conexion) Lanza(err::kObjetoNoEstablecido, origen);
    if (auto* propia = dynamic_cast<Conexion*>(conexion.get())) return propia->Execute(sql);
    // Another connection object: through its own Execute.
    const Variant resultado = conexion->Llama(QStringLiteral("Execute"), {sql});
    if (!resultado.esObjeto()) Lanza(err::kTiposNoCoinciden, origen);
    return resultado.objeto();
}
double UtileriasPredeterminadas::FechaDePeriodo(const Variant& periodo1, const Variant& periodo2) {
    const int32_t anio = CLng(periodo1);
    const int32_t mes = CLng(periodo2);
    if (anio < 100 || anio > 9999 || mes < 1 || mes > 12)
        Lanza(err::kLlamadaNoValida, QStringLiteral("Utilerias.FechaDePeriodo"));
    const QDate primero(anio, mes, 1);
    return static_cast<double>(QDate(1899, 12, 30).daysTo(primero.addDays(primero.daysInMonth() - 1)));
}

void UtileriasPredeterminadas::PreparaFormulario(QObject* formulario, const std::shared_ptr<Objeto>&,
                                                 const QString&) {
    auto* ventana = qobject_cast<QWidget*>(formulario);
    if (!ventana) return;
    QRect sobre;
    if (QWidget* activa = QApplication::activeWindow(); activa && activa != ventana)
        sobre = activa->frameGeometry();
    else if (const QScreen* pantalla = ventana->screen() ? ventana->screen() : QGuiApplication::primaryScreen())
        sobre = pantalla->availableGeometry();
    if (sobre.isEmpty()) return;
    QRect marco(QPoint(), ventana->size());
    marco.moveCenter(sobre.center());
    ventana->move(marco.topLeft());
}

void UtileriasPredeterminadas::CierraFormulario(QObject*, const std::shared_ptr<Objeto>&, const QString&) {}

void UtileriasPredeterminadas::EnviaTeclas(const QString& teclas, bool espera) {
    const QString origen = QStringLiteral("Utilerias.EnviaTeclas");
    const std::vector<Pulsacion> pulsaciones = LeeTeclas(teclas);
    if (pulsaciones.empty() && !teclas.isEmpty()) Lanza(err::kLlamadaNoValida, origen);
    for (const Pulsacion& p : pulsaciones) {
        QObject* destino = QGuiApplication::focusObject();
        if (!destino) return;
        for (QEvent::Type tipo : {QEvent::KeyPress, QEvent::KeyRelease}) {
            auto* evento = new QKeyEvent(tipo, p.tecla, p.modificadores, p.texto);
            if (espera) {
                QCoreApplication::sendEvent(destino, evento);
                delete evento;
            } else {
                QCoreApplication::postEvent(destino, evento);
            }
        }
    }
}

QString UtileriasPredeterminadas::TextoDeMensaje(int32_t numero, const std::shared_ptr<Objeto>&) {
    switch (numero) {
    case 823: return QStringLiteral("No se pudo abrir la base de datos de la sucursal.");
    default: return QStringLiteral("Mensaje %1: no está en el catálogo.").arg(numero);
    }
}

Utilerias& UtileriasCompartidas() {
    if (!tUtilerias) tUtilerias = std::make_shared<UtileriasPredeterminadas>();
    return *tUtilerias;
}

void SustituyeUtilerias(std::shared_ptr<Utilerias> utilerias) { tUtilerias = std::move(utilerias); }

}  // namespace kalo
