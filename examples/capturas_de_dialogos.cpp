// Saves a picture of each parameter dialog as the user first sees it, by
// opening it through the automation interface and grabbing the window by
// its published name once it is up — as a host's own automated tests would.
//
//   QT_QPA_PLATFORM=offscreen kaloimpresora-capturas docs
//
// writes dialogo-rango-de-fechas.png, dialogo-fecha-de-corte.png and
// dialogo-rangos.png into the folder given (the current one by default).

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include "kaloimpresora/automatizacion.h"

using namespace Qt::StringLiterals;
using kalo::Variant;

namespace {

// Once the dialog is up: fills its boxes, saves its picture and cancels it.
void CapturaAlMostrarse(const QString& archivo, std::vector<std::pair<QString, QString>> textos = {}) {
    QTimer::singleShot(100, [archivo, textos] {
        QWidget* w = QApplication::activeModalWidget();
        if (!w) return;
        for (const auto& [nombre, texto] : textos)
            if (auto* caja = w->findChild<QLineEdit*>(nombre)) caja->setText(texto);
        if (QWidget* f = w->focusWidget()) f->clearFocus();
        w->grab().save(archivo);
        QTextStream(stdout) << archivo << '\n';
        if (auto* cancelar = w->findChild<QPushButton*>(u"Command2"_s)) cancelar->click();
    });
}

}  // namespace

int main(int argc, char** argv) {
    QApplication aplicacion(argc, argv);
    const QDir destino(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath());
    QTemporaryDir temporal;

    auto conexion = kalo::CreaObjeto(u"ADODB.Connection"_s);
    conexion->Llama(u"Open"_s, {u"Data Source="_s + temporal.filePath(u"ejemplo.db"_s)});
    conexion->Llama(u"Execute"_s, {u"CREATE TABLE articulos (clave TEXT, nombre TEXT)"_s});
    auto ambiente = kalo::CreaObjeto(u"KaloEnviroment.Ambiente"_s);
    ambiente->AsignaObjeto(u"Conexion"_s, conexion);
    ambiente->Asigna(u"Periodo1"_s, 2024);
    ambiente->Asigna(u"Periodo2"_s, 3);
    auto imp = kalo::CreaObjeto(u"KaloImpresora.Impresora"_s);

    CapturaAlMostrarse(destino.filePath(u"dialogo-rango-de-fechas.png"_s));
    imp->Llama(u"RangoDeFechas"_s, {u"Ventas por fecha"_s, Variant(ambiente)});
    CapturaAlMostrarse(destino.filePath(u"dialogo-fecha-de-corte.png"_s));
    imp->Llama(u"FechaDeCorte"_s, {u"Saldos al corte"_s, Variant(ambiente)});

    auto pd = kalo::CreaObjeto(u"KaloImpresora.ParamData"_s);
    pd->Llama(u"ParametrosRequeridos"_s,
              {u"SELECT clave, nombre FROM articulos"_s, u"Desde"_s, u"SELECT clave, nombre FROM articulos"_s,
               u"Hasta"_s, u"SELECT clave FROM articulos"_s, u"De línea"_s,
               u"SELECT clave FROM articulos"_s, u"A línea"_s, true, true, true, u"&Sólo con existencias"_s});
    imp->AsignaObjeto(u"ParamData"_s, pd);
    CapturaAlMostrarse(destino.filePath(u"dialogo-rangos.png"_s),
                       {{u"txtFields(0)"_s, u"A-100"_s}, {u"txtFields(1)"_s, u"H-801"_s}});
    imp->Llama(u"Rangos"_s, {Variant(ambiente), true});
    return 0;
}
